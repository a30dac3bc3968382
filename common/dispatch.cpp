#include "common/dispatch.h"

#include <map>
#include <vector>

#include "common/office_app.h"
#include "common/text.h"

HRESULT DispatchName::Resolve(IDispatch* object, DISPID* id) {
  const int host = static_cast<int>(OfficeApp);
  const int slot = host >= 0 && host < kHostSlots ? host : 0;
  if (resolved_[slot]) {
    *id = ids_[slot];
    return S_OK;
  }
  LPOLESTR names[] = {const_cast<LPOLESTR>(name_)};
  DISPID found = DISPID_UNKNOWN;
  const HRESULT hr = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &found);
  if (FAILED(hr)) return hr;  // not cached: another object may know the name
  ids_[slot] = found;
  resolved_[slot] = true;
  *id = found;
  return S_OK;
}

DispatchName& DispatchNameFor(const wchar_t* member) {
  static auto* names = new std::map<std::wstring, DispatchName>();  // kept for the process
  return names->try_emplace(member, member).first->second;
}

namespace {
std::string DescribeFailure(const wchar_t* member, HRESULT hr) {
  char code[16];
  const unsigned long value = static_cast<unsigned long>(hr);
  static const char digits[] = "0123456789ABCDEF";
  code[0] = '0';
  code[1] = 'x';
  for (int i = 0; i < 8; ++i) code[2 + i] = digits[(value >> (28 - 4 * i)) & 0xF];
  code[10] = '\0';
  return "object model call " + ToUtf8(member) + " failed with " + code;
}
}  // namespace

ComError::ComError(const wchar_t* member, HRESULT hr) : std::runtime_error(DescribeFailure(member, hr)), code_(hr) {}

HRESULT InvokeByName(IDispatch* object, DispatchName& member, WORD flags, std::initializer_list<const VARIANT*> args,
                     VARIANT* result, LCID lcid) {
  if (object == nullptr) return E_POINTER;
  DISPID id = DISPID_UNKNOWN;
  HRESULT hr = member.Resolve(object, &id);
  if (FAILED(hr)) return hr;

  std::vector<VARIANTARG> reversed(args.size());
  size_t i = args.size();
  for (const VARIANT* arg : args) reversed[--i] = *arg;  // shallow: the caller keeps ownership

  DISPPARAMS params{};
  params.rgvarg = reversed.empty() ? nullptr : reversed.data();
  params.cArgs = static_cast<UINT>(reversed.size());
  DISPID namedPut = DISPID_PROPERTYPUT;
  if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
    params.rgdispidNamedArgs = &namedPut;
    params.cNamedArgs = 1;
  }
  EXCEPINFO exception{};
  UINT badArg = 0;
  hr = object->Invoke(id, IID_NULL, lcid, flags, &params, result, &exception, &badArg);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return hr;
}

UniqueVariant GetProperty(IDispatch* object, DispatchName& member, LCID lcid) {
  UniqueVariant value;
  const HRESULT hr = InvokeByName(object, member, DISPATCH_PROPERTYGET, {}, value.put(), lcid);
  if (FAILED(hr)) throw ComError(member.name(), hr);
  return value;
}

std::wstring GetStringProperty(IDispatch* object, DispatchName& member, LCID lcid) {
  UniqueVariant value = GetProperty(object, member, lcid);
  if (value.type() != VT_BSTR) {
    const HRESULT hr = VariantChangeType(value.get(), value.get(), 0, VT_BSTR);
    if (FAILED(hr)) throw ComError(member.name(), hr);
  }
  BSTR text = value.get()->bstrVal;
  return text ? std::wstring(text, SysStringLen(text)) : std::wstring();
}

ComPtr<IDispatch> GetObjectProperty(IDispatch* object, DispatchName& member, LCID lcid) {
  UniqueVariant value = GetProperty(object, member, lcid);
  if (value.type() != VT_DISPATCH) return {};
  return ComPtr<IDispatch>(value.get()->pdispVal);
}

long GetLongProperty(IDispatch* object, DispatchName& member, LCID lcid) {
  UniqueVariant value = GetProperty(object, member, lcid);
  const HRESULT hr = VariantChangeType(value.get(), value.get(), 0, VT_I4);
  if (FAILED(hr)) throw ComError(member.name(), hr);
  return value.get()->lVal;
}

UniqueVariant CallMethod(IDispatch* object, DispatchName& member, std::initializer_list<const VARIANT*> args,
                         LCID lcid) {
  UniqueVariant value;
  const HRESULT hr = InvokeByName(object, member, DISPATCH_METHOD, args, value.put(), lcid);
  if (FAILED(hr)) throw ComError(member.name(), hr);
  return value;
}
