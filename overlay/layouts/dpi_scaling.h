#pragma once
// The overlay is drawn for 96 DPI; on a screen at another DPI every
// position, size, font height, region and picture is scaled by the DPI of
// the Office window it sits on. One rule for all: value × dpi / 96, rounded
// to the nearest pixel, halves away from zero (as MulDiv rounds). Positions
// and sizes are scaled each on its own, so a control's size is the same
// wherever it sits. At 96 DPI every value comes back unchanged.
#include <string>

#include "overlay/layouts/font_table.h"
#include "overlay/layouts/overlay_geometry.h"
#include "overlay/layouts/panel_layout.h"

// The DPI the overlay's numbers are written for.
inline constexpr int kDesignDpi = 96;

// A DPI the overlay can use: anything below 96 (0 from a failed query, a
// negative or absurd number) is taken as 96, anything above 960 (1000 %)
// as 960, so a broken answer can never make windows vanish or fill memory.
int UsableDpi(int dpi);

// value × dpi / 96, rounded to the nearest, halves away from zero.
int ScaleForDpi(int value, int dpi);

// Each edge scaled on its own (a rectangle given in 96-DPI pixels).
Rect ScaleRectForDpi(const Rect& rect, int dpi);

// The height scaled; a font of the default size (height 0) keeps 0 at
// 96 DPI, and elsewhere gets the default size's cell height at 96 DPI
// (defaultCellHeight, as the Win32 side measures it) scaled, since the
// system's default size does not follow a window's DPI.
FontSpec ScaleFontForDpi(const FontSpec& font, int dpi, int defaultCellHeight);

// A step with its rectangle scaled; everything else as it was.
LayoutStep ScaleStepForDpi(const LayoutStep& step, int dpi);

// A layout with its window size and every step's rectangle scaled.
PanelLayout ScaleLayoutForDpi(const PanelLayout& layout, int dpi);

// The side (width or height) a picture file's `fileSize` pixels get at
// this DPI: the file is drawn for 96 DPI, or for 192 when it is the
// double-size twin (`fromDoubleSize`). Never below 1.
int ScaledImageSide(int fileSize, bool fromDoubleSize, int dpi);

// The double-size twin of a picture file: "drive.png" → "drive@2x.png"
// (the suffix goes before the last extension, or at the end when there is
// none). Used above 96 DPI when the file exists beside the plain one.
std::wstring DoubleSizeFileName(const std::wstring& fileName);

// Whether a double-size picture is looked for at this DPI.
bool WantsDoubleSizeImage(int dpi);
