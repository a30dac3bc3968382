#pragma once
#include <windows.h>

// Registers one overlay window class with the DLL's instance; 0 on failure.
ATOM RegisterOverlayWindowClass(const wchar_t* className, HINSTANCE instance);
// Takes back every class registered above (when the DLL may be unloaded).
void UnregisterOverlayWindowClasses(HINSTANCE instance);
