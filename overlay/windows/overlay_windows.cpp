#include "overlay/windows/overlay_windows.h"

#include "overlay/windows/overlay_window_states.h"

namespace {
// Whether the active window is `window` or one it owns (a badge's panel).
bool HoldsActivation(HWND window) {
  for (HWND active = GetActiveWindow(); active != nullptr; active = GetWindow(active, GW_OWNER)) {
    if (active == window) return true;
  }
  return false;
}

// An overlay that holds the activation hands it to its Office window
// before it goes: hidden while active, Windows would pass it to whichever
// window comes next. One that does not hold it leaves it alone, for in
// Word activating a document's window brings that document to the front
// and the user's next keystrokes would go into it, and Office's own
// dialogs would lose the keyboard.
void HandActivationBackFrom(HWND window) {
  if (!HoldsActivation(window)) return;
  HWND office = GetAncestor(window, GA_ROOTOWNER);
  if (office != nullptr && office != window) SetActiveWindow(office);
}

}  // namespace

void DestroyOverlayWindow(HWND& window) {
  if (window == nullptr) return;
  HandActivationBackFrom(window);
  ShowWindow(window, SW_HIDE);
  DestroyWindow(window);
  window = nullptr;
}

void DestroyOverlayWindows(HWND& panel, HWND& badge) {
  DestroyOverlayWindow(panel);
  DestroyOverlayWindow(badge);
}

void DestroyRecordOverlays(const std::wstring& path) {
  // The state stays (the badge's place and kind): should the document stay
  // open after all, the next tick draws it again from there.
  if (const SharedWindowState state = FindWindowState(path)) {
    DestroyOverlayWindows(state->subOverlayWindow, state->badgeWindow);
  }
}
