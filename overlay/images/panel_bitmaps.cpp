#include "overlay/images/panel_bitmaps.h"

#include <vector>

namespace {
// A window property holds the list, so a window's pictures are found from
// the window alone.
constexpr wchar_t kProperty[] = L"QelvoFilewellSync-PanelBitmaps";

struct ShownBitmap {
  HWND control;
  HBITMAP bitmap;
  bool owned;
};
using ShownBitmaps = std::vector<ShownBitmap>;

ShownBitmaps* ListOf(HWND panel) { return static_cast<ShownBitmaps*>(GetPropW(panel, kProperty)); }
}  // namespace

void RememberPanelBitmap(HWND panel, HWND control, HBITMAP bitmap, bool owned) {
  if (bitmap == nullptr) return;
  ShownBitmaps* list = ListOf(panel);
  if (list == nullptr) {
    list = new ShownBitmaps();
    if (!SetPropW(panel, kProperty, list)) {
      delete list;
      if (owned) DeleteObject(bitmap);  // nothing would ever free it
      return;
    }
  }
  list->push_back({control, bitmap, owned});
}

void TakeBitmapsOutOfControls(HWND panel) {
  ShownBitmaps* list = ListOf(panel);
  if (list == nullptr) return;
  for (ShownBitmap& shown : *list) {
    if (!IsWindow(shown.control)) continue;
    const auto previous = reinterpret_cast<HBITMAP>(
        SendMessageW(shown.control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(nullptr)));
    if (previous != nullptr && previous != shown.bitmap) DeleteObject(previous);
  }
}

void ReleasePanelBitmaps(HWND panel) {
  ShownBitmaps* list = static_cast<ShownBitmaps*>(RemovePropW(panel, kProperty));
  if (list == nullptr) return;
  for (const ShownBitmap& shown : *list) {
    if (shown.owned) DeleteObject(shown.bitmap);
  }
  delete list;
}
