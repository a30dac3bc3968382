#include "overlay/layouts/confirm_leave_panel.h"

#include "overlay/layouts/layout_steps.h"

namespace {
struct Choice {
  const wchar_t* caption;
  int width;
  ControlId id;
  // "Reload" alone keeps the square corners it has always had.
  ButtonShape shape = ButtonShape::Rounded;
};

struct Situation {
  int heightSaved;
  int heightUnsaved;
  const wchar_t* descriptionSaved;
  const wchar_t* descriptionUnsaved;
  Choice onlyChoice;    // without unsaved changes
  Choice firstChoice;   // with unsaved changes: save first
  Choice secondChoice;  // with unsaved changes: discard
  // Where the waiting note goes below the description; 0 for none (a
  // conflict only closes the file, nothing is reloaded).
  int noteGap;
};

constexpr Situation kConflict{
    130,
    150,
    L"Filewell Sync will close this file and open the Resolve Conflict window.",
    L"Filewell Sync will close this file and open the Resolve Conflict window. Do you want to save your changes before "
    L"closing this file?",
    {L"Continue", 130, ControlId::ContinueToResolve},
    {L"Save & Continue", 170, ControlId::SaveAndResolve},
    {L"Discard & Continue", 170, ControlId::DiscardAndResolve},
    0};

constexpr Situation kDownload{
    155,
    175,
    L"To load the latest version of this file, click \"Reload\".",
    L"This file has unsaved changes. Do you want to save your changes as a separate copy before reloading this file?",
    {L"Reload", 120, ControlId::Reload, ButtonShape::Square},
    {L"Save a copy & Reload", 180, ControlId::SaveCopyAndReload},
    {L"Discard & Reload", 180, ControlId::DiscardAndReload},
    20};

constexpr Situation kRename{
    165,
    185,
    L"Click \"Continue\" to reload and sync the renamed file from the web to your computer.",
    L"This file has unsaved changes. Do you want to save your changes before reloading and syncing the renamed file "
    L"from the web to your computer?",
    {L"Continue", 130, ControlId::ContinueToFollow},
    {L"Save & Continue", 170, ControlId::SaveAndFollow},
    {L"Discard & Continue", 170, ControlId::DiscardAndFollow},
    30};

constexpr Situation kMove{
    165,
    185,
    L"Click \"Continue\" to reload and sync the file from the new location on the web to your computer.",
    L"This file has unsaved changes. Do you want to save your changes before reloading and syncing the file from the "
    L"new location on the web to your computer?",
    {L"Continue", 130, ControlId::ContinueToFollow},
    {L"Save & Continue", 170, ControlId::SaveAndFollow},
    {L"Discard & Continue", 170, ControlId::DiscardAndFollow},
    30};

const Situation* SituationOf(bool conflict, bool download, bool rename, bool move) {
  if (conflict) return &kConflict;
  if (download) return &kDownload;
  if (rename) return &kRename;
  if (move) return &kMove;
  return nullptr;
}
}  // namespace

PanelLayout ConfirmLeavePanelLayout(bool unsaved, bool conflict, bool download, bool rename, bool move) {
  const Situation* situation = SituationOf(conflict, download, rename, move);
  if (situation == nullptr) return PanelLayout{};

  PanelLayout layout =
      AgainstBadgePanel(440, unsaved ? situation->heightUnsaved : situation->heightSaved,
                        L"couldn't get ms office window rect while creating confirm leave file UI - ",
                        L"couldn't get parent window rect while creating confirm leave file UI - ",
                        L"couldn't create confirm leave file sub overlay UI - ", L"creating close confirmation UI");
  auto& steps = layout.steps;
  const int d = unsaved ? 60 : 40;
  steps.push_back(TextStep(unsaved ? situation->descriptionUnsaved : situation->descriptionSaved, {20, 20, 400, d},
                           ControlId::None, ColourRole::Plain, FontRole::Body,
                           L"couldn't create confirm leave file description - "));
  int buttonTop = d + 20 + 10;
  if (situation->noteGap != 0) {
    const int noteTop = d + situation->noteGap;
    steps.push_back(TextStep(L"This may take some time...", {20, noteTop, 200, 25}, ControlId::None, ColourRole::Plain,
                             FontRole::BodyItalic, L"couldn't create confirm leave file time taken - "));
    buttonTop = noteTop + 25 + 10;
  }
  const Choice first = unsaved ? situation->firstChoice : situation->onlyChoice;
  steps.push_back(ButtonStep(first.caption, {20, buttonTop, first.width, 40}, first.id, ButtonLook::Main, first.shape,
                             L"couldn't create confirm leave file yes button - "));
  if (unsaved) {
    const Choice second = situation->secondChoice;
    steps.push_back(BorderedButtonStep(second.caption, {first.width + 40, buttonTop, second.width, 40}, second.id,
                                       ButtonLook::SecondChoice, second.shape,
                                       L"couldn't create confirm leave file no button - "));
  }
  return layout;
}

std::array<int, 2> ConfirmLeaveFirstChoiceIds(bool conflict, bool download, bool rename, bool move) {
  const Situation* situation = SituationOf(conflict, download, rename, move);
  if (situation == nullptr) return {0, 0};
  return {static_cast<int>(situation->onlyChoice.id), static_cast<int>(situation->firstChoice.id)};
}
