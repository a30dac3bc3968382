#include "overlay/layouts/safe_to_edit_panel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "overlay/layouts/layout_steps.h"
#include "overlay/windows/window_class_names.h"
#include "tests/caller.h"

namespace {
const std::wstring kUnderscores78 = L"______________________________________________________________________________";
const std::wstring kLearnMore =
    L"<a href=\"https://help.qelvo.com/portal/kb/filewell/sync/filewell-sync/articles/"
    L"track-live-user-activity-in-ms-office-files-using-filewell-collaboration-widget\">Learn More</a>";

void ExpectSteps(const std::vector<LayoutStep>& actual, const std::vector<LayoutStep>& expected, Caller caller = {}) {
  TRACE_CALLER(caller);
  for (size_t i = 0; i < std::min(actual.size(), expected.size()); ++i)
    EXPECT_EQ(actual[i], expected[i]) << "step " << i;
  EXPECT_EQ(actual.size(), expected.size());
}
}  // namespace

TEST(SafeToEditPanel, DrawsItsRulesWithSeventyEightUnderscores) { EXPECT_EQ(kUnderscores78.size(), 78u); }

TEST(SafeToEditPanel, WithoutAnIdentifierIsOneHundredFiftyHighWithTheRuleAtEightyFive) {
  const PanelLayout layout = SafeToEditPanelLayout(L"", L"Ann Lee", L"2026-03-01 10:15");
  EXPECT_EQ(layout.width, 400);
  EXPECT_EQ(layout.height, 150);
  EXPECT_EQ(layout.createHeight, 150);
  ExpectSteps(layout.steps,
              {
                  TextStep(L"No active collaborators", {15, 15, 370, 25}, ControlId::Title, ColourRole::Plain,
                           FontRole::DefaultBold, L"couldn't create safe to edit title - "),
                  TextStep(L"No other users are currently viewing or editing this file. You can safely make changes.",
                           {15, 45, 370, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                           L"couldn't create safe to edit description - "),
                  TextStep(kUnderscores78, {0, 85, 400, 20}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                           L"couldn't create safe to edit line2 - "),
                  LinkStep(kLearnMore, {20, 115, 80, 20}, L"couldn't create safe to edit learn more - "),
                  ButtonStep(L"Hide", {120, 115, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded,
                             L"couldn't create safe to edit hide button - "),
              });
}

TEST(SafeToEditPanel, WithAnIdentifierIsTwoHundredFiftyHighWithTheLastModifiedSection) {
  const PanelLayout layout = SafeToEditPanelLayout(L"u-8f3a2c", L"Ann Lee", L"2026-03-01 10:15");
  EXPECT_EQ(layout.width, 400);
  EXPECT_EQ(layout.height, 250);
  EXPECT_EQ(layout.createHeight, 250);
  ExpectSteps(
      layout.steps,
      {
          TextStep(L"No active collaborators", {15, 15, 370, 25}, ControlId::Title, ColourRole::Plain,
                   FontRole::DefaultBold, L"couldn't create safe to edit title - "),
          TextStep(L"No other users are currently viewing or editing this file. You can safely make changes.",
                   {15, 45, 370, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                   L"couldn't create safe to edit description - "),
          TextStep(kUnderscores78, {0, 85, 400, 20}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                   L"couldn't create safe to edit line1 - "),
          TextStep(L"LAST MODIFIED BY", {20, 115, 360, 25}, ControlId::Description, ColourRole::BodyText,
                   FontRole::Section, L"couldn't create safe to edit last modified by header - "),
          AvatarStep(true, L"8f3a2c", {20, 145, 40, 40}, L"couldn't create safe to edit last modified by avatar - "),
          NameStep(L"Ann Lee", {75, 145, 305, 20}, ControlId::None, ColourRole::Plain, FontRole::Title,
                   L"couldn't create safe to edit lastModifiedBy name - "),
          ModifiedOnStep(L"2026-03-01 10:15", {75, 165, 305, 20}, ControlId::Description, ColourRole::BodyText,
                         FontRole::Body, L"couldn't create safe to edit lastModifiedTime - "),
          TextStep(kUnderscores78, {0, 185, 400, 20}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                   L"couldn't create safe to edit line2 - "),
          LinkStep(kLearnMore, {20, 215, 80, 20}, L"couldn't create safe to edit learn more - "),
          ButtonStep(L"Hide", {120, 215, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded,
                     L"couldn't create safe to edit hide button - "),
      });
}

TEST(SafeToEditPanel, ShowsTheSectionForAKnownIdentifierEvenWithoutAName) {
  const PanelLayout layout = SafeToEditPanelLayout(L"u-8f3a2c", L"", L"");
  EXPECT_EQ(layout.height, 250);
  ASSERT_EQ(layout.steps.size(), 10u);
  EXPECT_EQ(layout.steps[5].text, L"");
  EXPECT_EQ(layout.steps[6].text, L"Modified on ");
}

TEST(SafeToEditPanel, TriesTheUserAvatarOfAShortIdentifierUnderAnEmptyNameAndFallsBackToTheDefault) {
  const PanelLayout layout = SafeToEditPanelLayout(L"u-", L"Bo", L"today");
  ASSERT_EQ(layout.steps.size(), 10u);
  EXPECT_EQ(layout.steps[4].image, ImageRole::Avatar);
  EXPECT_TRUE(layout.steps[4].tryUserAvatar);
  EXPECT_EQ(layout.steps[4].avatarFile, L"");
}

TEST(SafeToEditPanel, IsAWhiteBorderedPopupPlacedAgainstTheBadge) {
  const PanelLayout layout = SafeToEditPanelLayout(L"", L"", L"");
  EXPECT_EQ(layout.placement, PanelPlacement::AgainstBadge);
  EXPECT_EQ(layout.className, kMainUiClass);
  EXPECT_EQ(layout.style, 0x80800000u);
  EXPECT_EQ(layout.exStyle, 0u);
}

TEST(SafeToEditPanel, LogsItsOwnTextsWhenTheWindowCannotBeMade) {
  const PanelLayout layout = SafeToEditPanelLayout(L"", L"", L"");
  EXPECT_EQ(std::wstring(layout.officeRectFailureText),
            L"couldn't get ms office window rect while creating safe to edit sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.badgeRectFailureText),
            L"couldn't get parent window rect while creating safe to edit sub overlay UI - ");
  EXPECT_EQ(std::wstring(layout.windowFailureText), L"couldn't create safe to edit sub overlay UI - ");
  EXPECT_EQ(layout.finalResizeFailureText, nullptr);
  EXPECT_EQ(std::wstring(layout.exceptionActivity), L"creating safe to edit sub overlay UI");
}

TEST(SafeToEditPanel, ShowsTheLastModifierCleanedWithoutAccelerators) {
  const PanelLayout layout = SafeToEditPanelLayout(L"u-ann42", L"Ann\r\n&Lee\u202E", L"\u2067" L"10:15\r\n");
  EXPECT_EQ(layout.steps[5].text, L"Ann&Lee");
  EXPECT_EQ(layout.steps[5].style, 0x50004080u);
  EXPECT_EQ(layout.steps[6].text, L"Modified on 10:15");
  EXPECT_EQ(layout.steps[6].style, 0x50000080u);
}
