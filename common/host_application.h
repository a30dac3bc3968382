#pragma once
// The running host's _Application object, kept by the connection for as
// long as the add-in is connected: the document routines, the UI tick and
// the document actions reach the active document, the open documents and
// the host's window through it. Set on the UI thread before the update
// thread starts; the update thread never touches it.
#include <oaidl.h>

#include "common/com_ptr.h"

extern ComPtr<IDispatch> HostApplication;
