#include "tools/officesim/sim_dispatch.h"

SimDispatch::SimDispatch(std::wstring typeName) : typeName_(std::move(typeName)) {}

void SimDispatch::AddMember(const std::wstring& name, DISPID id, Handler handler, Kind kind) {
  members_.push_back({name, id, std::move(handler), kind});
}

void SimDispatch::RemoveMember(const std::wstring& name) {
  for (auto it = members_.begin(); it != members_.end();) {
    it = lstrcmpiW(it->name.c_str(), name.c_str()) == 0 ? members_.erase(it) : it + 1;
  }
}

HRESULT SimDispatch::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch);
  for (const IID& candidate : interfaces_) known = known || IsEqualIID(iid, candidate);
  if (!known) {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  *object = static_cast<IDispatch*>(this);
  AddRef();
  return S_OK;
}

ULONG SimDispatch::AddRef() { return static_cast<ULONG>(++references_); }

ULONG SimDispatch::Release() {
  const long left = --references_;
  if (left == 0) delete this;
  return static_cast<ULONG>(left);
}

HRESULT SimDispatch::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT SimDispatch::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info) *info = nullptr;
  return DISP_E_BADINDEX;
}

HRESULT SimDispatch::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr) return E_POINTER;
  HRESULT hr = S_OK;
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  if (count == 0 || names[0] == nullptr) return DISP_E_UNKNOWNNAME;
  for (const Member& member : members_) {
    if (lstrcmpiW(member.name.c_str(), names[0]) == 0) ids[0] = member.id;
  }
  for (UINT i = 0; i < count; ++i) {
    if (ids[i] == DISPID_UNKNOWN) hr = DISP_E_UNKNOWNNAME;
  }
  return hr;
}

HRESULT SimDispatch::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                            EXCEPINFO* exception, UINT*) {
  for (const Member& member : members_) {
    if (member.id != id) continue;
    std::vector<VARIANT*> args;
    if (params != nullptr) {
      if (params->cArgs > 0 && params->rgvarg == nullptr) return E_INVALIDARG;
      for (UINT i = params->cArgs; i > 0; --i) args.push_back(&params->rgvarg[i - 1]);
    }
    const bool asMethod = (flags & DISPATCH_METHOD) != 0;
    const bool asGet = (flags & DISPATCH_PROPERTYGET) != 0;
    const bool asPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    if (member.kind == Kind::Method && !asMethod) return DISP_E_MEMBERNOTFOUND;
    if (member.kind == Kind::Property) {
      if (!asGet && !asPut) return DISP_E_MEMBERNOTFOUND;
      if (!asPut && !args.empty()) return DISP_E_BADPARAMCOUNT;
      // A put names its value DISPID_PROPERTYPUT, as every automation client must.
      const bool namedPut = params != nullptr && params->cNamedArgs == 1 && params->rgdispidNamedArgs != nullptr &&
                            params->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
      if (asPut && !namedPut) return DISP_E_PARAMNOTFOUND;
      if (asPut && args.size() != 1) return DISP_E_BADPARAMCOUNT;
    }
    if (member.kind == Kind::Indexed && !asMethod && !asGet) return DISP_E_MEMBERNOTFOUND;
    if (flags & DISPATCH_METHOD) {
      std::wstring call = member.name + L"(";
      for (size_t i = 0; i < args.size(); ++i) call += (i ? L", " : L"") + DescribeArgument(args[i]);
      methodCalls_.push_back(call + L")");
    }
    if (result) VariantInit(result);
    const HRESULT hr = member.handler(flags, args, result);
    if (hr == DISP_E_EXCEPTION && exception != nullptr) {
      *exception = EXCEPINFO{};
      exception->scode = E_FAIL;
      exception->bstrSource = SysAllocString(typeName_.c_str());
      exception->bstrDescription = SysAllocString((member.name + L" failed").c_str());
    }
    return hr;
  }
  return DISP_E_MEMBERNOTFOUND;
}

HRESULT ReturnString(VARIANT* result, const std::wstring& text) {
  if (result) {
    result->vt = VT_BSTR;
    result->bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  }
  return S_OK;
}

HRESULT ReturnBool(VARIANT* result, bool value) {
  if (result) {
    result->vt = VT_BOOL;
    result->boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  }
  return S_OK;
}

HRESULT ReturnLong(VARIANT* result, long value) {
  if (result) {
    result->vt = VT_I4;
    result->lVal = value;
  }
  return S_OK;
}

HRESULT ReturnObject(VARIANT* result, IDispatch* object) {
  if (result) {
    result->vt = VT_DISPATCH;
    result->pdispVal = object;
    if (object) object->AddRef();
  }
  return S_OK;
}

std::wstring DescribeArgument(const VARIANT* argument) {
  const VARIANT* value = argument;
  if (value != nullptr && value->vt == (VT_BYREF | VT_VARIANT)) value = value->pvarVal;
  if (value == nullptr) return L"null";
  if (value->vt == VT_ERROR && value->scode == DISP_E_PARAMNOTFOUND) return L"missing";
  switch (value->vt) {
    case VT_I4: return L"VT_I4 " + std::to_wstring(value->lVal);
    case VT_I2: return L"VT_I2 " + std::to_wstring(value->iVal);
    case VT_BOOL: return value->boolVal == VARIANT_TRUE ? L"VT_BOOL true"
                         : value->boolVal == VARIANT_FALSE ? L"VT_BOOL false"
                                                           : L"VT_BOOL " + std::to_wstring(value->boolVal);
    case VT_BSTR: return L"VT_BSTR \"" + std::wstring(value->bstrVal, SysStringLen(value->bstrVal)) + L"\"";
    default: return L"vt " + std::to_wstring(value->vt);
  }
}
