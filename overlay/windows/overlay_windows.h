#pragma once
#include <windows.h>

#include <string>

// Takes one overlay window down: hidden (handing the activation back to
// its Office window if it held it), destroyed, and the handle forgotten.
// A null handle is left alone.
void DestroyOverlayWindow(HWND& window);

// The panel first, then the badge, each as above. Either may be null.
void DestroyOverlayWindows(HWND& panel, HWND& badge);

// The same for the windows of the file under `path`; its overlay state no
// longer names them afterwards.
void DestroyRecordOverlays(const std::wstring& path);
