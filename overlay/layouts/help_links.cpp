#include "overlay/layouts/help_links.h"

namespace {
constexpr wchar_t kCollaborationWidgetPath[] =
    L"/portal/kb/filewell/sync/filewell-sync/articles/"
    L"track-live-user-activity-in-ms-office-files-using-filewell-collaboration-widget";
constexpr wchar_t kRolesAndPermissionsPath[] = L"/portal/kb/articles/team-folder-roles-and-permissions";

std::wstring Anchor(const wchar_t* path, const wchar_t* caption) {
  return std::wstring(L"<a href=\"") + kHelpHost + path + L"\">" + caption + L"</a>";
}
}  // namespace

std::wstring CollaborationWidgetLinkText() { return Anchor(kCollaborationWidgetPath, L"Learn More"); }

std::wstring RolesAndPermissionsLinkText() { return Anchor(kRolesAndPermissionsPath, L"Learn more"); }

bool IsHelpLinkAddress(const std::wstring& address) {
  return address == std::wstring(kHelpHost) + kCollaborationWidgetPath ||
         address == std::wstring(kHelpHost) + kRolesAndPermissionsPath;
}
