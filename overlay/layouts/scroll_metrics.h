#pragma once
// The arithmetic of the scroll areas, in character units from the window's
// font metrics. The Win32 side reads the metrics and the scroll bar, asks
// here for the numbers, writes the position back, reads it again (the
// system clamps it to the range) and scrolls by the difference.

// tmAveCharWidth × 3 / 2 for a variable-pitch font (the low bit of
// tmPitchAndFamily set), else tmAveCharWidth; integer arithmetic.
int CapitalWidth(int averageCharWidth, unsigned pitchAndFamily);

// tmHeight + tmExternalLeading.
int LineHeight(int height, int externalLeading);

// The range a scroll bar is given (SIF_RANGE).
struct ScrollRange {
  int minimum;
  int maximum;
};

bool operator==(const ScrollRange& a, const ScrollRange& b);

// What the scroll bar holds (SCROLLINFO with SIF_ALL).
struct ScrollBarState {
  int minimum;
  int maximum;
  int page;
  int position;
  int trackPosition;
};

// --- Horizontal areas (one line of text, the rename/move name boxes) ---

// The requests handled, with their Win32 numbers (SB_LINELEFT and so on);
// any other number leaves the position alone.
enum class HorizontalScrollRequest : int {
  LineLeft = 0,
  LineRight = 1,
  PageLeft = 2,
  PageRight = 3,
  ThumbTrack = 5,
};

// The text is drawn this many pixels below the top.
inline constexpr int kHorizontalTextTop = 10;

// The page in characters for a new client width (WM_SIZE). A font without
// a width gives no page rather than a division by zero.
int HorizontalPage(int clientWidth, int charWidth);

// The text's width in pixels: every character at the average width plus a
// capital's width for every fourth one, a generous guess at mixed case.
int TextWidth(int length, int charWidth, int capitalWidth);

// 0 … the text's width in characters + 2: even a short text has room to be
// nudged by the arrows.
ScrollRange HorizontalRange(int textWidth, int charWidth);

// Where the text starts for a scroll position: one character in at 0.
int HorizontalTextX(int position, int charWidth);

// The position a request asks for, before the system clamps it.
int RequestedHorizontalPosition(HorizontalScrollRequest request, const ScrollBarState& bar);

// "WM_HSCROLL - SB_LINELEFT" and so on; null for a request not handled.
const wchar_t* HorizontalRequestLogText(HorizontalScrollRequest request);

// --- Vertical areas (the active users' long member list) ---

enum class VerticalScrollRequest : int {
  LineUp = 0,
  LineDown = 1,
  PageUp = 2,
  PageDown = 3,
  ThumbTrack = 5,
  Top = 6,
  Bottom = 7,
};

// 0 … the client height in lines + 20: twenty lines of slack beyond what
// is visible.
ScrollRange VerticalRange(int clientHeight, int lineHeight);

// One client height in lines (WM_SIZE).
int VerticalPage(int clientHeight, int lineHeight);

// The position a request asks for, before the system clamps it.
int RequestedVerticalPosition(VerticalScrollRequest request, const ScrollBarState& bar);

// "WM_VSCROLL - SB_LINEUP" and so on; null for a request not handled.
const wchar_t* VerticalRequestLogText(VerticalScrollRequest request);

// --- Both ---

// ScrollWindow's amount in pixels for a move from oldPosition to
// newPosition, with unit the character width or the line height: the
// content moves against the position.
int ScrollPixels(int oldPosition, int newPosition, int unit);
