#include "overlay/layouts/accessible_names.h"

#include <cwchar>

#include "overlay/layouts/control_styles.h"
#include "overlay/layouts/text_fit.h"

namespace {
// The static styles whose text is what the user reads (not a picture).
bool ShowsText(const LayoutStep& step) {
  if (step.kind != StepKind::Create || std::wcscmp(step.className, kStaticClass) != 0) return false;
  return step.style != kStyleImage && step.style != kStyleIcon && !step.text.empty();
}
}  // namespace

const wchar_t* BadgeAccessibleName(OverlayKind kind) {
  switch (kind) {
    case OverlayKind::NoInternet: return L"No Internet Connection";
    case OverlayKind::Loading: return L"Filewell Sync is loading this file's status";
    case OverlayKind::SafeToEdit: return L"No other users are currently viewing or editing this file";
    case OverlayKind::Editing: return L"Another user is editing this file";
    case OverlayKind::DeletedOrMoved: return L"This file has been deleted, renamed or moved on the web";
    case OverlayKind::Conflict: return L"File conflict occurred";
    case OverlayKind::Download: return L"A newer version of this file is available";
    case OverlayKind::ViewingOnly: return L"Another user is viewing this file";
    case OverlayKind::None: break;
  }
  return L"Filewell Sync";
}

long BadgeAccessibleRole(OverlayKind kind) {
  switch (kind) {
    case OverlayKind::SafeToEdit:
    case OverlayKind::Editing:
    case OverlayKind::DeletedOrMoved:
    case OverlayKind::Conflict:
    case OverlayKind::Download:
    case OverlayKind::ViewingOnly: return kRolePushButton;
    default: return kRoleStaticText;
  }
}

std::wstring PanelAccessibleName(const PanelLayout& layout) {
  for (const LayoutStep& step : layout.steps) {
    if (ShowsText(step)) return step.text;
  }
  return std::wstring();
}

// A screen reader reads what the user sees: the link's text without its
// markup.
std::wstring LinkAccessibleName(const std::wstring& markup) { return ShownLinkText(markup); }
