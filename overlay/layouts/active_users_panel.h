#pragma once
#include <cstddef>
#include <map>
#include <string>

#include "overlay/layouts/panel_layout.h"

// Identifier → display name, in ascending identifier order.
using MemberNames = std::map<std::wstring, std::wstring>;

// However many members the answer names, the list shows this many rows
// (editors first, then viewers, each in the list's order) and one line
// saying how many more there are, so the windows, GDI objects and time a
// panel takes stay bounded.
inline constexpr std::size_t kMaxShownMembers = 50;

// The line below the last shown row: "and 4,950 more" (thousands grouped
// with commas).
std::wstring MoreMembersText(std::size_t more);

// Who else has the file open: a title and advice by the numbers of editors
// (E) and viewers (V), "LIVE MEMBERS ( n )", one row per member (editors
// first, each map in its order) in a list that scrolls from nine members
// on, the "LAST MODIFIED BY" section when the last modifier's name is
// known, a link and "Hide".
//
// The panel is created 400 × 400, since its height is known only once the
// list has its final size; the builder then gives it its final height and
// places it again against the badge.
PanelLayout ActiveUsersPanelLayout(const std::wstring& lastModifiedByQuid, const std::wstring& lastModifiedBy,
                                   const std::wstring& lastModifiedTime, const MemberNames& editors,
                                   const MemberNames& viewers);
