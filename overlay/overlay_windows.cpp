#include "overlay/overlay_windows.h"

#include "synclink/file_status_cache.h"

namespace {
void HideAndDestroy(HWND& window) {
  if (window == nullptr) return;
  ShowWindow(window, SW_HIDE);
  DestroyWindow(window);
  window = nullptr;
}
}  // namespace

void DestroyOverlayWindows(HWND& panel, HWND& badge) {
  HideAndDestroy(panel);
  HideAndDestroy(badge);
}

void DestroyRecordOverlays(const std::wstring& path) {
  FileStatusCache& cache = TheFileStatusCache();
  const std::optional<FileStatusRecord> record = cache.Find(path);
  if (!record) return;
  HWND panel = record->subOverlayWindow;
  HWND badge = record->badgeWindow;
  DestroyOverlayWindows(panel, badge);
  cache.Change(path, [&](FileStatusRecord& stored) {
    if (stored.subOverlayWindow == record->subOverlayWindow) stored.subOverlayWindow = nullptr;
    if (stored.badgeWindow == record->badgeWindow) stored.badgeWindow = nullptr;
  });
}
