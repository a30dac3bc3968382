#pragma once
#include <windows.h>

// The 4000 ms UI tick: decides, for every open document, what its overlay
// shows. Runs on the host's UI thread.
void CALLBACK CustomUiTimerProc(HWND window, UINT message, UINT_PTR id, DWORD time);
