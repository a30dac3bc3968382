#include "overlay/overlay_windows.h"

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
