#pragma once
// The host's application events reach the add-in through one dispatch-only
// sink per host, advised on the application's connection point for that
// host's event interface. Only the running host's sink is ever advised.
#include <windows.h>
#include <oaidl.h>

#include "common/com_ptr.h"
#include "common/office_app.h"

class HostEventSink;

class HostEventSinks {
 public:
  HostEventSinks();
  ~HostEventSinks();
  HostEventSinks(const HostEventSinks&) = delete;
  HostEventSinks& operator=(const HostEventSinks&) = delete;

  // Advises the host's sink; the result is the connection's result.
  HRESULT Subscribe(OfficeHost host, IDispatch* application);
  void Unsubscribe(OfficeHost host, IDispatch* application);

 private:
  HostEventSink* SinkOf(OfficeHost host) const;
  HostEventSink* word_;
  HostEventSink* excel_;
  HostEventSink* powerPoint_;
};
