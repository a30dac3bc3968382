#include "addin/connect.h"

#include <algorithm>
#include <new>

#include "addin/badge_visibility_setting.h"
#include "addin/connection_state.h"
#include "addin/custom_ui_timer.h"
#include "addin/heap_corruption_handler.h"
#include "addin/host_identity.h"
#include "addin/module.h"
#include "common/dispatch.h"
#include "common/host_application.h"
#include "common/host_profile.h"
#include "common/module_instance.h"
#include "common/office_app.h"
#include "common/text.h"
#include "log/exception_barrier.h"
#include "log/log_folder.h"
#include "log/log_last_error.h"
#include "log/thread_names.h"
#include "log/write_log.h"
#include "overlay/windows/overlay_window_states.h"
#include "overlay/windows/ui_toolkit.h"
#include "overlay/windows/window_class_names.h"
#include "overlay/windows/window_classes.h"
#include "synclink/event_update_thread.h"
#include "synclink/file_status_cache.h"
#include "synclink/immediate_update_event.h"

namespace {
// TerminateThread returns before the thread has ended; ending it takes no
// more than a moment, so this only bounds a wait that should never last.
constexpr DWORD kThreadGoneWaitMs = 1000;
// Office flags an add-in whose disconnection takes more than 500 ms; this
// leaves room for what follows the wait for the update thread.
constexpr ULONGLONG kDisconnectionBudgetMs = 450;
// The least the update thread is given to leave, however long the rest
// took: a thread ended from outside may leave a lock behind.
constexpr DWORD kThreadLeaveMinimumMs = 50;

// The five extensibility methods as late-bound callers name them.
struct ExtensibilityMember {
  const wchar_t* name;
  DISPID id;
};
const ExtensibilityMember kExtensibilityMembers[] = {
    {L"OnConnection", 1}, {L"OnDisconnection", 2}, {L"OnAddInsUpdate", 3},
    {L"OnStartupComplete", 4}, {L"OnBeginShutdown", 5},
};
}  // namespace

HRESULT CConnect::Create(REFIID iid, void** object) {
  auto* connect = new (std::nothrow) CConnect();
  if (connect == nullptr) return E_OUTOFMEMORY;
  const HRESULT hr = connect->QueryInterface(iid, object);
  connect->Release();
  return hr;
}

CConnect::CConnect() { ModuleAddRef(); }

CConnect::~CConnect() {
  if (connected_) ReleaseWhatConnectionLeft();
  // Disconnection leaves the thread handle alone; the object's end is
  // where it is given back. A terminated thread may still be on its way
  // out: the module count drops (and the DLL may go) only once it is gone.
  if (EventUpdateThreadHandle) WaitForSingleObject(EventUpdateThreadHandle.get(), kThreadGoneWaitMs);
  EventUpdateThreadHandle.reset();
  ModuleRelease();
}

// Office releases an add-in whose connection failed without disconnecting
// it, and may unload the DLL right after. Whatever that connection set up
// would then run on into unmapped code (the thread, the timer, the
// exception handler, which Windows calls for every exception in Office),
// the sink would stay advised and the host would keep our reference on its
// application. No disconnection took place, so nothing is logged.
void CConnect::ReleaseWhatConnectionLeft() {
  connected_ = false;
  if (EventUpdateThreadHandle) StopEventUpdateThread(EventUpdateThreadHandle.get());
  if (CustomUiTimerId != 0) KillTimer(nullptr, CustomUiTimerId);
  CustomUiTimerId = 0;
  if (CurrentHostProfile() != nullptr) {
    sinks_.Unsubscribe(OfficeApp, HostApplication.get());
    HostApplication.reset();
  }
  ShutdownGdiplus();
  if (VectoredHandlerHandle != nullptr) RemoveVectoredExceptionHandler(VectoredHandlerHandle);
  VectoredHandlerHandle = nullptr;
}

HRESULT CConnect::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, IID__IDTExtensibility2)) {
    *object = static_cast<_IDTExtensibility2*>(this);
  } else if (IsEqualIID(iid, IID_IConnect)) {
    *object = static_cast<IConnect*>(this);
  } else {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG CConnect::AddRef() { return ++references_; }

ULONG CConnect::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT CConnect::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT CConnect::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info) *info = nullptr;
  return DISP_E_BADINDEX;
}

HRESULT CConnect::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr) return E_POINTER;
  HRESULT hr = S_OK;
  for (UINT i = 0; i < count; ++i) {
    ids[i] = DISPID_UNKNOWN;
    if (i == 0) {
      for (const auto& member : kExtensibilityMembers) {
        if (names[0] != nullptr && lstrcmpiW(names[0], member.name) == 0) ids[0] = member.id;
      }
    }
    if (ids[i] == DISPID_UNKNOWN) hr = DISP_E_UNKNOWNNAME;
  }
  return hr;
}

