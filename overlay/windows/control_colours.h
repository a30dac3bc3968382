#pragma once
// How the overlays' controls are coloured and the owner-drawn ones painted.
// Every brush is made once, the first time its colour is needed, and kept:
// a brush made per WM_CTLCOLOR* message would leak a GDI object per repaint.
#include <windows.h>

// WM_CTLCOLORSTATIC of an overlay window: the control's colours by its id;
// the brush to return.
HBRUSH StaticControlColours(HWND control, HDC dc);
// WM_CTLCOLORBTN: black on white.
HBRUSH ButtonControlColours(HDC dc);
// The kept solid brush of a colour.
HBRUSH KeptBrush(COLORREF colour);

// WM_DRAWITEM: paints an owner-drawn button or text; the buttons of the
// overlay's own ids get their rounded corners first.
void DrawOwnerDrawnControl(const DRAWITEMSTRUCT& item);
