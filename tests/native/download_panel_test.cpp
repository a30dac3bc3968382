#include "overlay/layouts/download_panel.h"

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

void ExpectSize(const PanelLayout& layout, int width, int height, Caller caller = {}) {
  TRACE_CALLER(caller);
  EXPECT_EQ(layout.width, width);
  EXPECT_EQ(layout.height, height);
  EXPECT_EQ(layout.createHeight, height);
}

LayoutStep Title(int x, int width) {
  return TextStep(L"This file has been modified", {x, 20, width, 25}, ControlId::None, ColourRole::Plain,
                  FontRole::Title, L"couldn't create download title - ");
}
LayoutStep Waiting(int x) {
  return TextStep(L"Retrieving more details...", {x, 45, 200, 25}, ControlId::None, ColourRole::Plain,
                  FontRole::WaitItalic, L"couldn't create download RetrievingMoreDetails - ");
}
std::vector<LayoutStep> Details(int width) {
  return {
      AvatarStep(true, L"ann42", {20, 55, 40, 40}, L"couldn't create last modified by download avatar - "),
      NameStep(L"Ann Lee", {70, 55, width - 90, 25}, ControlId::None, ColourRole::Plain, FontRole::Title,
               L"couldn't create download lastModifiedBy - "),
      ModifiedOnStep(L"2026-03-01 10:15", {70, 80, width - 90, 25}, ControlId::Description, ColourRole::BodyText,
                     FontRole::Body, L"couldn't create download description - "),
  };
}
LayoutStep CheckBox(int y, int width) {
  return CheckBoxStep(L"Save my changes as a separate copy", {20, y, width - 40, 40}, ControlId::SaveSeparateCopy,
                      L"couldn't create save my changes checkbox - ");
}
LayoutStep DownloadButton(int x, int y) {
  return ButtonStep(L"Download latest version", {x, y, 240, 40}, ControlId::Download, ButtonLook::Main,
                    ButtonShape::Square, L"couldn't create download button - ");
}
LayoutStep DownloadingButton(int x, int y) {
  return ButtonStep(L"Downloading...", {x, y, 200, 40}, ControlId::Downloading, ButtonLook::Waiting,
                    ButtonShape::Square, L"couldn't create download button - ");
}
LayoutStep Bar(int width, int height) {
  return ProgressBarStep({0, height - 7, width, 7}, L"couldn't create downloading progress bar - ");
}

PanelLayout Known(bool editing, bool downloading) {
  return DownloadPanelLayout(L"u-ann42", L"Ann Lee", L"2026-03-01 10:15", editing, downloading);
}
PanelLayout Unknown(bool editing, bool downloading) {
  return DownloadPanelLayout(L"u-ann42", L"", L"", editing, downloading);
}
}  // namespace

TEST(DownloadPanel, NotEditingWithoutDetailsIsThreeHundredTwentyByOneHundredFortyFive) {
  const PanelLayout layout = Unknown(false, false);
  ExpectSize(layout, 320, 145);
  ExpectSteps(layout.steps, {Title(55, 250), Waiting(65), DownloadButton(55, 85)});
}

TEST(DownloadPanel, NotEditingWithDetailsIsFourHundredByOneHundredSeventyFive) {
  const PanelLayout layout = Known(false, false);
  ExpectSize(layout, 400, 175);
  std::vector<LayoutStep> expected = {Title(20, 360)};
  for (const LayoutStep& step : Details(400)) expected.push_back(step);
  expected.push_back(DownloadButton(20, 120));
  ExpectSteps(layout.steps, expected);
}

TEST(DownloadPanel, EditingWithDetailsOffersTheSeparateCopyAboveTheButton) {
  const PanelLayout layout = Known(true, false);
  ExpectSize(layout, 400, 215);
  std::vector<LayoutStep> expected = {Title(20, 360)};
  for (const LayoutStep& step : Details(400)) expected.push_back(step);
  expected.push_back(CheckBox(120, 400));
  expected.push_back(DownloadButton(20, 160));
  ExpectSteps(layout.steps, expected);
}

