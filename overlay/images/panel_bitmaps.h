#pragma once
// The pictures a built panel shows, remembered with the panel so they go
// when it goes. A person's avatar is the panel's own and is deleted with
// it; a shared image (kept for the process) is only taken out of its
// control. A static control of the version 6 common controls may show a
// copy of a bitmap with alpha instead of the bitmap itself; such a copy is
// deleted too.
#include <windows.h>

// Notes that `control` of `panel` shows `bitmap`; owned bitmaps are
// deleted when the panel is destroyed.
void RememberPanelBitmap(HWND panel, HWND control, HBITMAP bitmap, bool owned);

// At the panel's WM_DESTROY (its controls still exist): takes every
// remembered bitmap out of its control, deleting any copy the control made.
void TakeBitmapsOutOfControls(HWND panel);

// At the panel's WM_NCDESTROY: deletes the panel's own bitmaps and forgets
// them all.
void ReleasePanelBitmaps(HWND panel);
