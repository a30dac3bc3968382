#include "overlay/layouts/overlay_geometry.h"

#include <ostream>

#include "overlay/layouts/dpi_scaling.h"

bool operator==(const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; }
bool operator!=(const Point& a, const Point& b) { return !(a == b); }

bool operator==(const Rect& a, const Rect& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}
bool operator!=(const Rect& a, const Rect& b) { return !(a == b); }

std::ostream& operator<<(std::ostream& out, const Point& point) {
  return out << "(" << point.x << ", " << point.y << ")";
}

std::ostream& operator<<(std::ostream& out, const Rect& rect) {
  return out << "{left " << rect.left << ", top " << rect.top << ", right " << rect.right << ", bottom " << rect.bottom
             << "}";
}

Point BadgeHomePosition(const Rect& office, int dpi) {
  return {office.right - ScaleForDpi(300, dpi), office.bottom - ScaleForDpi(100, dpi)};
}

bool HomePositionUsable(const Point& home) { return home.x >= 1 && home.y >= 1; }

bool BadgeStaysInside(const Rect& office, int x, int y, int width, int height) {
  return x > office.left && x + width < office.right && y > office.top && y + height < office.bottom;
}

Point PlaceSubOverlay(const Rect& office, const Rect& badge, int width, int height) {
  Point corner{badge.right - width, badge.top - height};
  if (corner.x < office.left) corner.x = badge.left;
  if (corner.y < office.top) corner.y = badge.bottom;
  return corner;
}

Point DraggedBadgePosition(const Point& cursorScreen, int width, int height) {
  return {cursorScreen.x - width / 2, cursorScreen.y - height / 2};
}

bool LeavesDragRectangle(const Point& press, const Point& cursor, int dragWidth, int dragHeight) {
  const int dx = cursor.x > press.x ? cursor.x - press.x : press.x - cursor.x;
  const int dy = cursor.y > press.y ? cursor.y - press.y : press.y - cursor.y;
  return dx > dragWidth || dy > dragHeight;
}
