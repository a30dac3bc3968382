#include "overlay/layouts/status_overlay_layouts.h"

#include "overlay/layouts/control_styles.h"
#include "overlay/layouts/layout_steps.h"
#include "overlay/windows/window_class_names.h"

PanelLayout MainOverlayLayout() {
  return AtCallerPointOverlay(kMainUiClass, kStylePopup, kExStyleLayered, 70, 70, L"couldn't create main overlay UI - ",
                              L"creating office overlay UI");
}

PanelLayout NoInternetOverlayLayout() {
  PanelLayout layout = AtCallerPointOverlay(kMainUiClass, kStylePopupBorder, 0, 235, 48,
                                            L"couldn't create no internet main overlay UI - ",
                                            L"creating no internet office overlay UI");
  layout.steps.push_back(ImageStep(ImageRole::DriveBitmap, {16, 10, 28, 28}, ControlId::None,
                                   L"couldn't create drive image in no internet connection - "));
  layout.steps.push_back(TextStep(L"No Internet Connection", {54, 16, 167, 21}, ControlId::None, ColourRole::Plain,
                                  FontRole::OverlayTitle, L"couldn't create no internet title - "));
  return layout;
}

PanelLayout LoadingOverlayLayout() {
  PanelLayout layout =
      AtCallerPointOverlay(kBlueUiClass, kStylePopup, 0, 184, 58, L"couldn't create loading main overlay UI - ",
                           L"creating loading office overlay UI");
  // The picture has no id: the owner-drawn title beside it is the strip's
  // one LoadingTitle, so the id names one control in this window.
  layout.steps.push_back(ImageStep(ImageRole::DriveBitmap, {12, 10, 32, 32}, ControlId::None,
                                   L"couldn't create drive image in loading main office overlay UI - "));
  layout.steps.back().backdrop = kLoadingStripBlue;
  layout.steps.back().colour = ColourRole::LoadingStrip;
  // No blank before the dash: the log text is kept as it has always read.
  layout.steps.push_back(OwnerDrawnTextStep(L"Qelvo Filewell", {54, 14, 116, 21}, ControlId::LoadingTitle,
                                            ColourRole::LoadingStrip, FontRole::OverlayTitle,
                                            L"couldn't create app title in loading main office overlay UI- "));
  layout.steps.push_back(ProgressBarStep({0, 52, 184, 6}, L"couldn't create loading progress bar - "));
  return layout;
}
