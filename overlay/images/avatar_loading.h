#pragma once
// A person's own avatar, from the avatar folder the sync app fills. The
// file name comes from the sync app's answer, so it is loaded only when it
// is a plain name (AvatarFileNameRefusal), when the full path Windows makes
// of it still lies directly inside the avatar folder, and when the file is
// a small PNG (LoadImageBitmap checks the header). Anything else gives null
// and one error line, and the panel shows the default avatar.
#include <windows.h>

#include <string>

// Its transparent pixels become `background`, the colour of the panel it
// sits on. Null on any refusal or failure; the caller owns the bitmap.
// GDI+ must be running.
// Drawn for `dpi` as LoadImageBitmap draws, from the double-size twin
// ("<name>@2x", or "<name>@2x.png" for a name with that extension) when
// the sync app has put one beside it.
HBITMAP LoadAvatarBitmap(const std::wstring& fileName, COLORREF background, int dpi = 96);
