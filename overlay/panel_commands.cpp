#include "overlay/panel_commands.h"

#include <optional>
#include <string>

#include "log/write_log.h"
#include "overlay/overlay_windows.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"

namespace {
// "Hide": both windows go at once and stay away while uiHide is set; the
// sync app hears of it now, not at the next cycle.
void Hide(const std::wstring& path, const FileStatusRecord& record) {
  FileStatusCache& cache = TheFileStatusCache();
  cache.Change(path, [](FileStatusRecord& stored) {
    stored.uiHide = 1;
    stored.overlayKind = 0;
    ResetUserActionFlags(stored);
  });
  HWND panel = record.subOverlayWindow;
  HWND badge = record.badgeWindow;
  DestroyOverlayWindows(panel, badge);
  TheSyncAppPipe().Exchange(cache.BuildRequest(path, 1));
}
}  // namespace

void HandlePanelCommand(HWND panel, int id) {
  FileStatusCache& cache = TheFileStatusCache();
  switch (id) {
    case 3014: {
      WriteLog(LogLevel::Debug, L"user clicked hide option");
      const std::optional<std::wstring> path = cache.PathOfWindow(panel, FileStatusCache::WindowRole::Panel);
      if (!path) return;
      const std::optional<FileStatusRecord> record = cache.Find(*path);
      if (!record) return;
      WriteLog(LogLevel::Info, L"user clicked hide option: " + *path);
      Hide(*path, *record);
      return;
    }
    default:
      return;
  }
}
