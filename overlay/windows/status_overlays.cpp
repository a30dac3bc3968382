#include "overlay/windows/status_overlays.h"

#include "overlay/windows/layout_builder.h"
#include "overlay/layouts/status_overlay_layouts.h"

HWND CreateMainOverlay(HWND officeWindow, int x, int y) {
  return BuildLayout(MainOverlayLayout(), officeWindow, nullptr, {x, y}, nullptr);
}

HWND CreateNoInternetOverlay(HWND officeWindow, HBITMAP driveBitmap, int x, int y) {
  return BuildLayout(NoInternetOverlayLayout(), officeWindow, nullptr, {x, y}, driveBitmap);
}

HWND CreateLoadingOverlay(HWND officeWindow, HBITMAP driveBitmap, int x, int y) {
  return BuildLayout(LoadingOverlayLayout(), officeWindow, nullptr, {x, y}, driveBitmap);
}
