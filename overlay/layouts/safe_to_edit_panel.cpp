#include "overlay/layouts/safe_to_edit_panel.h"

#include "overlay/images/avatar_file.h"
#include "overlay/layouts/help_links.h"
#include "overlay/layouts/layout_steps.h"

namespace {
// A rule across the full 400-pixel width, in the system font.
std::wstring Rule() { return std::wstring(78, L'_'); }
}  // namespace

PanelLayout SafeToEditPanelLayout(const std::wstring& lastModifiedByQuid, const std::wstring& lastModifiedBy,
                                  const std::wstring& lastModifiedTime) {
  // The section needs the identifier (for the avatar), not the name.
  const bool section = !lastModifiedByQuid.empty();
  PanelLayout layout = AgainstBadgePanel(
      400, section ? 250 : 150, L"couldn't get ms office window rect while creating safe to edit sub overlay UI - ",
      L"couldn't get parent window rect while creating safe to edit sub overlay UI - ",
      L"couldn't create safe to edit sub overlay UI - ", L"creating safe to edit sub overlay UI");
  auto& steps = layout.steps;
  steps.push_back(TextStep(L"No active collaborators", {15, 15, 370, 25}, ControlId::Title, ColourRole::Plain,
                           FontRole::DefaultBold, L"couldn't create safe to edit title - "));
  steps.push_back(TextStep(L"No other users are currently viewing or editing this file. You can safely make changes.",
                           {15, 45, 370, 40}, ControlId::Description, ColourRole::BodyText, FontRole::Body,
                           L"couldn't create safe to edit description - "));
  if (section) {
    steps.push_back(TextStep(Rule(), {0, 85, 400, 20}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                             L"couldn't create safe to edit line1 - "));
    steps.push_back(TextStep(L"LAST MODIFIED BY", {20, 115, 360, 25}, ControlId::Description, ColourRole::BodyText,
                             FontRole::Section, L"couldn't create safe to edit last modified by header - "));
    steps.push_back(AvatarStep(true, AvatarFileName(lastModifiedByQuid), {20, 145, 40, 40},
                               L"couldn't create safe to edit last modified by avatar - "));
    steps.push_back(NameStep(lastModifiedBy, {75, 145, 305, 20}, ControlId::None, ColourRole::Plain, FontRole::Title,
                             L"couldn't create safe to edit lastModifiedBy name - "));
    steps.push_back(ModifiedOnStep(lastModifiedTime, {75, 165, 305, 20}, ControlId::Description, ColourRole::BodyText,
                                   FontRole::Body, L"couldn't create safe to edit lastModifiedTime - "));
  }
  // Without the section the first rule is this one, at the same place.
  const int y = section ? 185 : 85;
  steps.push_back(TextStep(Rule(), {0, y, 400, 20}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                           L"couldn't create safe to edit line2 - "));
  steps.push_back(
      LinkStep(CollaborationWidgetLinkText(), {20, y + 30, 80, 20}, L"couldn't create safe to edit learn more - "));
  steps.push_back(ButtonStep(L"Hide", {120, y + 30, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded,
                             L"couldn't create safe to edit hide button - "));
  return layout;
}
