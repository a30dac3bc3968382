#include "overlay/layouts/confirm_leave_panel.h"

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

LayoutStep Description(const wchar_t* text, int height) {
  return TextStep(text, {20, 20, 400, height}, ControlId::None, ColourRole::Plain, FontRole::Body,
                  L"couldn't create confirm leave file description - ");
}
LayoutStep Note(int y) {
  return TextStep(L"This may take some time...", {20, y, 200, 25}, ControlId::None, ColourRole::Plain,
                  FontRole::BodyItalic, L"couldn't create confirm leave file time taken - ");
}
// The first choice is the main action, rounded except for "Reload".
LayoutStep Yes(const wchar_t* caption, int y, int width, ControlId id, ButtonShape shape = ButtonShape::Rounded) {
  return ButtonStep(caption, {20, y, width, 40}, id, ButtonLook::Main, shape,
                    L"couldn't create confirm leave file yes button - ");
}
LayoutStep No(const wchar_t* caption, int x, int y, int width, ControlId id) {
  return BorderedButtonStep(caption, {x, y, width, 40}, id, ButtonLook::SecondChoice, ButtonShape::Rounded,
                            L"couldn't create confirm leave file no button - ");
}

enum Situation { kConflict, kDownload, kRename, kMove };
int Id(ControlId id) { return static_cast<int>(id); }

PanelLayout Confirm(Situation situation, bool unsaved) {
  return ConfirmLeavePanelLayout(unsaved, situation == kConflict, situation == kDownload, situation == kRename,
                                 situation == kMove);
}
}  // namespace

TEST(ConfirmLeavePanel, ForAConflictWithoutUnsavedChangesHasOneContinueButtonAtSeventy) {
  const PanelLayout layout = Confirm(kConflict, false);
  EXPECT_EQ(layout.width, 440);
  EXPECT_EQ(layout.height, 130);
  ExpectSteps(layout.steps,
              {Description(L"Filewell Sync will close this file and open the Resolve Conflict window.", 40),
               Yes(L"Continue", 70, 130, ControlId::ContinueToResolve)});
}

TEST(ConfirmLeavePanel, ForAConflictWithUnsavedChangesAsksToSaveOrDiscard) {
  const PanelLayout layout = Confirm(kConflict, true);
  EXPECT_EQ(layout.height, 150);
  ExpectSteps(layout.steps,
              {Description(L"Filewell Sync will close this file and open the Resolve Conflict window. Do you want to "
                           L"save your changes before closing this file?",
                           60),
               Yes(L"Save & Continue", 90, 170, ControlId::SaveAndResolve),
               No(L"Discard & Continue", 210, 90, 170, ControlId::DiscardAndResolve)});
}

TEST(ConfirmLeavePanel, ForADownloadWithoutUnsavedChangesOffersReloadBelowTheNote) {
  const PanelLayout layout = Confirm(kDownload, false);
  EXPECT_EQ(layout.height, 155);
  ExpectSteps(layout.steps, {Description(L"To load the latest version of this file, click \"Reload\".", 40), Note(60),
                             Yes(L"Reload", 95, 120, ControlId::Reload, ButtonShape::Square)});
}

TEST(ConfirmLeavePanel, ForADownloadWithUnsavedChangesPutsTheNoteAtEightyAndTheButtonsAtOneHundredFifteen) {
  const PanelLayout layout = Confirm(kDownload, true);
  EXPECT_EQ(layout.height, 175);
  ExpectSteps(layout.steps,
              {Description(L"This file has unsaved changes. Do you want to save your changes as a separate copy before "
                           L"reloading this file?",
                           60),
               Note(80), Yes(L"Save a copy & Reload", 115, 180, ControlId::SaveCopyAndReload),
               No(L"Discard & Reload", 220, 115, 180, ControlId::DiscardAndReload)});
}

TEST(ConfirmLeavePanel, ForARenameWithoutUnsavedChangesOffersContinue) {
  const PanelLayout layout = Confirm(kRename, false);
  EXPECT_EQ(layout.height, 165);
  ExpectSteps(
      layout.steps,
      {Description(L"Click \"Continue\" to reload and sync the renamed file from the web to your computer.", 40),
       Note(70), Yes(L"Continue", 105, 130, ControlId::ContinueToFollow)});
}

TEST(ConfirmLeavePanel, ForARenameWithUnsavedChangesPutsTheNoteAtNinetyAndTheSecondButtonAtTwoHundredTen) {
  const PanelLayout layout = Confirm(kRename, true);
  EXPECT_EQ(layout.height, 185);
  ExpectSteps(layout.steps,
              {Description(L"This file has unsaved changes. Do you want to save your changes before reloading and "
                           L"syncing the renamed file from the web to your computer?",
                           60),
               Note(90), Yes(L"Save & Continue", 125, 170, ControlId::SaveAndFollow),
               No(L"Discard & Continue", 210, 125, 170, ControlId::DiscardAndFollow)});
}

