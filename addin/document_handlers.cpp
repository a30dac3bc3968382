#include "addin/document_handlers.h"

#include "common/dispatch.h"
#include "common/host_application.h"
#include "common/host_profile.h"
#include "docactions/unsaved_changes.h"
#include "log/write_log.h"
#include "synclink/file_status_cache.h"
#include "synclink/immediate_update_event.h"

namespace {
HWND HostWindowOf(const HostProfile& profile, IDispatch* document) {
  static DispatchName activeWindow(L"ActiveWindow");
  static DispatchName hwnd(L"Hwnd");
  static DispatchName powerPointHwnd(L"HWND");
  long handle = 0;
  switch (profile.windowSource) {
    case HostWindowSource::DocumentActiveWindow: {
      ComPtr<IDispatch> window = GetObjectProperty(document, activeWindow);
      handle = GetLongProperty(window.get(), hwnd);
      break;
    }
    case HostWindowSource::ApplicationHwnd:
      handle = GetLongProperty(HostApplication.get(), hwnd);
      break;
    case HostWindowSource::ApplicationHWND:
      handle = GetLongProperty(HostApplication.get(), powerPointHwnd);
      break;
  }
  // Window handles are 32-bit values even in 64-bit processes.
  return reinterpret_cast<HWND>(static_cast<INT_PTR>(handle));
}
}  // namespace

std::wstring RecordDocument(ComPtr<IDispatch> document) {
  static DispatchName fullName(L"FullName");
  static DispatchName name(L"Name");
  const HostProfile* profile = CurrentHostProfile();
  if (profile == nullptr) return std::wstring();
  FileStatusCache& cache = TheFileStatusCache();

  const std::wstring path = GetStringProperty(document.get(), fullName, 0);
  // The first open or activate event makes the record; later ones leave it.
  if (cache.Contains(path)) return path;

  const std::wstring shortName = GetStringProperty(document.get(), name, 0);
  const std::wstring word = profile->logWord;
  if (path == shortName) {
    // Never saved to a folder: the sync app cannot know anything about it.
    WriteLog(LogLevel::Debug, word + L" opens/activates, but unsaved " + word + L" - " + path);
    return path;
  }
  WriteLog(LogLevel::Info, word + L" open/activate/save - " + path);

  const HWND hostWindow = HostWindowOf(*profile, document.get());
  const bool isEditing = HasUnsavedChanges(document);
  cache.AddFile(path, hostWindow, isEditing ? 1 : 0, document.get());
  SetEvent(ImmediateUpdateEvent.get());
  return path;
}
