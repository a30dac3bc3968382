#include "overlay/windows/overlay_window_states.h"

#include <algorithm>
#include <map>

#include "overlay/windows/overlay_windows.h"

namespace {
std::map<std::wstring, SharedWindowState>& States() {
  // Never destroyed: at process end there is no window left to take down.
  static auto* states = new std::map<std::wstring, SharedWindowState>();
  return *states;
}

// A state's last holder takes its windows down with it.
void DestroyState(OverlayWindowState* state) {
  DestroyOverlayWindows(state->subOverlayWindow, state->badgeWindow);
  delete state;
}

void Drop(std::map<std::wstring, SharedWindowState>::iterator found) {
  // Out of the table first: a window message sent while the windows go
  // finds no state by path.
  SharedWindowState state = std::move(found->second);
  States().erase(found);
  DestroyOverlayWindows(state->subOverlayWindow, state->badgeWindow);
}
}  // namespace

SharedWindowState WindowStateFor(const std::wstring& path, HWND hostWindow) {
  SharedWindowState& state = States()[path];
  if (!state) {
    state = SharedWindowState(new OverlayWindowState(), DestroyState);
    state->path = path;
  }
  state->hostWindow = hostWindow;
  return state;
}

SharedWindowState FindWindowState(const std::wstring& path) {
  const auto found = States().find(path);
  return found == States().end() ? nullptr : found->second;
}

void DropWindowState(const std::wstring& path) {
  const auto found = States().find(path);
  if (found != States().end()) Drop(found);
}

void KeepWindowStatesOf(const std::vector<std::wstring>& paths) {
  auto& states = States();
  for (auto it = states.begin(); it != states.end();) {
    auto next = std::next(it);
    if (!std::binary_search(paths.begin(), paths.end(), it->first)) Drop(it);
    it = next;
  }
}

void DropAllWindowStates() {
  while (!States().empty()) Drop(States().begin());
}
