#pragma once
// How the overlays' controls are coloured and the owner-drawn ones painted.
// Every brush is made once, the first time its colour is needed, and kept:
// a brush made per WM_CTLCOLOR* message would leak a GDI object per repaint.
#include <windows.h>

#include "overlay/layouts/control_looks.h"

// Kept with a static text or button the builder made, from its layout step:
// how it is coloured and, for an owner-drawn button, drawn. A control
// without one is plain black on white.
void RememberControlLook(HWND control, ColourRole colour, ButtonLook look, ButtonShape shape);

// WM_CTLCOLORSTATIC of an overlay window: the control's colours by its
// remembered colour role; the brush to return.
HBRUSH StaticControlColours(HWND control, HDC dc);
// WM_CTLCOLORBTN: black on white.
HBRUSH ButtonControlColours(HDC dc);
// The kept solid brush of a colour.
HBRUSH KeptBrush(COLORREF colour);

// WM_DRAWITEM: paints an owner-drawn button in its look or an owner-drawn
// text in its colours; a rounded button gets its corners first.
void DrawOwnerDrawnControl(const DRAWITEMSTRUCT& item);
