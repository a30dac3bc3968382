#pragma once
// The host's application events reach the add-in through one dispatch-only
// sink per host, advised on the application's connection point.
#include <windows.h>
#include <oaidl.h>

#include "common/office_app.h"

class HostEventSinks {
 public:
  // Advises the running host's sink; the result is the connection's result.
  HRESULT Subscribe(OfficeHost host, IDispatch* application);
  void Unsubscribe(OfficeHost host, IDispatch* application);
};