HRESULT CConnect::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                         UINT* badArgument) {
  if (!(flags & DISPATCH_METHOD)) return DISP_E_MEMBERNOTFOUND;
  if (params == nullptr) return E_INVALIDARG;
  const UINT expected = id == 1 ? 4 : id == 2 ? 2 : 1;
  if (id < 1 || id > 5) return DISP_E_MEMBERNOTFOUND;
  if (params->cArgs != expected) return DISP_E_BADPARAMCOUNT;
  // Only the first argument of OnConnection is ever read; the custom arrays
  // are passed on as null.
  if (id == 1) {
    VARIANT application;
    VariantInit(&application);
    HRESULT hr = DispGetParam(params, 0, VT_DISPATCH, &application, badArgument);
    if (FAILED(hr)) return hr;
    VARIANT mode;
    VariantInit(&mode);
    hr = DispGetParam(params, 1, VT_I4, &mode, badArgument);
    if (FAILED(hr)) {
      VariantClear(&application);
      return hr;
    }
    hr = OnConnection(application.pdispVal, mode.lVal, nullptr, nullptr);
    VariantClear(&application);
    return hr;
  }
  if (id == 2) {
    VARIANT mode;
    VariantInit(&mode);
    const HRESULT hr = DispGetParam(params, 0, VT_I4, &mode, badArgument);
    if (FAILED(hr)) return hr;
    return OnDisconnection(mode.lVal, nullptr);
  }
  if (id == 3) return OnAddInsUpdate(nullptr);
  if (id == 4) return OnStartupComplete(nullptr);
  return OnBeginShutdown(nullptr);
}

HRESULT CConnect::OnConnection(IDispatch* application, int, IDispatch*, SAFEARRAY**) {
  // Installed first, before anything can log: the handler must be there
  // for whatever the rest of the start-up does.
  VectoredHandlerHandle = AddVectoredExceptionHandler(0, HeapCorruptionHandler);
  const DWORD vehError = GetLastError();
  connected_ = true;
  const bool pinned = PinModule();
  const DWORD pinError = GetLastError();

  HRESULT result = S_OK;
  Guarded(L"office app tries to connect", 0, [&] {
    NameThread(GetCurrentThreadId(), L"MainThread");
    InitLogFolder();
    WriteLog(LogLevel::Info, L"Add-in version = 1.0.0.4");
    WriteLog(LogLevel::Info, L"office app connects");
    if (VectoredHandlerHandle != nullptr) {
      WriteLog(LogLevel::Info, L"VEH added");
    } else {
      WriteLog(LogLevel::Error, L"couldn't add VEH - " + std::to_wstring(vehError));
    }
    if (!pinned) WriteLog(LogLevel::Error, L"couldn't keep add-in module loaded - " + std::to_wstring(pinError));
    if (ConnectToHost(application, result) == S_OK) StartRunningParts();
    return 0;
  });
  return result;
}

// Identifies the host and attaches to it. S_FALSE: not a host we serve, so
// the add-in stays idle (and the host keeps it loaded).
HRESULT CConnect::ConnectToHost(IDispatch* application, HRESULT& result) {
  wchar_t path[260];
  const DWORD length = GetModuleFileNameW(nullptr, path, 260);
  if (length == 0) {
    LogLastError(L"couldn't get office app path");
    return S_FALSE;
  }
  OfficeAppPath.assign(path, length);
  LowerAsciiInPlace(OfficeAppPath);

  const OfficeHost host = IdentifyHost(OfficeAppPath);
  if (host == OfficeHost::None) {
    WriteLog(LogLevel::Error, L"office app connects (but not Word/Excel/PPT)");
    return S_FALSE;
  }

  OfficeApp = host;
  ComPtr<IDispatch> hostApplication;
  if (application != nullptr) {
    application->QueryInterface(ProfileOf(host)->applicationInterface, hostApplication.put_void());
  }
  HostApplication = hostApplication;
  result = sinks_.Subscribe(host, hostApplication.get());
  static DispatchName version(L"Version");
  const std::wstring versionText = GetStringProperty(hostApplication.get(), version, 0);
  WriteLog(LogLevel::Info, L"office app connected");
  hostApplication.reset();
  WriteLog(LogLevel::Info, L"MS Office version = " + versionText);
  return S_OK;
}

