#pragma once
#include <windows.h>

// Takes a record's overlay windows down: the panel first, then the badge,
// each hidden before it is destroyed, and each handle forgotten the moment
// its window is gone. Either handle may be null.
void DestroyOverlayWindows(HWND& panel, HWND& badge);
