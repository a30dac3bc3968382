#pragma once
// What screen readers hear for the overlay's own windows. The standard
// proxies name plain statics and standard buttons from their text; the
// layered badge, the owner-drawn buttons and title, the panels and the links
// get these names and roles instead. UI Automation reads them through its
// MSAA proxy, so one answer serves both.
#include <string>

#include "overlay/decision/overlay_kind.h"
#include "overlay/layouts/panel_layout.h"

// MSAA roles (oleacc.h's ROLE_SYSTEM_* values), as plain numbers.
inline constexpr long kRolePane = 0x10;
inline constexpr long kRoleDialog = 0x12;
inline constexpr long kRoleLink = 0x1E;
inline constexpr long kRoleStaticText = 0x29;
inline constexpr long kRolePushButton = 0x2B;

// One sentence per kind, saying what the badge (or status strip) shows.
const wchar_t* BadgeAccessibleName(OverlayKind kind);

// A badge that opens a panel when clicked is a push button; the loading
// and no-internet strips only tell, and are static text.
long BadgeAccessibleRole(OverlayKind kind);

// A panel is a dialog: a window of its own that tells the user something
// and offers buttons, like a message box, that Narrator and NVDA read out
// as a whole.
inline constexpr long kPanelAccessibleRole = kRoleDialog;

// The panel's name: its title, the first text it shows (the heading of
// every panel, the question of a confirmation). Empty when none.
std::wstring PanelAccessibleName(const PanelLayout& layout);

// What a link control shows, without its markup: "Learn More" for
// `<a href="...">Learn More</a>`. A standard proxy would read the markup.
std::wstring LinkAccessibleName(const std::wstring& markup);

// The default action a screen reader offers on an owner-drawn button.
inline constexpr wchar_t kButtonDefaultAction[] = L"Press";
