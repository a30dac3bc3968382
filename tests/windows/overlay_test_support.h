#pragma once
// What the overlay tests share: one process-wide stage (GDI+ and the common
// controls started, the eight classes registered, a plain "Office" window
// of our own to own the overlays), reading back a window's children as
// Windows reports them, reading pixels from bitmaps and from the screen, and
// keeping screenshots as PNG files among the build's test artefacts.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "common/unique_window.h"
#include "overlay/layouts/control_id.h"
#include "tests/caller.h"
#include "tests/windows/wine_test_support.h"

// --- The stage ---

// Once per process: a fresh log, InitUiToolkit (GDI+, the progress and
// link controls, ImagesFolder from %APPDATA%), the eight overlay classes
// registered with the module's instance, and the Office window shown at
// 60,40, 1100 × 700. Later calls do nothing.
void SetUpOverlayStage();

// The Office window of the stage, and the colour its client area is
// painted with (a yellow that no overlay uses, so it is recognised through
// a transparent pixel).
HWND OfficeWindow();
inline constexpr COLORREF kOfficeColour = RGB(250, 215, 60);

// The badge's home in the Office window: 300 left of its right edge, 100
// above its bottom edge.
POINT BadgeHome();

// Lets the window procedures and the display catch up (painting, layered
// windows, the X server): messages are handled for this long.
void PumpMessagesFor(DWORD milliseconds);

// Destroys a window the test made, unless something already did.
using OverlayWindowTraits = WindowTraits;

// --- Colours ---

struct Rgb {
  int r = 0;
  int g = 0;
  int b = 0;
};
bool operator==(const Rgb& a, const Rgb& b);
bool operator!=(const Rgb& a, const Rgb& b);
std::ostream& operator<<(std::ostream& out, const Rgb& colour);
Rgb RgbOf(COLORREF colour);

// --- Bitmaps ---

// A picture as rows of pixels, top row first.
struct Pixels {
  int width = 0;
  int height = 0;
  std::vector<Rgb> rgb;
  Rgb At(int x, int y) const { return rgb[static_cast<size_t>(y) * width + x]; }
  // How many pixels of the rectangle (x, y, width, height) are that colour.
  int CountOf(const Rgb& colour, int x, int y, int width, int height) const;
};

// The bitmap's pixels through GetDIBits (32 bits, top-down).
Pixels PixelsOf(HBITMAP bitmap);
SIZE SizeOf(HBITMAP bitmap);

// Writes a PNG through GDI+; the colour of each pixel as ARGB.
bool WritePng(const std::wstring& path, int width, int height, const std::function<std::uint32_t(int, int)>& argbAt);

// --- The screen ---

// The screen's pixels in that rectangle (screen coordinates), as the
// display shows them now.
Pixels CaptureScreen(const RECT& area);

// Keeps a picture as build/windows/test-artefacts/<name>.png; the path
// written, or "" when it could not be written.
std::wstring SaveArtefact(const Pixels& picture, const std::wstring& name);

// --- Children as Windows reports them ---

// The font a control answers WM_GETFONT with, read through LOGFONT.
struct FontLook {
  bool set = false;  // WM_GETFONT gave a font
  int height = 0;
  int weight = 0;
  bool italic = false;
};
// The overlay's fonts by their table: height, weight, italic.
inline constexpr FontLook kNoFont{false, 0, 0, false};
inline constexpr FontLook kTitleFont{true, 19, 700, false};
inline constexpr FontLook kBodyFont{true, 18, 400, false};
inline constexpr FontLook kBodyItalicFont{true, 18, 400, true};
inline constexpr FontLook kWaitItalicFont{true, 19, 400, true};
inline constexpr FontLook kOverlayTitleFont{true, 18, 700, false};
inline constexpr FontLook kSectionFont{true, 17, 700, false};
inline constexpr FontLook kDefaultBoldFont{true, 0, 700, false};

// One row of a child table: class, text, id, rectangle in the parent's
// client coordinates, style and font; parent 0 for a child of the window
// itself, else the 1-based row of the child that holds it.
struct ChildRow {
  std::wstring className;
  std::wstring text;
  ControlId id = ControlId::None;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  DWORD style = 0;
  FontLook font;
  int parent = 0;
  HWND window = nullptr;  // read back only
};

// Every descendant, in the order EnumChildWindows gives them (each child
// followed by its own children).
std::vector<ChildRow> ChildrenOf(HWND window);
// One line per row, "STATIC \"text\" id 1004 at 15,45 370x40 style
// 0x50000000 font 18/400 in 0", for readable comparisons.
std::string Describe(const ChildRow& row);

// Compares the children of `window` row by row with the expected table.
void ExpectChildren(HWND window, const std::vector<ChildRow>& expected, Caller caller = {});

// The window's size and its top-left corner in screen coordinates.
void ExpectWindowRect(HWND window, int x, int y, int width, int height, Caller caller = {});

// --- Files and the log ---

// %APPDATA%\QelvoFilewell\avatar.
std::wstring AvatarFolderForTest();
// A folder of this test process under %TEMP%, made if missing.
std::wstring TestTempFolder();

// Messages of the log's error lines ("E"), in order.
std::vector<std::string> ErrorLines();

std::string Utf8(const std::wstring& text);
