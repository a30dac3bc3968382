#include "overlay/layouts/delete_panel.h"

#include "overlay/layouts/control_styles.h"
#include "overlay/layouts/layout_steps.h"
#include "overlay/windows/window_class_names.h"

PanelLayout DeletePanelLayout() {
  PanelLayout layout =
      AgainstBadgePanel(400, 175, L"couldn't get ms office window rect while creating delete sub overlay UI - ",
                        L"couldn't get parent window rect while creating delete sub overlay UI - ",
                        L"couldn't create delete sub overlay UI - ", L"creating delete sub overlay UI");
  auto& steps = layout.steps;
  steps.push_back(TextStep(L"This file has been deleted", {20, 20, 360, 25}, ControlId::None, ColourRole::Plain,
                           FontRole::Title, L"couldn't create delete title - "));
  steps.push_back(TextStep(
      L"Please close this file so that we can delete it on your computer. This file will not be available anymore.",
      {20, 45, 360, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
      L"couldn't create delete description - "));
  const int box = static_cast<int>(steps.size());
  steps.push_back(WindowStep(kLightGreyUiClass, kStyleChild, {20, 95, 360, 60}, ControlId::None,
                             L"couldn't create delete NOTE window - "));
  // The note sits in the grey box, so its position is the box's own.
  steps.push_back(
      InsideOf(box, TextStep(L"Note: If you want a copy of this file, go to File -> Save As.", {10, 10, 340, 40},
                             ControlId::Note, ColourRole::Note, FontRole::Body, L"couldn't create delete NOTE - ")));
  return layout;
}
