#pragma once
// A generic automation object for the simulated Office: members are named
// handlers, resolved case-insensitively like Office's, and the object
// counts its references so tests can prove the add-in released them all.
#include <windows.h>
#include <oaidl.h>

#include <atomic>
#include <functional>
#include <string>
#include <utility>
#include <vector>

class SimDispatch : public IDispatch {
 public:
  // Arguments in natural order (already un-reversed); `result` may be null.
  // Return DISP_E_EXCEPTION (through Fail) to report a failing member.
  using Handler = std::function<HRESULT(WORD flags, const std::vector<VARIANT*>& args, VARIANT* result)>;

  // How a member may be invoked. Office's dispatch goes by its type
  // library: a property answers DISPATCH_PROPERTYGET/PUT (a get takes no
  // arguments), a method DISPATCH_METHOD; anything else is
  // DISP_E_MEMBERNOTFOUND. An indexed member (a collection's Item) takes
  // either, with arguments.
  enum class Kind { Property, Method, Indexed };

  explicit SimDispatch(std::wstring typeName);
  virtual ~SimDispatch() = default;

  void AddMember(const std::wstring& name, DISPID id, Handler handler, Kind kind = Kind::Property);
  void AddMethod(const std::wstring& name, DISPID id, Handler handler) {
    AddMember(name, id, std::move(handler), Kind::Method);
  }
  // Takes a member away, as an older version of the host lacks it.
  void RemoveMember(const std::wstring& name);
  // Interfaces answered besides IUnknown and IDispatch (the host's own
  // dual interfaces, which the add-in only ever uses through IDispatch).
  void AddInterface(const IID& iid) { interfaces_.push_back(iid); }

  long references() const { return references_.load(); }
  // Every method call made on this object, as text: the member's name and
  // its arguments in natural order, e.g. "Close(VT_I4 -1, missing, missing)".
  const std::vector<std::wstring>& methodCalls() const { return methodCalls_; }
  const std::wstring& typeName() const { return typeName_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                                   EXCEPINFO* exception, UINT* badArgument) override;

 private:
  struct Member {
    std::wstring name;
    DISPID id;
    Handler handler;
    Kind kind;
  };
  std::wstring typeName_;
  std::vector<Member> members_;
  std::vector<IID> interfaces_;
  std::vector<std::wstring> methodCalls_;
  std::atomic<long> references_{1};
};

// Result helpers for handlers.
HRESULT ReturnString(VARIANT* result, const std::wstring& text);
HRESULT ReturnBool(VARIANT* result, bool value);
HRESULT ReturnLong(VARIANT* result, long value);
HRESULT ReturnObject(VARIANT* result, IDispatch* object);  // adds a reference for the caller

// One argument as text: "missing", "VT_I4 -2", "VT_BOOL true", "VT_BSTR \"text\"",
// or the variant type's number for anything else.
std::wstring DescribeArgument(const VARIANT* argument);
