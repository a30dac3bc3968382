#pragma once
// Where the badge and its panels go, in screen coordinates. Plain values in
// and out, so the Win32 side only reads rectangles and moves windows.
#include <iosfwd>

struct Point {
  int x;
  int y;
};

// A window rectangle as GetWindowRect gives it: right and bottom are
// outside the window.
struct Rect {
  int left;
  int top;
  int right;
  int bottom;
  int width() const { return right - left; }
  int height() const { return bottom - top; }
};

bool operator==(const Point& a, const Point& b);
bool operator!=(const Point& a, const Point& b);
bool operator==(const Rect& a, const Rect& b);
bool operator!=(const Rect& a, const Rect& b);
std::ostream& operator<<(std::ostream& out, const Point& point);
std::ostream& operator<<(std::ostream& out, const Rect& rect);

// The badge's home: 300 pixels left of the Office window's right edge and
// 100 above its bottom edge, at 96 DPI; both distances follow the Office
// window's DPI (ScaleForDpi).
Point BadgeHomePosition(const Rect& office, int dpi = 96);

// An Office window so small that the home position falls at or left of (or
// above) the screen's first pixel leaves the badge where it is.
bool HomePositionUsable(const Point& home);

// Whether a badge at (x, y) of this size lies wholly inside the Office
// window, with no shared edge: the test that both keeps a drag inside and
// tells the timer that a badge has drifted out.
bool BadgeStaysInside(const Rect& office, int x, int y, int width, int height);

// A panel's top-left corner: right edges aligned with the badge and above
// it; against the badge's left edge when that would cross the Office
// window's left edge, and below the badge when it would rise above the
// Office window's top edge.
Point PlaceSubOverlay(const Rect& office, const Rect& badge, int width, int height);

// The badge's top-left corner while it is dragged: centred on the cursor
// (integer halves, as the badge's own size gives them).
Point DraggedBadgePosition(const Point& cursorScreen, int width, int height);

// Whether the cursor has left the drag rectangle around the point where the
// button went down: more than dragWidth pixels to either side or more than
// dragHeight above or below (SM_CXDRAG, SM_CYDRAG). Until then a press and
// release is a click, however the hand shook.
bool LeavesDragRectangle(const Point& press, const Point& cursor, int dragWidth, int dragHeight);
