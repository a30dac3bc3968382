#pragma once
// Every file's overlay window state, by path, on the UI thread. A state
// lives while its file is cached; the tick drops the states of files no
// longer cached, and dropping one destroys its windows first, so no window
// ever points at a state that is gone. Shared pointers let a window
// message that closes the document (and so drops the state) finish with
// the state it started with.
#include <memory>
#include <string>
#include <vector>

#include "overlay/windows/overlay_window_state.h"

using SharedWindowState = std::shared_ptr<OverlayWindowState>;

// The file's state, made (with nothing on screen) when it has none yet.
SharedWindowState WindowStateFor(const std::wstring& path, HWND hostWindow);
// The file's state, or null.
SharedWindowState FindWindowState(const std::wstring& path);
// Destroys the file's windows and forgets its state.
void DropWindowState(const std::wstring& path);
// Drops the state of every file not among `paths` (in key order).
void KeepWindowStatesOf(const std::vector<std::wstring>& paths);
// Destroys every file's windows and forgets every state: the add-in is
// leaving.
void DropAllWindowStates();
