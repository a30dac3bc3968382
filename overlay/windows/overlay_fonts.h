#pragma once
#include <windows.h>

#include "overlay/layouts/font_table.h"

// The font of a role at a DPI (its height scaled, ScaleFontForDpi),
// created the first time it is asked for and kept for the life of the
// process (the overlays' controls use it for as long as they live); null
// for FontRole::None or when it cannot be created.
HFONT OverlayFont(FontRole role, int dpi = 96);

// For a text control whose layout gives it no font (the dotted and
// underscored rules): null at 96 DPI, where it keeps the system font;
// elsewhere the default face at the default size scaled, because the
// system font keeps its 96-DPI width and a rule would stop short of the
// panel's scaled edge. Kept like the role fonts.
HFONT UnsetTextFont(int dpi);

// At a window's WM_DESTROY, while its controls still exist: gives every
// link (SysLink) among its descendants no font. The role fonts are shared
// and kept for the process, but Wine's SysLink deletes the font it holds
// when it is destroyed (Windows' leaves it to its owner, as WM_SETFONT
// says); taken out first, the font survives for the next panel.
void TakeOverlayFontsOutOfLinks(HWND window);
