#pragma once
#include <string>

#include "overlay/layouts/panel_layout.h"

// "This file has been modified": who changed it and when (or "Retrieving
// more details..." while the last modifier's name is not known yet), the
// "Save my changes as a separate copy" box while the user has unsaved
// changes and has not pressed the button yet, and the button, which reads
// "Downloading..." with a marquee bar along the bottom edge once pressed.
PanelLayout DownloadPanelLayout(const std::wstring& lastModifiedByQuid, const std::wstring& lastModifiedBy,
                                const std::wstring& lastModifiedTime, bool editing, bool downloading);
