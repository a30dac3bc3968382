#include "overlay/layouts/rename_move_panel.h"

#include "overlay/layouts/control_styles.h"
#include "overlay/layouts/layout_steps.h"
#include "overlay/layouts/shown_text.h"
#include "overlay/windows/window_class_names.h"

PanelLayout RenameMovePanelLayout(bool renamed, bool closeFirst, const std::wstring& previous,
                                  const std::wstring& next) {
  const bool button = renamed || !closeFirst;
  const wchar_t* title = renamed ? L"This file has been renamed" : L"This file has been moved to a new location";
  const wchar_t* description = L"Click \"Reload\" to reload and sync the renamed file from the web to your computer.";
  if (!renamed && button) {
    description = L"Click \"Reload\" to reload and sync the file from the new location on the web to your computer.";
  } else if (!renamed) {
    description =
        L"Please close this file so that we can sync the file from the new location on the web to your computer.";
  }

  PanelLayout layout = AgainstBadgePanel(
      400, button ? 365 : 305, L"couldn't get ms office window rect while creating rename/move sub overlay UI - ",
      L"couldn't get parent window rect while creating rename/move sub overlay UI - ",
      L"couldn't create rename/move sub overlay UI - ", L"creating rename/move sub overlay UI");
  auto& steps = layout.steps;
  steps.push_back(TextStep(title, {20, 20, 360, 25}, ControlId::None, ColourRole::Plain, FontRole::Title,
                           L"couldn't create rename/move title - "));
  steps.push_back(TextStep(description, {20, 45, 360, 50}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                           L"couldn't create rename/move description - "));
  steps.push_back(TextStep(renamed ? L"Previous file name" : L"From", {20, 95, 360, 25}, ControlId::None,
                           ColourRole::Plain, FontRole::OverlayTitle, L"couldn't create rename/move FROM label - "));
  // The grey box keeps the system font and the blue one gets the body font;
  // both are left exactly so.
  steps.push_back(WindowStep(kLightGreyHorScrollUiClass, kStyleHorizontalScrollArea,
                             CleanShownText(previous, kShownPathMaxLength), {20, 120, 360, 60}, ControlId::PreviousName,
                             FontRole::None, L"couldn't create rename/move FROM scroll window - "));
  steps.push_back(TextStep(renamed ? L"New file name" : L"To", {20, 200, 360, 25}, ControlId::None, ColourRole::Plain,
                           FontRole::OverlayTitle, L"couldn't create rename/move TO label - "));
  steps.push_back(WindowStep(kLightBlueHorScrollUiClass, kStyleHorizontalScrollArea,
                             CleanShownText(next, kShownPathMaxLength), {20, 225, 360, 60}, ControlId::NewName,
                             FontRole::Body, L"couldn't create rename/move TO name/path - "));
  if (button) {
    steps.push_back(ButtonStep(L"Reload", {20, 305, 120, 40}, ControlId::FollowRenameOrMove, ButtonLook::Main,
                               ButtonShape::Rounded, L"couldn't create rename/move button - "));
  }
  return layout;
}
