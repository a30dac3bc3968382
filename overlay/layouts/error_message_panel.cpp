#include "overlay/layouts/error_message_panel.h"

#include "overlay/layouts/help_links.h"
#include "overlay/layouts/layout_steps.h"

PanelLayout ErrorMessagePanelLayout(bool readOnly) {
  PanelLayout layout = AgainstBadgePanel(
      440, readOnly ? 110 : 80, L"couldn't get ms office window rect while creating error msg sub overlay UI - ",
      L"couldn't get parent window rect while creating error msg sub overlay UI - ",
      L"couldn't create error msg sub overlay UI - ", L"creating error msg sub overlay UI");
  auto& steps = layout.steps;
  steps.push_back(ImageStep(ImageRole::ErrorIcon, {20, 20, 21, 21}, ControlId::None,
                            L"couldn't create error msg exclamation icon - "));
  steps.push_back(TextStep(readOnly ? L"You can't make changes to this file, because the file has a read-only "
                                      L"permission level."
                                    : L"An error occurred while saving the file. Please ensure you have sufficient "
                                      L"privileges and try again.",
                           {51, 20, 369, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                           L"couldn't create error msg description - "));
  if (readOnly) {
    steps.push_back(
        LinkStep(RolesAndPermissionsLinkText(), {51, 70, 369, 20}, L"couldn't create error msg learn more - "));
  }
  return layout;
}
