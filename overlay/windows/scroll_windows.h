#pragma once
#include <windows.h>

// A one-line text that may be wider than its box (the rename/move panel's
// old and new names): scrolls sideways in character steps.
LRESULT CALLBACK HorScrollWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// A white area whose rows may be taller than the panel (the active users'
// long member list): scrolls up and down in line steps.
LRESULT CALLBACK VerScrollWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
