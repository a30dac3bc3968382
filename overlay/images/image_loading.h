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
//
// The pictures are drawn for 96 DPI. At another DPI the picture is drawn at
// its size × dpi / 96 (ScaledImageSide) with high-quality bicubic
// filtering, before its transparent pixels are flattened, so the edges
// blend as they do at 96 DPI. Above 96 DPI a double-size twin beside the
// file ("drive@2x.png" beside "drive.png"), when there is one, is used
// instead and drawn at half its size × dpi / 96; it passes the same checks.
HBITMAP LoadImageBitmap(std::wstring path, COLORREF background = kOverlayColourKey, int dpi = 96);
