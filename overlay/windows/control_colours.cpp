#include "overlay/windows/control_colours.h"

#include <map>
#include <string>

#include "common/gdi_guards.h"
#include "log/log_last_error.h"
#include "overlay/windows/overlay_fonts.h"
#include "overlay/layouts/dpi_scaling.h"
#include "overlay/windows/window_dpi.h"

namespace {
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kBlue = RGB(25, 110, 180);
constexpr COLORREF kDarkBlue = RGB(16, 80, 140);
constexpr COLORREF kBandGrey = RGB(230, 230, 230);
constexpr COLORREF kLightBlue = RGB(211, 226, 240);
constexpr COLORREF kBodyText = RGB(68, 68, 68);

struct ControlColour {
  int id;
  COLORREF text;
  COLORREF background;
};

// Text ids on white, then the coloured bands. A title that says someone is
// editing reads red, one that says someone is viewing green.
const ControlColour kStaticColours[] = {
    {1001, RGB(0, 0, 0), kWhite},         // titles
    {1002, RGB(20, 120, 60), kWhite},     // "... viewing this file"
    {1003, RGB(190, 30, 30), kWhite},     // "... editing this file"
    {1004, kBodyText, kWhite},            // descriptions, headings, times
    {1005, RGB(200, 200, 200), kWhite},   // the rules between sections
    {2001, kWhite, kBlue},                // the loading strip's pieces
    {2002, RGB(40, 40, 40), kBandGrey},   // the text in a grey note box
    {2003, RGB(40, 40, 40), kLightBlue},  // a light blue band
    {2004, RGB(30, 30, 30), kWhite},      // the active users' rows
};

// The buttons that get rounded corners of their own size.
bool IsRoundedButtonId(int id) { return id == 2001 || id == 3004 || (id >= 3005 && id <= 3014) || id == 3017; }

// The second choice of a confirmation and "Hide" are quiet; the rest are
// the panel's main action.
struct ButtonLook {
  COLORREF fill;
  COLORREF text;
  COLORREF frame;
};
ButtonLook LookOf(int id, bool pressed) {
  if (id == 3005 || id == 3009 || id == 3013) return {pressed ? kBandGrey : kWhite, kBlue, kBlue};
  if (id == 3014) return {pressed ? RGB(200, 200, 200) : kBandGrey, RGB(40, 40, 40), kBandGrey};
  if (id == 3002) return {kLightBlue, RGB(110, 110, 110), kLightBlue};  // "Downloading...": waiting, not a choice
  return {pressed ? kDarkBlue : kBlue, kWhite, pressed ? kDarkBlue : kBlue};
}

void GiveRoundedCorners(HWND control) {
  RECT box{};
  // Once only: a new region makes the control paint again.
  if (GetWindowRgnBox(control, &box) != ERROR) return;
  // A window region is in window coordinates, so it takes the window's own
  // size: the client size would cut the right and bottom lines off a
  // bordered button.
  RECT place{};
  GetWindowRect(control, &place);
  // The corners' roundness follows the DPI like the button's size does.
  const int corner = ScaleForDpi(10, DpiOfWindow(control));
  UniqueHrgn region(CreateRoundRectRgn(0, 0, place.right - place.left, place.bottom - place.top, corner, corner));
  if (!region) {
    LogLastError(L"couldn't create rounded rect rgn for control");
    return;
  }
  if (!SetWindowRgn(control, region.get(), TRUE)) {
    LogLastError(L"couldn't set rounded rect rgn for control");
    return;
  }
  region.release();  // the control owns it now
}

std::wstring TextOf(HWND control) {
  wchar_t text[256] = {};
  GetWindowTextW(control, text, 256);
  return text;
}
}  // namespace

HBRUSH KeptBrush(COLORREF colour) {
  static auto* brushes = new std::map<COLORREF, HBRUSH>();  // UI thread only; kept for the process
  HBRUSH& brush = (*brushes)[colour];
  if (brush == nullptr) brush = CreateSolidBrush(colour);
  return brush;
}

HBRUSH StaticControlColours(HWND control, HDC dc) {
  const int id = GetDlgCtrlID(control);
  COLORREF text = RGB(0, 0, 0);
  COLORREF background = kWhite;
  for (const ControlColour& colour : kStaticColours) {
    if (colour.id != id) continue;
    text = colour.text;
    background = colour.background;
  }
  SetTextColor(dc, text);
  SetBkColor(dc, background);
  return KeptBrush(background);
}

HBRUSH ButtonControlColours(HDC dc) {
  SetTextColor(dc, RGB(0, 0, 0));
  SetBkColor(dc, kWhite);
  return KeptBrush(kWhite);
}

void DrawOwnerDrawnControl(const DRAWITEMSTRUCT& item) {
  const int id = static_cast<int>(item.CtlID);
  if (IsRoundedButtonId(id) && item.CtlType == ODT_BUTTON) GiveRoundedCorners(item.hwndItem);
  RECT area = item.rcItem;
  const std::wstring text = TextOf(item.hwndItem);
  const HFONT font = reinterpret_cast<HFONT>(SendMessageW(item.hwndItem, WM_GETFONT, 0, 0));
  const SelectedObject selected(item.hDC, font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT));
  SetBkMode(item.hDC, TRANSPARENT);
  if (item.CtlType == ODT_STATIC) {
    // The loading strip's title: white on the strip's blue.
    FillRect(item.hDC, &area, KeptBrush(kBlue));
    SetTextColor(item.hDC, kWhite);
    DrawTextW(item.hDC, text.c_str(), -1, &area, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    return;
  }
  const ButtonLook look = LookOf(id, (item.itemState & ODS_SELECTED) != 0);
  FillRect(item.hDC, &area, KeptBrush(look.frame));
  RECT inside = area;
  InflateRect(&inside, -1, -1);
  FillRect(item.hDC, &inside, KeptBrush(look.fill));
  SetTextColor(item.hDC, look.text);
  DrawTextW(item.hDC, text.c_str(), -1, &area, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}
