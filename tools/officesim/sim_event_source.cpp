#include "tools/officesim/sim_event_source.h"

#include <olectl.h>

SimEventSource::SimEventSource(IUnknown* owner, const IID& eventInterface)
    : owner_(owner), eventInterface_(eventInterface) {}

SimEventSource::~SimEventSource() {
  for (Connection& connection : sinks_) connection.sink->Release();
}

HRESULT SimEventSource::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (IsEqualIID(iid, IID_IConnectionPointContainer)) {
    *object = static_cast<IConnectionPointContainer*>(this);
  } else if (IsEqualIID(iid, IID_IConnectionPoint)) {
    *object = static_cast<IConnectionPoint*>(this);
  } else {
    return owner_->QueryInterface(iid, object);
  }
  AddRef();
  return S_OK;
}

HRESULT SimEventSource::EnumConnectionPoints(IEnumConnectionPoints** points) {
  if (points) *points = nullptr;
  return E_NOTIMPL;
}

HRESULT SimEventSource::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  if (!IsEqualIID(iid, eventInterface_)) return CONNECT_E_NOCONNECTION;
  *point = static_cast<IConnectionPoint*>(this);
  AddRef();
  return S_OK;
}

HRESULT SimEventSource::GetConnectionInterface(IID* iid) {
  if (iid == nullptr) return E_POINTER;
  *iid = eventInterface_;
  return S_OK;
}

HRESULT SimEventSource::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (container == nullptr) return E_POINTER;
  *container = static_cast<IConnectionPointContainer*>(this);
  AddRef();
  return S_OK;
}

HRESULT SimEventSource::Advise(IUnknown* sink, DWORD* cookie) {
  if (cookie) *cookie = 0;
  if (sink == nullptr || cookie == nullptr) return E_POINTER;
  IDispatch* events = nullptr;
  if (FAILED(sink->QueryInterface(eventInterface_, reinterpret_cast<void**>(&events))) || events == nullptr) {
    return CONNECT_E_CANNOTCONNECT;
  }
  *cookie = nextCookie_++;
  sinks_.push_back({*cookie, events});
  return S_OK;
}

HRESULT SimEventSource::Unadvise(DWORD cookie) {
  for (auto it = sinks_.begin(); it != sinks_.end(); ++it) {
    if (it->cookie != cookie) continue;
    IDispatch* sink = it->sink;
    sinks_.erase(it);
    sink->Release();
    return S_OK;
  }
  return CONNECT_E_NOCONNECTION;
}

HRESULT SimEventSource::EnumConnections(IEnumConnections** connections) {
  if (connections) *connections = nullptr;
  return E_NOTIMPL;
}

void SimEventSource::Fire(DISPID dispid, std::vector<VARIANT> arguments) {
  std::vector<VARIANTARG> reversed(arguments.rbegin(), arguments.rend());
  DISPPARAMS params{reversed.empty() ? nullptr : reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  // A copy: a sink may unadvise while it handles the event.
  const std::vector<Connection> sinks = sinks_;
  for (const Connection& connection : sinks) {
    connection.sink->AddRef();
    VARIANT result;
    VariantInit(&result);
    connection.sink->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, &result, nullptr,
                            nullptr);
    VariantClear(&result);
    connection.sink->Release();
  }
}
