#pragma once
// The overlay's pictures. The images the sync app installs are loaded once
// per process, each into a slot of its own, and kept while the add-in is
// loaded; a slot whose file would not load stays empty and is tried again
// the next time it is needed. People's avatars are loaded per panel and
// freed with it.
#include <windows.h>

#include <string>

#include "overlay/images/image_loading.h"

// %APPDATA%\QelvoFilewell\bin\images, where the sync app installs the
// overlay images; settled once when the UI toolkit starts.
extern std::wstring ImagesFolder;

// %APPDATA%\QelvoFilewell\avatar, where the sync app puts people's avatars.
std::wstring AvatarFolder();

// The kept bitmap of an image of the images folder ("drive_tick.png"),
// loaded now if its slot is empty; null when it cannot be loaded. The
// caller must not delete it. Its transparent pixels are `backdrop`: the
// colour key for the badge, the colour behind the picture for an image
// control; each backdrop and each DPI (LoadImageBitmap) has a slot of its
// own.
HBITMAP SharedImage(const wchar_t* fileName, COLORREF backdrop = kOverlayColourKey, int dpi = 96);

// The default avatar (kept like the images above) over `backdrop`; logs
// that it was chosen.
HBITMAP DefaultAvatar(COLORREF backdrop, int dpi = 96);
