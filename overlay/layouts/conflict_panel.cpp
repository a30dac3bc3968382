#include "overlay/layouts/conflict_panel.h"

#include "overlay/layouts/layout_steps.h"

PanelLayout ConflictPanelLayout() {
  PanelLayout layout =
      AgainstBadgePanel(400, 170, L"couldn't get ms office window rect while creating conflict sub overlay UI - ",
                        L"couldn't get parent window rect while creating conflict sub overlay UI - ",
                        L"couldn't create conflict sub overlay UI - ", L"creating conflict sub overlay UI");
  auto& steps = layout.steps;
  steps.push_back(TextStep(L"File conflict occurred", {20, 20, 360, 25}, ControlId::None, ColourRole::Plain,
                           FontRole::Title, L"couldn't create conflict title - "));
  steps.push_back(
      IconStep(ImageRole::WarningIcon, {20, 50, 40, 40}, ControlId::None, L"couldn't create conflict warn icon - "));
  steps.push_back(TextStep(L"This file currently has a different version on the web compared to your computer.",
                           {70, 55, 310, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                           L"couldn't create conflict description - "));
  steps.push_back(ButtonStep(L"Resolve conflict", {20, 110, 170, 40}, ControlId::ResolveConflict, ButtonLook::Main,
                             ButtonShape::Rounded, L"couldn't create resolve conflict button - "));
  return layout;
}
