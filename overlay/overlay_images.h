#pragma once
// The overlay's pictures. The images the sync app installs are loaded once
// per process, each into a slot of its own, and kept while the add-in is
// loaded; a slot whose file would not load stays empty and is tried again
// the next time it is needed. People's avatars are loaded per panel and
// freed with it.
#include <windows.h>

#include <string>

// %APPDATA%\QelvoFilewell\bin\images, where the sync app installs the
// overlay images; settled once when the UI toolkit starts.
extern std::wstring ImagesFolder;

// %APPDATA%\QelvoFilewell\avatar, where the sync app puts people's avatars.
std::wstring AvatarFolder();

// The kept bitmap of an image of the images folder ("drive_tick.png"),
// loaded now if its slot is empty; null when it cannot be loaded. The
// caller must not delete it.
HBITMAP SharedImage(const wchar_t* fileName);

// The default avatar (kept like the images above); logs that it was
// chosen.
HBITMAP DefaultAvatar();
