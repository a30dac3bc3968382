#pragma once
#include <windows.h>

// The window procedure of the badge and of every panel: clicks on the badge
// open and close its panel, dragging moves it inside the Office window, the
// panels' buttons and link act for the user, and a destroyed window is
// forgotten by its record at once.
LRESULT CALLBACK OverlayWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
