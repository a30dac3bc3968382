#pragma once
// The help articles the panels link to. The host is chosen here and nowhere
// else, so moving the help centre is a one-line change.
#include <string>

inline constexpr wchar_t kHelpHost[] = L"https://help.qelvo.com";

// The SysLink text of the safe-to-edit and active-users panels: one anchor,
// "Learn More", to the article about the collaboration widget.
std::wstring CollaborationWidgetLinkText();

// The SysLink text of the read-only error panel: one anchor, "Learn more",
// to the article about team folder roles and permissions.
std::wstring RolesAndPermissionsLinkText();

// True only for the address of one of the articles above, exactly as the
// links carry it: the only addresses a link click may open.
bool IsHelpLinkAddress(const std::wstring& address);
