#pragma once
#include <windows.h>

// Shows `bitmap` as the whole content of the layered window, at the
// window's place: pixels of `colourKey` are see-through, all others
// opaque. Nonzero on success; each failure is logged with its own text.
int ApplyLayering(HWND window, HBITMAP bitmap, COLORREF colourKey);
