#pragma once
// Process-wide state that the connection sets up and the rest of the
// add-in reads. Only the UI thread writes it; OfficeApp (common/office_app.h)
// and the host reference are set before the update thread starts.
#include <windows.h>
#include <oaidl.h>

#include <string>

#include "common/com_ptr.h"
#include "common/unique_resource.h"

// The running host's _Application; only the one of the current host is set.
extern ComPtr<IDispatch> WordApplication;
extern ComPtr<IDispatch> ExcelApplication;
extern ComPtr<IDispatch> PowerPointApplication;

// The application object of whichever host is running, or null.
IDispatch* CurrentHostApplication();

// "immediatelyUpdateEvent": named, manual-reset, shared by every Office
// process of the logon. Document handlers set it to wake the update thread.
extern UniqueHandle ImmediateUpdateEvent;

// Handle of the heap-corruption handler while it is installed.
extern PVOID VectoredHandlerHandle;

// Where the overlay images come from: %APPDATA%\QelvoFilewell\bin\images.
extern std::wstring ImagesFolder;

// Token of the GDI+ start-up.
extern ULONG_PTR GdiplusToken;

// The host executable's path, lower-cased.
extern std::wstring OfficeAppPath;
