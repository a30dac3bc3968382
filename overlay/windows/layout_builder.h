#pragma once
// The one routine that turns a layout into windows: the panel or status
// overlay window, then every step in order (children with their fonts,
// pictures, regions and marquees; the list shrinking to its rows), then the
// final size. A step that fails logs its own text with the system's error
// text and ends the build: the half-built window is destroyed and null
// returned.
#include <windows.h>

#include "overlay/layouts/overlay_geometry.h"
#include "overlay/layouts/panel_layout.h"

// The layout is given for 96 DPI and built at the DPI of `officeWindow`
// (ScaleLayoutForDpi, fonts and pictures at that DPI too).
// Panels are placed against `badgeWindow` inside `officeWindow` and owned
// by the badge; status overlays go at `at` and are owned by the Office
// window. `driveBitmap` is the picture of a status overlay's drive image
// (the caller's; not freed here). The window is bound to `state` (a panel
// without one, to its badge's) from WM_NCCREATE on.
struct OverlayWindowState;
HWND BuildLayout(const PanelLayout& layout, HWND officeWindow, HWND badgeWindow, Point at, HBITMAP driveBitmap,
                 OverlayWindowState* state = nullptr);
