#include "overlay/layouts/active_users_panel.h"

#include <cstddef>

#include "overlay/images/avatar_file.h"
#include "overlay/layouts/control_styles.h"
#include "overlay/layouts/help_links.h"
#include "overlay/layouts/layout_steps.h"
#include "overlay/windows/window_class_names.h"

namespace {
// From this many members on, the rows no longer fit the panel and the list
// scrolls.
constexpr std::size_t kScrollingMembers = 9;
// The list's height as created; a scrolling list keeps it.
constexpr int kListHeight = 460;
// Each member row takes 55 pixels: avatar 40 high plus spacing.
constexpr int kRowPitch = 55;

std::wstring Rule() { return std::wstring(111, L'-'); }

struct Heading {
  const wchar_t* title;
  ControlId titleId;
  ColourRole titleColour;
  const wchar_t* description;
  int descriptionHeight;
};

Heading HeadingFor(std::size_t editors, std::size_t viewers) {
  if (editors >= 2) {
    return {L"Multiple users are editing this file", ControlId::EditingTitle, ColourRole::EditingTitle,
            L"Please avoid editing now, as it may create multiple versions. Check with other users for more "
            L"details.",
            50};
  }
  if (editors == 1) {
    return {L"Another user is editing this file", ControlId::EditingTitle, ColourRole::EditingTitle,
            L"Please avoid editing now, as it may create multiple versions. Check with other user for more details.",
            50};
  }
  if (viewers >= 2) {
    return {L"Multiple users are viewing this file", ControlId::ViewingTitle, ColourRole::ViewingTitle,
            L"If they make changes, we'll let you know.", 25};
  }
  if (viewers == 1) {
    return {L"Another user is viewing this file", ControlId::ViewingTitle, ColourRole::ViewingTitle,
            L"If they make changes, we'll let you know.", 25};
  }
  // Nobody at all: the timer does not ask for this panel then, but if it
  // ever does, it still builds, with no title or advice.
  return {L"", ControlId::ViewingTitle, ColourRole::ViewingTitle, L"", 25};
}

void AddMemberRow(std::vector<LayoutStep>& steps, int list, int top, const std::wstring& identifier,
                  const std::wstring& name, bool editor) {
  // The row's avatar has no failure text of its own: a row without its
  // picture is still worth showing.
  steps.push_back(InsideOf(list, AvatarStep(true, AvatarFileName(identifier), {20, top, 40, 40}, nullptr)));
  steps.push_back(InsideOf(list, NameStep(name, {75, top, 305, 20}, ControlId::MemberRow, ColourRole::MemberRow,
                                          FontRole::Title, L"couldn't create active users live member name - ")));
  LayoutStep dot = InsideOf(list, WindowStep(editor ? kRedUiClass : kGreenUiClass, kStyleChild, {75, top + 22, 12, 12},
                                             ControlId::None, L"couldn't create active users color status - "));
  dot.circleRegion = true;
  dot.regionFailureText = L"couldn't create active users color status rgn - ";
  dot.setRegionFailureText = L"couldn't set active users color status rgn to window - ";
  steps.push_back(dot);
  steps.push_back(InsideOf(
      list, TextStep(editor ? L"Editing now" : L"Viewing now", {95, top + 20, 305, 20}, ControlId::MemberRow,
                     ColourRole::MemberRow, FontRole::Body, L"couldn't create active users live member status - ")));
}
}  // namespace

std::wstring MoreMembersText(std::size_t more) {
  std::wstring digits = std::to_wstring(more);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, 1, L',');
  return L"and " + digits + L" more";
}

