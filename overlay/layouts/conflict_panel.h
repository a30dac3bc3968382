#pragma once
#include "overlay/layouts/panel_layout.h"

// "File conflict occurred", with the warning sign and "Resolve conflict".
PanelLayout ConflictPanelLayout();
