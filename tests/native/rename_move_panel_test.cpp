#include "overlay/layouts/rename_move_panel.h"

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

std::vector<LayoutStep> Steps(const wchar_t* title, const wchar_t* description, const wchar_t* from, const wchar_t* to,
                              const std::wstring& previous, const std::wstring& next) {
  return {
      TextStep(title, {20, 20, 360, 25}, ControlId::None, ColourRole::Plain, FontRole::Title,
               L"couldn't create rename/move title - "),
      TextStep(description, {20, 45, 360, 50}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
               L"couldn't create rename/move description - "),
      TextStep(from, {20, 95, 360, 25}, ControlId::None, ColourRole::Plain, FontRole::OverlayTitle,
               L"couldn't create rename/move FROM label - "),
      WindowStep(kLightGreyHorScrollUiClass, 0x50100000, previous, {20, 120, 360, 60}, ControlId::List, FontRole::None,
                 L"couldn't create rename/move FROM scroll window - "),
      TextStep(to, {20, 200, 360, 25}, ControlId::None, ColourRole::Plain, FontRole::OverlayTitle,
               L"couldn't create rename/move TO label - "),
      WindowStep(kLightBlueHorScrollUiClass, 0x50100000, next, {20, 225, 360, 60}, ControlId::NewName, FontRole::Body,
                 L"couldn't create rename/move TO name/path - "),
  };
}

LayoutStep Reload() {
  return ButtonStep(L"Reload", {20, 305, 120, 40}, ControlId::FollowRenameOrMove, ButtonLook::Main,
                    ButtonShape::Rounded, L"couldn't create rename/move button - ");
}

const wchar_t kRenamedDescription[] =
    L"Click \"Reload\" to reload and sync the renamed file from the web to your computer.";
}  // namespace

TEST(RenameMovePanel, ShowsARenameWithBothNamesAndTheReloadButton) {
  const PanelLayout layout = RenameMovePanelLayout(true, false, L"report.docx", L"report-final.docx");
  EXPECT_EQ(layout.width, 400);
  EXPECT_EQ(layout.height, 365);
  std::vector<LayoutStep> expected = Steps(L"This file has been renamed", kRenamedDescription, L"Previous file name",
                                           L"New file name", L"report.docx", L"report-final.docx");
  expected.push_back(Reload());
  ExpectSteps(layout.steps, expected);
}

TEST(RenameMovePanel, KeepsTheButtonOfARenameWhateverCloseFirstSays) {
  const PanelLayout layout = RenameMovePanelLayout(true, true, L"a.docx", L"b.docx");
  EXPECT_EQ(layout.height, 365);
  ASSERT_EQ(layout.steps.size(), 7u);
  EXPECT_EQ(layout.steps[1].text, kRenamedDescription);
  EXPECT_EQ(layout.steps[6], Reload());
}

TEST(RenameMovePanel, ShowsAMoveFromAndToWithTheReloadButton) {
  const PanelLayout layout = RenameMovePanelLayout(false, false, L"Team\\Old", L"Team\\New");
  EXPECT_EQ(layout.height, 365);
  std::vector<LayoutStep> expected =
      Steps(L"This file has been moved to a new location",
            L"Click \"Reload\" to reload and sync the file from the new location on the web to your computer.", L"From",
            L"To", L"Team\\Old", L"Team\\New");
  expected.push_back(Reload());
  ExpectSteps(layout.steps, expected);
}

TEST(RenameMovePanel, AsksToCloseAMovedFileFirstInAPanelThreeHundredFiveHighWithoutAButton) {
  const PanelLayout layout = RenameMovePanelLayout(false, true, L"Team\\Old", L"Team\\New");
  EXPECT_EQ(layout.height, 305);
  EXPECT_EQ(layout.createHeight, 305);
  ExpectSteps(layout.steps,
              Steps(L"This file has been moved to a new location",
                    L"Please close this file so that we can sync the file from the new location on the web to your "
                    L"computer.",
                    L"From", L"To", L"Team\\Old", L"Team\\New"));
}

TEST(RenameMovePanel, CarriesTheNamesAsTheScrollAreasWindowTexts) {
  const std::wstring longPath(300, L'x');
  const PanelLayout layout = RenameMovePanelLayout(false, false, longPath, L"y");
  EXPECT_EQ(layout.steps[3].className, kLightGreyHorScrollUiClass);
  EXPECT_EQ(layout.steps[3].text, longPath);
  EXPECT_EQ(layout.steps[3].width, 360);
  EXPECT_EQ(layout.steps[5].className, kLightBlueHorScrollUiClass);
  EXPECT_EQ(layout.steps[5].text, L"y");
}

TEST(RenameMovePanel, IsAWhiteBorderedPopupWithItsOwnFailureTexts) {
  const PanelLayout layout = RenameMovePanelLayout(true, false, L"a", L"b");
  EXPECT_EQ(layout.placement, PanelPlacement::AgainstBadge);
  EXPECT_EQ(layout.className, kMainUiClass);
  EXPECT_EQ(layout.style, 0x80800000u);
  EXPECT_EQ(std::wstring(layout.officeRectFailureText),
            L"couldn't get ms office window rect while creating rename/move sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.badgeRectFailureText),
            L"couldn't get parent window rect while creating rename/move sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.windowFailureText), L"couldn't create rename/move sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.exceptionActivity), L"creating rename/move sub overlay UI");
}

TEST(RenameMovePanel, ShowsBothPlacesCleanedAndCappedAtOneThousandTwentyFour) {
  const std::wstring from = L"C:\\Team\\in\u202Eexe.txt\r\n" + std::wstring(1024 * 1024, L'a');
  const PanelLayout layout = RenameMovePanelLayout(false, false, from, L"C:\\Team\r\\New\u2066 &Co");
  EXPECT_EQ(layout.steps[3].text, L"C:\\Team\\inexe.txt" + std::wstring(1024 - 17 - 1, L'a') + L"\u2026");
  EXPECT_EQ(layout.steps[3].text.size(), 1024u);
  EXPECT_EQ(layout.steps[5].text, L"C:\\Team\\New &Co");
}