void CConnect::StartRunningParts() {
  ImmediateUpdateEvent.reset(CreateEventW(nullptr, TRUE, FALSE, L"immediatelyUpdateEvent"));
  if (!ImmediateUpdateEvent) LogLastError(L"couldn't create ms office immediately update event");

  DWORD threadId = 0;
  // Named before it runs: its first line must carry its name, and the name
  // map has no lock against the thread reading it while it is written.
  EventUpdateThreadHandle.reset(
      CreateThread(nullptr, 0, EventUpdateThreadProc, nullptr, CREATE_SUSPENDED, &threadId));
  if (EventUpdateThreadHandle) {
    NameThread(threadId, L"EvntUpdate");
    ResumeThread(EventUpdateThreadHandle.get());
  } else {
    LogLastError(L"couldn't create ms office event update thread");
  }

  const HINSTANCE instance = ModuleInstance();
  if (instance != nullptr) {
    WriteLog(LogLevel::Debug, L"hinstance available");
  } else {
    WriteLog(LogLevel::Error, L"hinstance not available");
  }
  for (size_t i = 0; i < std::size(kOverlayWindowClasses); ++i) {
    const ATOM atom = RegisterOverlayWindowClass(instance, kOverlayWindowClasses[i].name);
    if (i == 0) WriteLog(atom != 0 ? LogLevel::Debug : LogLevel::Error, atom != 0 ? L"class registered" : L"class not registered");
  }

  InitUiToolkit();
  // Before the first tick: the tick draws by it.
  ReadBadgeVisibilitySetting();

  CustomUiTimerId = SetTimer(nullptr, 0, 4000, CustomUiTimerProc);
  if (CustomUiTimerId != 0) {
    WriteLog(LogLevel::Info, L"custom ui update timer added");
  } else {
    LogLastError(L"couldn't create custom ui update timer");
  }
}

HRESULT CConnect::OnDisconnection(int, SAFEARRAY**) {
  connected_ = false;
  disconnectionStart_ = GetTickCount64();
  Guarded(L"office app tries to disconnect", 0, [&] {
    WriteLog(LogLevel::Info, L"office app disconnects");
    // Asked to leave first: a thread waiting for a sync app that does not
    // answer would otherwise keep the pipe from the last request below, and
    // it leaves while the rest of the disconnection runs.
    if (EventUpdateThreadHandle) RequestEventUpdateThreadStop();
    // Every window first, then the records: the cache never reaches up
    // into the overlay.
    DropAllWindowStates();
    TheFileStatusCache().RemoveAll();
    DisconnectFromHost();
    ShutdownUiToolkit();
    StopRunningParts();
    WriteLog(LogLevel::Info, L"office app disconnected");
    return 0;
  });
  return S_OK;
}

void CConnect::DisconnectFromHost() {
  switch (OfficeApp) {
    case OfficeHost::Word:
    case OfficeHost::Excel:
    case OfficeHost::PowerPoint:
      sinks_.Unsubscribe(OfficeApp, HostApplication.get());
      HostApplication.reset();
      break;
    case OfficeHost::None:
      // Also the road of a host we do not serve: OfficeApp stayed 0 for it.
      WriteLog(LogLevel::Error, L"office app disconnects, but unknown exception occurred when office app connected");
      break;
    default:
      WriteLog(LogLevel::Error, L"office app disconnects (but not Word/Excel/PPT)");
      break;
  }
}

void CConnect::StopRunningParts() {
  if (VectoredHandlerHandle != nullptr) {
    if (RemoveVectoredExceptionHandler(VectoredHandlerHandle) == 0) {
      LogLastError(L"couldn't remove VEH");
    } else {
      WriteLog(LogLevel::Info, L"VEH removed");
    }
  } else {
    WriteLog(LogLevel::Error, L"VEH not available to remove");
  }

  if (EventUpdateThreadHandle) {
    // Asked to leave when the disconnection began, it has normally long
    // gone; it gets what is left of the budget.
    const ULONGLONG spent = GetTickCount64() - disconnectionStart_;
    const DWORD left = spent >= kDisconnectionBudgetMs ? 0 : static_cast<DWORD>(kDisconnectionBudgetMs - spent);
    if (!AwaitEventUpdateThreadEnd(EventUpdateThreadHandle.get(), std::max(left, kThreadLeaveMinimumMs))) {
      LogLastError(L"couldn't stop ms office event update thread");
    } else {
      WriteLog(LogLevel::Info, L"stopped event update thread");
    }
  } else {
    WriteLog(LogLevel::Error, L"event update thread not available to stop");
  }

  if (CustomUiTimerId != 0) {
    if (!KillTimer(nullptr, CustomUiTimerId)) {
      LogLastError(L"couldn't remove custom ui update timer");
    } else {
      WriteLog(LogLevel::Info, L"custom ui update timer removed");
    }
  } else {
    WriteLog(LogLevel::Error, L"custom ui update timer not available to remove");
  }
}

HRESULT CConnect::OnAddInsUpdate(SAFEARRAY**) { return S_OK; }

HRESULT CConnect::OnStartupComplete(SAFEARRAY**) {
  WriteLog(LogLevel::Info, L"office app startup completed");
  return S_OK;
}

HRESULT CConnect::OnBeginShutdown(SAFEARRAY**) {
  WriteLog(LogLevel::Info, L"office app begins to shut down");
  return S_OK;
}
