#include "addin/event_sinks.h"

// The sinks join here with the document handlers.
HRESULT HostEventSinks::Subscribe(OfficeHost, IDispatch*) { return S_OK; }
void HostEventSinks::Unsubscribe(OfficeHost, IDispatch*) {}
