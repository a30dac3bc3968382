#pragma once
#include <array>

#include "overlay/layouts/panel_layout.h"

// Asks before the add-in closes or reloads the file: to resolve a conflict,
// to load the latest version (download), or to follow a rename or a move.
// With unsaved changes it offers two choices (save or discard first),
// without them one. One situation flag is expected; they are tried in the
// order conflict, download, rename, move. With none set there is nothing
// to ask: the layout is not buildable (IsBuildable() is false).
PanelLayout ConfirmLeavePanelLayout(bool unsaved, bool conflict, bool download, bool rename, bool move);

// The id of the first button of each form of the situation's confirmation:
// the one choice without unsaved changes, then the first of the two with
// them. A panel holding either button is that situation's confirmation.
// Zeros for no situation.
std::array<int, 2> ConfirmLeaveFirstChoiceIds(bool conflict, bool download, bool rename, bool move);
