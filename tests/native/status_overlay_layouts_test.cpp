#include "overlay/layouts/status_overlay_layouts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "overlay/layouts/layout_steps.h"
#include "overlay/windows/window_class_names.h"
#include "tests/caller.h"

namespace {
void ExpectSteps(const std::vector<LayoutStep>& actual, const std::vector<LayoutStep>& expected, Caller caller = {}) {
  TRACE_CALLER(caller);
  for (size_t i = 0; i < std::min(actual.size(), expected.size()); ++i)
    EXPECT_EQ(actual[i], expected[i]) << "step " << i;
  EXPECT_EQ(actual.size(), expected.size());
}

void ExpectWindow(const PanelLayout& layout, const wchar_t* className, std::uint32_t style, std::uint32_t exStyle,
                  int width, int height, const wchar_t* windowFailure, const wchar_t* activity, Caller caller = {}) {
  TRACE_CALLER(caller);
  EXPECT_EQ(layout.placement, PanelPlacement::AtCallerPoint);
  EXPECT_EQ(layout.className, className);
  EXPECT_EQ(layout.style, style);
  EXPECT_EQ(layout.exStyle, exStyle);
  EXPECT_EQ(layout.width, width);
  EXPECT_EQ(layout.height, height);
  EXPECT_EQ(layout.createHeight, height);
  EXPECT_EQ(layout.officeRectFailureText, nullptr);
  EXPECT_EQ(layout.badgeRectFailureText, nullptr);
  EXPECT_EQ(std::wstring(layout.windowFailureText), windowFailure);
  EXPECT_EQ(layout.finalResizeFailureText, nullptr);
  EXPECT_EQ(std::wstring(layout.exceptionActivity), activity);
  EXPECT_TRUE(layout.IsBuildable());
}
}  // namespace

LayoutStep OnTheLoadingBlue(LayoutStep step) {
  step.backdrop = 0x00B46E19;  // RGB(25, 110, 180) as a COLORREF
  step.colour = ColourRole::LoadingStrip;
  return step;
}

TEST(StatusOverlays, DrawTheDrivesTransparentPixelsInTheirStripsColour) {
  EXPECT_EQ(NoInternetOverlayLayout().steps.at(0).backdrop, 0x00FFFFFFu);
  EXPECT_EQ(LoadingOverlayLayout().steps.at(0).backdrop, 0x00B46E19u);
}

TEST(MainOverlay, IsASeventyPixelLayeredPopupWithoutChildren) {
  const PanelLayout layout = MainOverlayLayout();
  ExpectWindow(layout, kMainUiClass, 0x80000000, 0x00080000, 70, 70, L"couldn't create main overlay UI - ",
               L"creating office overlay UI");
  EXPECT_TRUE(layout.steps.empty());
}

TEST(NoInternetOverlay, IsAWhiteBorderedStripWithTheDriveAndItsTitle) {
  const PanelLayout layout = NoInternetOverlayLayout();
  ExpectWindow(layout, kMainUiClass, 0x80800000, 0, 235, 48, L"couldn't create no internet main overlay UI - ",
               L"creating no internet office overlay UI");
  ExpectSteps(layout.steps,
              {
                  ImageStep(ImageRole::DriveBitmap, {16, 10, 28, 28}, ControlId::None,
                            L"couldn't create drive image in no internet connection - "),
                  TextStep(L"No Internet Connection", {54, 16, 167, 21}, ControlId::None, ColourRole::Plain,
                           FontRole::OverlayTitle, L"couldn't create no internet title - "),
              });
  EXPECT_EQ(layout.steps[0].style, 0x5000004Eu);
}

TEST(LoadingOverlay, IsABlueStripWithTheDriveAnOwnerDrawnTitleAndAMarqueeAlongTheBottom) {
  const PanelLayout layout = LoadingOverlayLayout();
  ExpectWindow(layout, kBlueUiClass, 0x80000000, 0, 184, 58, L"couldn't create loading main overlay UI - ",
               L"creating loading office overlay UI");
  ExpectSteps(
      layout.steps,
      {
          OnTheLoadingBlue(ImageStep(ImageRole::DriveBitmap, {12, 10, 32, 32}, ControlId::None,
                                     L"couldn't create drive image in loading main office overlay UI - ")),
          OwnerDrawnTextStep(L"Qelvo Filewell", {54, 14, 116, 21}, ControlId::LoadingTitle, ColourRole::LoadingStrip,
                             FontRole::OverlayTitle, L"couldn't create app title in loading main office overlay UI- "),
          ProgressBarStep({0, 52, 184, 6}, L"couldn't create loading progress bar - "),
      });
  EXPECT_EQ(layout.steps[1].style, 0x5000000Du);
  EXPECT_EQ(layout.steps[2].style, 0x50000008u);
  EXPECT_TRUE(layout.steps[2].startMarquee);
}

TEST(LoadingOverlay, GivesItsTitleTheStripsOneIdAndThePictureNone) {
  // An id names one control in its window: the picture beside the title
  // once shared the title's, so a look-up by id could find either.
  const PanelLayout layout = LoadingOverlayLayout();
  EXPECT_EQ(layout.steps.at(0).id, ControlId::None);
  EXPECT_EQ(layout.steps.at(1).id, ControlId::LoadingTitle);
  EXPECT_EQ(static_cast<int>(ControlId::LoadingTitle), 2001);
}
