#pragma once
// Calls into Office's object model by member name. Each call site keeps a
// static DispatchName, so the name is resolved with GetIDsOfNames once per
// host (on the first object that knows it) and later calls go straight to
// Invoke.
#include <windows.h>
#include <oaidl.h>

#include <initializer_list>
#include <stdexcept>
#include <string>

#include "common/com_ptr.h"
#include "common/variant.h"

class DispatchName {
 public:
  explicit DispatchName(const wchar_t* name) noexcept : name_(name) {}
  const wchar_t* name() const noexcept { return name_; }
  // The member's DISPID on this object, resolved once for the running host
  // (OfficeApp) and then cached.
  HRESULT Resolve(IDispatch* object, DISPID* id);

 private:
  // Word, Excel and PowerPoint number a member of the same name
  // differently, so a DISPID learnt from one host is never used on another
  // (a process that plays several hosts in turn, as the tests do, would
  // otherwise call the wrong member).
  static const int kHostSlots = 4;
  const wchar_t* name_;
  DISPID ids_[kHostSlots] = {DISPID_UNKNOWN, DISPID_UNKNOWN, DISPID_UNKNOWN, DISPID_UNKNOWN};
  bool resolved_[kHostSlots] = {false, false, false, false};
};

// The cached name of a member chosen at run time (the host table's
// "ActiveDocument", "Workbooks"...), one per name for the process, so even
// those are resolved once per host. `member` must outlive the process (a
// literal or a constant table's text). UI thread only, like every call into
// Office.
DispatchName& DispatchNameFor(const wchar_t* member);

// A failed object-model call, carrying its HRESULT; what() names the member.
class ComError : public std::runtime_error {
 public:
  ComError(const wchar_t* member, HRESULT hr);
  HRESULT code() const noexcept { return code_; }

 private:
  HRESULT code_;
};

// Arguments are given in their natural order; they are passed to Invoke in
// reverse, as IDispatch expects. `result` may be null.
HRESULT InvokeByName(IDispatch* object, DispatchName& member, WORD flags, std::initializer_list<const VARIANT*> args,
                     VARIANT* result, LCID lcid = 0);

// Throwing conveniences for the common cases.
UniqueVariant GetProperty(IDispatch* object, DispatchName& member, LCID lcid = 0);
std::wstring GetStringProperty(IDispatch* object, DispatchName& member, LCID lcid = 0);
ComPtr<IDispatch> GetObjectProperty(IDispatch* object, DispatchName& member, LCID lcid = 0);
long GetLongProperty(IDispatch* object, DispatchName& member, LCID lcid = 0);
UniqueVariant CallMethod(IDispatch* object, DispatchName& member, std::initializer_list<const VARIANT*> args,
                         LCID lcid = 0);
