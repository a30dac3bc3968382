#pragma once
#include <windows.h>

#include "overlay/layouts/control_id.h"

// A button of a panel was pressed: `panel` is the panel that holds it and
// `id` the button's control id. The choice goes into the file's record, and
// where it says so to the sync app at once; what is shown next is left to
// the next tick.
void HandlePanelCommand(HWND panel, ControlId id);
