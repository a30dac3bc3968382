#include "overlay/custom_ui_updater.h"

// The overlay decisions join this tick as the overlay windows land.
void CALLBACK CustomUiTimerProc(HWND, UINT, UINT_PTR, DWORD) {}
