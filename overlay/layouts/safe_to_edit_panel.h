#pragma once
#include <string>

#include "overlay/layouts/panel_layout.h"

// "No active collaborators": nobody else has the file open. The "LAST
// MODIFIED BY" section (avatar, name, time) is there when the last
// modifier's identifier is known; the name and time are shown as received.
PanelLayout SafeToEditPanelLayout(const std::wstring& lastModifiedByQuid, const std::wstring& lastModifiedBy,
                                  const std::wstring& lastModifiedTime);