TEST(DownloadPanel, EditingWithoutDetailsLinesTheWaitingLineUpWithTheTitle) {
  const PanelLayout layout = Unknown(true, false);
  ExpectSize(layout, 400, 185);
  ExpectSteps(layout.steps, {Title(20, 250), Waiting(20), CheckBox(85, 400), DownloadButton(20, 125)});
}

TEST(DownloadPanel, DownloadingWithDetailsDropsTheCheckBoxAndRunsAMarqueeAlongTheBottom) {
  const PanelLayout layout = Known(true, true);
  ExpectSize(layout, 400, 175);
  std::vector<LayoutStep> expected = {Title(20, 360)};
  for (const LayoutStep& step : Details(400)) expected.push_back(step);
  expected.push_back(DownloadingButton(20, 120));
  expected.push_back(Bar(400, 175));
  ExpectSteps(layout.steps, expected);
  EXPECT_EQ(layout.steps.back().y, 168);
  EXPECT_TRUE(layout.steps.back().startMarquee);
}

TEST(DownloadPanel, DownloadingWhileEditingWithoutDetailsIsThreeHundredThirtyWide) {
  const PanelLayout layout = Unknown(true, true);
  ExpectSize(layout, 330, 145);
  ExpectSteps(layout.steps, {Title(60, 250), Waiting(70), DownloadingButton(60, 85), Bar(330, 145)});
}

TEST(DownloadPanel, DownloadingWithoutEditingOrDetailsIsThreeHundredTwentyWide) {
  const PanelLayout layout = Unknown(false, true);
  ExpectSize(layout, 320, 145);
  ExpectSteps(layout.steps, {Title(60, 250), Waiting(70), DownloadingButton(60, 85), Bar(320, 145)});
}

TEST(DownloadPanel, DownloadingWithoutEditingButWithDetailsIsFourHundredByOneHundredSeventyFive) {
  const PanelLayout layout = Known(false, true);
  ExpectSize(layout, 400, 175);
  EXPECT_EQ(layout.steps[4], DownloadingButton(20, 120));
  EXPECT_EQ(layout.steps[5], Bar(400, 175));
}

TEST(DownloadPanel, UsesTheDefaultAvatarDirectlyWithoutAnIdentifier) {
  const PanelLayout layout = DownloadPanelLayout(L"", L"Ann Lee", L"now", false, false);
  EXPECT_EQ(layout.steps[1],
            AvatarStep(false, L"", {20, 55, 40, 40}, L"couldn't create last modified by download avatar - "));
}

TEST(DownloadPanel, DecidesOnDetailsByTheNameNotTheIdentifier) {
  const PanelLayout layout = DownloadPanelLayout(L"", L"", L"now", false, false);
  ExpectSize(layout, 320, 145);
  EXPECT_EQ(layout.steps[1].text, L"Retrieving more details...");
}

TEST(DownloadPanel, IsAWhiteBorderedPopupWithItsOwnFailureTexts) {
  const PanelLayout layout = Known(false, false);
  EXPECT_EQ(layout.placement, PanelPlacement::AgainstBadge);
  EXPECT_EQ(layout.className, kMainUiClass);
  EXPECT_EQ(layout.style, 0x80800000u);
  EXPECT_EQ(std::wstring(layout.officeRectFailureText),
            L"couldn't get ms office window rect while creating download sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.badgeRectFailureText),
            L"couldn't get parent window rect while creating download sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.windowFailureText), L"couldn't create download sub overlay UI - ");
  EXPECT_EQ(layout.finalResizeFailureText, nullptr);
  EXPECT_EQ(std::wstring(layout.exceptionActivity), L"creating download sub overlay UI");
}

TEST(DownloadPanel, ShowsTheLastModifierCleanedAndCappedWithoutAccelerators) {
  const PanelLayout layout =
      DownloadPanelLayout(L"u-ann42", L"&Ann\n" + std::wstring(1000, L'n'), L"10:15" + std::wstring(100, L'9'), false,
                          false);
  EXPECT_EQ(layout.steps[2].text, L"&Ann" + std::wstring(251, L'n') + L"\u2026");
  EXPECT_EQ(layout.steps[2].style, 0x50004080u);
  EXPECT_EQ(layout.steps[3].text, L"Modified on 10:15" + std::wstring(58, L'9') + L"\u2026");
  EXPECT_EQ(layout.steps[3].style, 0x50000080u);
}