TEST(ConfirmLeavePanel, ForAMoveWithoutUnsavedChangesTalksOfTheNewLocation) {
  const PanelLayout layout = Confirm(kMove, false);
  EXPECT_EQ(layout.height, 165);
  ExpectSteps(layout.steps,
              {Description(L"Click \"Continue\" to reload and sync the file from the new location on the web to your "
                           L"computer.",
                           40),
               Note(70), Yes(L"Continue", 105, 130, ControlId::ContinueToFollow)});
}

TEST(ConfirmLeavePanel, ForAMoveWithUnsavedChangesUsesTheRenameButtons) {
  const PanelLayout layout = Confirm(kMove, true);
  EXPECT_EQ(layout.height, 185);
  ExpectSteps(layout.steps,
              {Description(L"This file has unsaved changes. Do you want to save your changes before reloading and "
                           L"syncing the file from the new location on the web to your computer?",
                           60),
               Note(90), Yes(L"Save & Continue", 125, 170, ControlId::SaveAndFollow),
               No(L"Discard & Continue", 210, 125, 170, ControlId::DiscardAndFollow)});
}

TEST(ConfirmLeavePanel, GivesTheSecondButtonABorder) {
  EXPECT_EQ(Confirm(kDownload, true).steps[3].style, 0x5080000Bu);
  EXPECT_EQ(Confirm(kDownload, true).steps[2].style, 0x5000000Bu);
}

TEST(ConfirmLeavePanel, TriesTheSituationsInTheOrderConflictDownloadRenameMove) {
  EXPECT_EQ(ConfirmLeavePanelLayout(false, true, true, true, true).steps.back().id, ControlId::ContinueToResolve);
  EXPECT_EQ(ConfirmLeavePanelLayout(false, false, true, true, true).steps.back().id, ControlId::Reload);
  EXPECT_EQ(ConfirmLeavePanelLayout(false, false, false, true, true).steps[0].text,
            L"Click \"Continue\" to reload and sync the renamed file from the web to your computer.");
}

TEST(ConfirmLeavePanel, IsNotBuildableWithoutASituation) {
  const PanelLayout layout = ConfirmLeavePanelLayout(true, false, false, false, false);
  EXPECT_FALSE(layout.IsBuildable());
  EXPECT_EQ(layout.width, 0);
  EXPECT_TRUE(layout.steps.empty());
}

TEST(ConfirmLeavePanel, IsAWhiteBorderedPopupWithItsOwnFailureTexts) {
  const PanelLayout layout = Confirm(kConflict, false);
  EXPECT_TRUE(layout.IsBuildable());
  EXPECT_EQ(layout.placement, PanelPlacement::AgainstBadge);
  EXPECT_EQ(layout.className, kMainUiClass);
  EXPECT_EQ(layout.style, 0x80800000u);
  EXPECT_EQ(std::wstring(layout.officeRectFailureText),
            L"couldn't get ms office window rect while creating confirm leave file UI - ");
  EXPECT_EQ(std::wstring(layout.badgeRectFailureText),
            L"couldn't get parent window rect while creating confirm leave file UI - ");
  EXPECT_EQ(std::wstring(layout.windowFailureText), L"couldn't create confirm leave file sub overlay UI - ");
  EXPECT_EQ(layout.finalResizeFailureText, nullptr);
  EXPECT_EQ(std::wstring(layout.exceptionActivity), L"creating close confirmation UI");
}

TEST(ConfirmLeaveFirstChoiceIds, NameTheFirstButtonOfEachFormOfEachSituation) {
  EXPECT_EQ(ConfirmLeaveFirstChoiceIds(true, false, false, false),
            (std::array<int, 2>{Id(ControlId::ContinueToResolve), Id(ControlId::SaveAndResolve)}));
  EXPECT_EQ(ConfirmLeaveFirstChoiceIds(false, true, false, false),
            (std::array<int, 2>{Id(ControlId::Reload), Id(ControlId::SaveCopyAndReload)}));
  EXPECT_EQ(ConfirmLeaveFirstChoiceIds(false, false, true, false),
            (std::array<int, 2>{Id(ControlId::ContinueToFollow), Id(ControlId::SaveAndFollow)}));
  EXPECT_EQ(ConfirmLeaveFirstChoiceIds(false, false, false, true),
            (std::array<int, 2>{Id(ControlId::ContinueToFollow), Id(ControlId::SaveAndFollow)}));
  EXPECT_EQ(ConfirmLeaveFirstChoiceIds(false, false, false, false), (std::array<int, 2>{0, 0}));
}

TEST(ConfirmLeaveFirstChoiceIds, AreTheFirstButtonsTheLayoutsCreate) {
  for (bool unsaved : {false, true}) {
    const PanelLayout layout = ConfirmLeavePanelLayout(unsaved, false, true, false, false);
    int firstButton = 0;
    for (const LayoutStep& step : layout.steps) {
      if (step.buttonLook != ButtonLook::None) {
        firstButton = static_cast<int>(step.id);
        break;
      }
    }
    EXPECT_EQ(firstButton, ConfirmLeaveFirstChoiceIds(false, true, false, false)[unsaved ? 1 : 0]);
  }
}
