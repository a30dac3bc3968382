#include "overlay/windows/overlay_window_state.h"

void BindWindowState(HWND window, LPARAM createStruct) {
  const auto* create = reinterpret_cast<const CREATESTRUCTW*>(createStruct);
  if (create == nullptr || create->lpCreateParams == nullptr) return;
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
}

OverlayWindowState* WindowStateOf(HWND window) {
  return reinterpret_cast<OverlayWindowState*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

void UnbindWindowState(HWND window) {
  OverlayWindowState* state = WindowStateOf(window);
  if (state == nullptr) return;
  SetWindowLongPtrW(window, GWLP_USERDATA, 0);
  if (state->badgeWindow == window) {
    state->badgeWindow = nullptr;
    state->buttonDown = 0;
    state->dragged = 0;
  }
  if (state->subOverlayWindow == window) state->subOverlayWindow = nullptr;
}
