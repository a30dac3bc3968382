#include "overlay/layouts/download_panel.h"

#include "overlay/images/avatar_file.h"
#include "overlay/layouts/layout_steps.h"

namespace {
struct Size {
  int width;
  int height;
};

// Without details the panel is narrower; the box for separate copies adds
// 40 pixels of height.
Size PanelSize(bool editing, bool downloading, bool details) {
  if (editing && !downloading) return details ? Size{400, 215} : Size{400, 185};
  if (editing && downloading) return details ? Size{400, 175} : Size{330, 145};
  return details ? Size{400, 175} : Size{320, 145};
}

// The left edge shared by the title and the button.
int TitleLeft(bool editing, bool downloading, bool details) {
  if (details) return 20;
  if (downloading) return 60;
  return editing ? 20 : 55;
}
}  // namespace

PanelLayout DownloadPanelLayout(const std::wstring& lastModifiedByQuid, const std::wstring& lastModifiedBy,
                                const std::wstring& lastModifiedTime, bool editing, bool downloading) {
  const bool details = !lastModifiedBy.empty();
  const bool checkBox = editing && !downloading;
  const Size size = PanelSize(editing, downloading, details);
  const int w = size.width;
  const int x = TitleLeft(editing, downloading, details);
  const int y0 = details ? 120 : 85;

  PanelLayout layout =
      AgainstBadgePanel(w, size.height, L"couldn't get ms office window rect while creating download sub overlay UI - ",
                        L"couldn't get parent window rect while creating download sub overlay UI - ",
                        L"couldn't create download sub overlay UI - ", L"creating download sub overlay UI");
  auto& steps = layout.steps;
  steps.push_back(TextStep(L"This file has been modified", {x, 20, details ? w - 40 : 250, 25}, ControlId::None,
                           ColourRole::Plain, FontRole::Title, L"couldn't create download title - "));
  if (details) {
    // Without an identifier there is no file to try: the default avatar.
    steps.push_back(AvatarStep(!lastModifiedByQuid.empty(), AvatarFileName(lastModifiedByQuid), {20, 55, 40, 40},
                               L"couldn't create last modified by download avatar - "));
    steps.push_back(NameStep(lastModifiedBy, {70, 55, w - 90, 25}, ControlId::None, ColourRole::Plain, FontRole::Title,
                             L"couldn't create download lastModifiedBy - "));
    steps.push_back(ModifiedOnStep(lastModifiedTime, {70, 80, w - 90, 25}, ControlId::Description, ColourRole::BodyText,
                                   FontRole::Body, L"couldn't create download description - "));
  } else {
    steps.push_back(TextStep(L"Retrieving more details...", {checkBox ? x : x + 10, 45, 200, 25}, ControlId::None,
                             ColourRole::Plain, FontRole::WaitItalic,
                             L"couldn't create download RetrievingMoreDetails - "));
  }
  if (checkBox) {
    steps.push_back(CheckBoxStep(L"Save my changes as a separate copy", {20, y0, w - 40, 40},
                                 ControlId::SaveSeparateCopy, L"couldn't create save my changes checkbox - "));
  }
  const int buttonTop = checkBox ? y0 + 40 : y0;
  if (downloading) {
    steps.push_back(ButtonStep(L"Downloading...", {x, buttonTop, 200, 40}, ControlId::Downloading, ButtonLook::Waiting,
                               ButtonShape::Square, L"couldn't create download button - "));
    steps.push_back(ProgressBarStep({0, size.height - 7, w, 7}, L"couldn't create downloading progress bar - "));
  } else {
    steps.push_back(ButtonStep(L"Download latest version", {x, buttonTop, 240, 40}, ControlId::Download,
                               ButtonLook::Main, ButtonShape::Square, L"couldn't create download button - "));
  }
  return layout;
}
