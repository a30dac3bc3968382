#pragma once
#include "overlay/layouts/panel_layout.h"

// The error shown after a failed action: a read-only document that could
// not be saved (with a "Learn more" link to the roles article), or any
// other save error. The height follows the variant, so the panel is placed
// with its own height.
PanelLayout ErrorMessagePanelLayout(bool readOnly);
