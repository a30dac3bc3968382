#pragma once
#include <string>

// %APPDATA%\QelvoFilewell\bin\images, where the sync app installs the
// overlay images; settled once when the UI toolkit starts.
extern std::wstring ImagesFolder;
