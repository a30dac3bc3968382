#include "addin/file_closing.h"

#include "common/dispatch.h"
#include "docactions/unsaved_changes.h"
#include "log/write_log.h"
#include "overlay/overlay_windows.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"

void OnFileClosing(ComPtr<IDispatch> document) {
  static DispatchName fullName(L"FullName");
  const std::wstring path = GetStringProperty(document.get(), fullName, 0);

  FileStatusCache& cache = TheFileStatusCache();
  if (!cache.Contains(path)) {
    WriteLog(LogLevel::Warning, L"close file - file info not available in cache - " + path);
    return;
  }
  const bool unsaved = HasUnsavedChanges(document);
  FileStatusRecord& record = cache.Find(path);
  const bool addinIsClosingIt = record.retryModify || record.resolveConflict || record.retryRenameOrMove;
  if (unsaved && !addinIsClosingIt) {
    // The user's own close of a modified file: the host now asks about
    // saving, and the document may well stay open.
    WriteLog(LogLevel::Info, L"user tried to close file, but has unsaved changes - " + path);
    return;
  }
  WriteLog(LogLevel::Info, (unsaved ? L"we close this file to sync event - " : L"close file - ") + path);
  record.isOpen = 0;
  DestroyOverlayWindows(record.subOverlayWindow, record.badgeWindow);
  record.overlayKind = 0;
  const std::wstring request = cache.BuildRequest(path, 0);
  cache.RemoveFile(path);
  TheSyncAppPipe().Exchange(request);
}
