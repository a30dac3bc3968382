#pragma once
#include <windows.h>

#include "overlay/font_table.h"

// The font of a role, created the first time it is asked for and kept for
// the life of the process (the overlays' controls use it for as long as
// they live); null for FontRole::None or when it cannot be created.
HFONT OverlayFont(FontRole role);
