#pragma once
// The three small overlays the timer puts over the Office window: the badge
// (a layered 70 × 70 window, transparent until a picture is laid onto it),
// the no-internet strip and the loading strip. Placed at the caller's
// screen point, owned by the Office window, shown at once without taking
// the focus; null on failure (logged). `state`, when given, is the file's
// overlay state that the window is bound to from its creation on.
#include <windows.h>

struct OverlayWindowState;

HWND CreateMainOverlay(HWND officeWindow, int x, int y, OverlayWindowState* state = nullptr);
HWND CreateNoInternetOverlay(HWND officeWindow, HBITMAP driveBitmap, int x, int y,
                             OverlayWindowState* state = nullptr);
HWND CreateLoadingOverlay(HWND officeWindow, HBITMAP driveBitmap, int x, int y, OverlayWindowState* state = nullptr);
