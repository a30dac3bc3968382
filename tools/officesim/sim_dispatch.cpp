#include "tools/officesim/sim_dispatch.h"

SimDispatch::SimDispatch(std::wstring typeName) : typeName_(std::move(typeName)) {}

void SimDispatch::AddMember(const std::wstring& name, DISPID id, Handler handler) {
  members_.push_back({name, id, std::move(handler)});
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
      for (UINT i = params->cArgs; i > 0; --i) args.push_back(&params->rgvarg[i - 1]);
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
