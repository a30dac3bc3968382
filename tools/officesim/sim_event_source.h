#pragma once
// The Application's connection point for the host's application events.
// As in Office, Advise asks the sink for the event interface itself and
// refuses a sink that only answers IDispatch.
#include <windows.h>
#include <ocidl.h>

#include <vector>

class SimEventSource final : public IConnectionPointContainer, public IConnectionPoint {
 public:
  // `owner` is the object whose identity and lifetime these interfaces share.
  SimEventSource(IUnknown* owner, const IID& eventInterface);
  ~SimEventSource();

  // Fires one event at every advised sink; arguments in natural order
  // (they go out reversed, as IDispatch expects).
  void Fire(DISPID dispid, std::vector<VARIANT> arguments);
  size_t sinkCount() const { return sinks_.size(); }
  // The event interface pointer an advised sink gave (borrowed), or null.
  IDispatch* sinkAt(size_t index) const { return index < sinks_.size() ? sinks_[index].sink : nullptr; }

  // IUnknown (delegated to the owner)
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return owner_->AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return owner_->Release(); }
  // IConnectionPointContainer
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override;
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;
  // IConnectionPoint
  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override;
  HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) override;
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override;

 private:
  struct Connection {
    DWORD cookie;
    IDispatch* sink;  // the event interface pointer, owned
  };
  IUnknown* owner_;
  IID eventInterface_;
  std::vector<Connection> sinks_;
  DWORD nextCookie_ = 1;
};
