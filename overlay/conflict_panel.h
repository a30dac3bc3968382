#pragma once
#include "overlay/panel_layout.h"

// "File conflict occurred", with the warning sign and "Resolve conflict".
PanelLayout ConflictPanelLayout();
