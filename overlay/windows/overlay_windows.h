#pragma once
#include <windows.h>

#include <string>

// Takes overlay windows down: the panel first, then the badge, each hidden
// before it is destroyed, and each handle forgotten the moment its window
// is gone. Either handle may be null.
void DestroyOverlayWindows(HWND& panel, HWND& badge);

// The same for the windows of the file under `path`; its overlay state no
// longer names them afterwards.
void DestroyRecordOverlays(const std::wstring& path);
