#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "overlay/layouts/conflict_panel.h"
#include "overlay/layouts/delete_panel.h"
#include "overlay/layouts/error_message_panel.h"
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

void ExpectWindow(const PanelLayout& layout, int width, int height, const std::wstring& subject, Caller caller = {}) {
  TRACE_CALLER(caller);
  EXPECT_EQ(layout.placement, PanelPlacement::AgainstBadge);
  EXPECT_EQ(layout.className, kMainUiClass);
  EXPECT_EQ(layout.style, 0x80800000u);
  EXPECT_EQ(layout.exStyle, 0u);
  EXPECT_EQ(layout.width, width);
  EXPECT_EQ(layout.height, height);
  EXPECT_EQ(layout.createHeight, height);
  EXPECT_EQ(std::wstring(layout.officeRectFailureText),
            L"couldn't get ms office window rect while creating " + subject + L" - ");
  EXPECT_EQ(std::wstring(layout.badgeRectFailureText),
            L"couldn't get parent window rect while creating " + subject + L" - ");
  EXPECT_EQ(std::wstring(layout.windowFailureText), L"couldn't create " + subject + L" - ");
  EXPECT_EQ(layout.finalResizeFailureText, nullptr);
  EXPECT_EQ(std::wstring(layout.exceptionActivity), L"creating " + subject);
}

const std::wstring kRolesLink =
    L"<a href=\"https://help.qelvo.com/portal/kb/articles/team-folder-roles-and-permissions\">Learn more</a>";
}  // namespace

TEST(ConflictPanel, IsFourHundredByOneHundredSeventy) {
  ExpectWindow(ConflictPanelLayout(), 400, 170, L"conflict sub overlay UI");
}

TEST(ConflictPanel, ShowsTitleWarningSignDescriptionAndResolveButton) {
  ExpectSteps(
      ConflictPanelLayout().steps,
      {
          TextStep(L"File conflict occurred", {20, 20, 360, 25}, ControlId::None, ColourRole::Plain, FontRole::Title,
                   L"couldn't create conflict title - "),
          IconStep(ImageRole::WarningIcon, {20, 50, 40, 40}, ControlId::None, L"couldn't create conflict warn icon - "),
          TextStep(L"This file currently has a different version on the web compared to your computer.",
                   {70, 55, 310, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                   L"couldn't create conflict description - "),
          ButtonStep(L"Resolve conflict", {20, 110, 170, 40}, ControlId::ResolveConflict, ButtonLook::Main,
                     ButtonShape::Rounded, L"couldn't create resolve conflict button - "),
      });
}

TEST(ConflictPanel, SetsTheWarningSignAsAnIconControl) { EXPECT_EQ(ConflictPanelLayout().steps[1].style, 0x50000003u); }

TEST(DeletePanel, IsFourHundredByOneHundredSeventyFive) {
  ExpectWindow(DeletePanelLayout(), 400, 175, L"delete sub overlay UI");
}

TEST(DeletePanel, PutsTheNoteInsideTheGreyBoxAndHasNoButton) {
  ExpectSteps(
      DeletePanelLayout().steps,
      {
          TextStep(L"This file has been deleted", {20, 20, 360, 25}, ControlId::None, ColourRole::Plain,
                   FontRole::Title, L"couldn't create delete title - "),
          TextStep(L"Please close this file so that we can delete it on your computer. This file will not be "
                   L"available anymore.",
                   {20, 45, 360, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                   L"couldn't create delete description - "),
          WindowStep(kLightGreyUiClass, 0x50000000, {20, 95, 360, 60}, ControlId::None,
                     L"couldn't create delete NOTE window - "),
          InsideOf(2, TextStep(L"Note: If you want a copy of this file, go to File -> Save As.", {10, 10, 340, 40},
                               ControlId::Note, ColourRole::Note, FontRole::Body, L"couldn't create delete NOTE - ")),
      });
  EXPECT_EQ(DeletePanelLayout().steps[2].className, kLightGreyUiClass);
}

TEST(ErrorMessagePanel, IsOneHundredTenHighWithTheLinkWhenReadOnly) {
  const PanelLayout layout = ErrorMessagePanelLayout(true);
  ExpectWindow(layout, 440, 110, L"error msg sub overlay UI");
  ExpectSteps(layout.steps,
              {
                  ImageStep(ImageRole::ErrorIcon, {20, 20, 21, 21}, ControlId::None,
                            L"couldn't create error msg exclamation icon - "),
                  TextStep(L"You can't make changes to this file, because the file has a read-only permission level.",
                           {51, 20, 369, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                           L"couldn't create error msg description - "),
                  LinkStep(kRolesLink, {51, 70, 369, 20}, L"couldn't create error msg learn more - "),
              });
}

TEST(ErrorMessagePanel, IsEightyHighWithoutALinkForASaveError) {
  const PanelLayout layout = ErrorMessagePanelLayout(false);
  ExpectWindow(layout, 440, 80, L"error msg sub overlay UI");
  ExpectSteps(layout.steps,
              {
                  ImageStep(ImageRole::ErrorIcon, {20, 20, 21, 21}, ControlId::None,
                            L"couldn't create error msg exclamation icon - "),
                  TextStep(L"An error occurred while saving the file. Please ensure you have sufficient privileges "
                           L"and try again.",
                           {51, 20, 369, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                           L"couldn't create error msg description - "),
              });
}
