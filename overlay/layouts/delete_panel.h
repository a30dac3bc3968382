#pragma once
#include "overlay/layouts/panel_layout.h"

// "This file has been deleted", with a grey note on keeping a copy. No
// button: the user closes the file in Office.
PanelLayout DeletePanelLayout();
