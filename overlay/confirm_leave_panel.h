#pragma once
#include "overlay/panel_layout.h"

// Asks before the add-in closes or reloads the file: to resolve a conflict,
// to load the latest version (download), or to follow a rename or a move.
// With unsaved changes it offers two choices (save or discard first),
// without them one. One situation flag is expected; they are tried in the
// order conflict, download, rename, move. With none set there is nothing
// to ask: the layout is not buildable (IsBuildable() is false).
PanelLayout ConfirmLeavePanelLayout(bool unsaved, bool conflict, bool download, bool rename, bool move);
