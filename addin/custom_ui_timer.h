#pragma once
#include <windows.h>

// The 4000 ms UI timer's callback: one tick of the overlay, with the
// document routine that records an active document not cached yet.
void CALLBACK CustomUiTimerProc(HWND window, UINT message, UINT_PTR id, DWORD time);