PanelLayout ActiveUsersPanelLayout(const std::wstring& lastModifiedByQuid, const std::wstring& lastModifiedBy,
                                   const std::wstring& lastModifiedTime, const MemberNames& editors,
                                   const MemberNames& viewers) {
  // This panel decides on the name, where the safe-to-edit panel decides on
  // the identifier.
  const bool section = !lastModifiedBy.empty();
  const std::size_t members = editors.size() + viewers.size();
  const Heading heading = HeadingFor(editors.size(), viewers.size());
  const int d = heading.descriptionHeight;

  PanelLayout layout =
      AgainstBadgePanel(400, 400, L"couldn't get ms office window rect while creating active users sub overlay UI - ",
                        L"couldn't get parent window rect while creating active users sub overlay UI - ",
                        L"couldn't create active users sub overlay UI - ", L"creating active users sub overlay UI");
  auto& steps = layout.steps;
  steps.push_back(TextStep(heading.title, {20, 20, 360, 30}, heading.titleId, heading.titleColour,
                           FontRole::DefaultBold, L"couldn't create active users title - "));
  steps.push_back(TextStep(heading.description, {20, 50, 360, d}, ControlId::Description, ColourRole::BodyText,
                           FontRole::Body, L"couldn't create active users description - "));
  steps.push_back(TextStep(Rule(), {0, d + 45, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                           L"couldn't create active users line1 - "));
  steps.push_back(TextStep(L"LIVE MEMBERS ( " + std::to_wstring(members) + L" )", {20, d + 75, 360, 25},
                           ControlId::Description, ColourRole::BodyText, FontRole::Section,
                           L"couldn't create active users live members header - "));

  const int listTop = d + 100;
  const bool scrolling = members >= kScrollingMembers;
  const int list = static_cast<int>(steps.size());
  steps.push_back(WindowStep(scrolling ? kVerWhiteScrollUiClass : kMainUiClass,
                             scrolling ? kStyleVerticalScrollArea : kStyleChild, {0, listTop, 400, kListHeight},
                             ControlId::List, L"couldn't create active users scroll window - "));
  int top = 15;
  std::size_t shown = 0;
  for (const auto& editor : editors) {
    if (shown == kMaxShownMembers) break;
    AddMemberRow(steps, list, top, editor.first, editor.second, true);
    top += kRowPitch;
    ++shown;
  }
  for (const auto& viewer : viewers) {
    if (shown == kMaxShownMembers) break;
    AddMemberRow(steps, list, top, viewer.first, viewer.second, false);
    top += kRowPitch;
    ++shown;
  }
  // The rows' height (the last status line's top + 20), with 5 pixels more
  // before a last-modified section.
  int content = kRowPitch * static_cast<int>(shown) + (section ? 5 : 0);
  if (shown < members) {
    // Those not shown are counted on one line where the next row would
    // start.
    steps.push_back(InsideOf(
        list, TextStep(MoreMembersText(members - shown), {20, top, 360, 20}, ControlId::MemberRow,
                       ColourRole::MemberRow, FontRole::Body, L"couldn't create active users more members - ")));
    content = top + 20 + (section ? 5 : 0);
  }
  int listHeight = kListHeight;
  if (content <= kListHeight) {
    listHeight = content;
    steps.push_back(
        ResizeChildStep(list, {0, listTop, 400, listHeight}, L"couldn't update active users scroll window size - "));
  }

  const int s = listTop + listHeight;
  if (section) {
    steps.push_back(TextStep(Rule(), {0, s, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                             L"couldn't create active users line2 - "));
    steps.push_back(TextStep(L"LAST MODIFIED BY", {20, s + 30, 360, 25}, ControlId::Description, ColourRole::BodyText,
                             FontRole::Section, L"couldn't create active users last modified by header - "));
    steps.push_back(AvatarStep(true, AvatarFileName(lastModifiedByQuid), {20, s + 65, 40, 40},
                               L"couldn't create active users last modified by avatar - "));
    steps.push_back(NameStep(lastModifiedBy, {75, s + 65, 305, 20}, ControlId::None, ColourRole::Plain, FontRole::Title,
                             L"couldn't create active users lastModifiedBy name - "));
    steps.push_back(ModifiedOnStep(lastModifiedTime, {75, s + 85, 305, 20}, ControlId::Description,
                                   ColourRole::BodyText, FontRole::Body,
                                   L"couldn't create active users lastModifiedTime - "));
  }
  const int r = section ? s + 115 : s + 10;
  steps.push_back(TextStep(Rule(), {0, r, 400, 25}, ControlId::Rule, ColourRole::Rule, FontRole::None,
                           L"couldn't create active users line3 - "));
  steps.push_back(
      LinkStep(CollaborationWidgetLinkText(), {20, r + 25, 80, 20}, L"couldn't create active users learn more - "));
  steps.push_back(ButtonStep(L"Hide", {120, r + 25, 40, 20}, ControlId::Hide, ButtonLook::Quiet, ButtonShape::Rounded,
                             L"couldn't create active users hide button - "));

  layout.height = r + 60;
  layout.finalResizeFailureText = L"couldn't update active users window size - ";
  return layout;
}
