#pragma once
#include <string>

#include "overlay/layouts/panel_layout.h"

// The file was renamed (renamed set) or moved on the web: the old and the
// new name or location, each in a box that scrolls sideways, and "Reload".
// closeFirst is read for a move only: such a file must be closed before it
// can be synced from its new place, so the panel asks for that instead of
// offering the button.
PanelLayout RenameMovePanelLayout(bool renamed, bool closeFirst, const std::wstring& previous,
                                  const std::wstring& next);
