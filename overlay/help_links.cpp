#include "overlay/help_links.h"

namespace {
std::wstring Anchor(const wchar_t* path, const wchar_t* caption) {
  return std::wstring(L"<a href=\"") + kHelpHost + path + L"\">" + caption + L"</a>";
}
}  // namespace

std::wstring CollaborationWidgetLinkText() {
  return Anchor(
      L"/portal/kb/filewell/sync/filewell-sync/articles/"
      L"track-live-user-activity-in-ms-office-files-using-filewell-collaboration-widget",
      L"Learn More");
}

std::wstring RolesAndPermissionsLinkText() {
  return Anchor(L"/portal/kb/articles/team-folder-roles-and-permissions", L"Learn more");
}
