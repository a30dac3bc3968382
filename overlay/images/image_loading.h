#pragma once
#include <windows.h>

#include <string>

// The colour every transparent pixel of a badge picture is flattened onto,
// and the key that makes it see-through again on a layered window.
inline constexpr COLORREF kOverlayColourKey = RGB(169, 169, 169);

// Reads a PNG file into a GDI bitmap through GDI+ (from a memory stream, so
// the file is not held open). Every transparent pixel becomes `background`:
// the colour key for the layered badge, the colour of the panel or strip
// for a picture shown in a plain image control. Only a file that starts
// with a PNG header of at most 1024 × 1024 pixels is handed to GDI+
// (PngHeaderRefusal). Null on any failure, with one error line naming the
// path and why: the header's fault or GDI+'s status. The caller owns the
// bitmap. GDI+ must be running.
HBITMAP LoadImageBitmap(std::wstring path, COLORREF background = kOverlayColourKey);
