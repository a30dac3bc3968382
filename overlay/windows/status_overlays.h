#pragma once
// The three small overlays the timer puts over the Office window: the badge
// (a layered 70 × 70 window, transparent until a picture is laid onto it),
// the no-internet strip and the loading strip. Placed at the caller's
// screen point, owned by the Office window, shown at once without taking
// the focus; null on failure (logged).
#include <windows.h>

HWND CreateMainOverlay(HWND officeWindow, int x, int y);
HWND CreateNoInternetOverlay(HWND officeWindow, HBITMAP driveBitmap, int x, int y);
HWND CreateLoadingOverlay(HWND officeWindow, HBITMAP driveBitmap, int x, int y);
