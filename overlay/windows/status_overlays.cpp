#include "overlay/windows/status_overlays.h"

#include "overlay/windows/layout_builder.h"
#include "overlay/layouts/status_overlay_layouts.h"

HWND CreateMainOverlay(HWND officeWindow, int x, int y, OverlayWindowState* state) {
  return BuildLayout(MainOverlayLayout(), officeWindow, nullptr, {x, y}, nullptr, state);
}

HWND CreateNoInternetOverlay(HWND officeWindow, HBITMAP driveBitmap, int x, int y, OverlayWindowState* state) {
  return BuildLayout(NoInternetOverlayLayout(), officeWindow, nullptr, {x, y}, driveBitmap, state);
}

HWND CreateLoadingOverlay(HWND officeWindow, HBITMAP driveBitmap, int x, int y, OverlayWindowState* state) {
  return BuildLayout(LoadingOverlayLayout(), officeWindow, nullptr, {x, y}, driveBitmap, state);
}
