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

struct Colours {
  COLORREF text;
  COLORREF background;
};

// A title that says someone is editing reads red, one that says someone is
// viewing green.
Colours ColoursOf(ColourRole role) {
  switch (role) {
    case ColourRole::ViewingTitle:
      return {RGB(20, 120, 60), kWhite};
    case ColourRole::EditingTitle:
      return {RGB(190, 30, 30), kWhite};
    case ColourRole::BodyText:
      return {kBodyText, kWhite};
    case ColourRole::Rule:
      return {RGB(200, 200, 200), kWhite};
    case ColourRole::LoadingStrip:
      return {kWhite, kBlue};
    case ColourRole::Note:
      return {RGB(40, 40, 40), kBandGrey};
    case ColourRole::MemberRow:
      return {RGB(30, 30, 30), kWhite};
    case ColourRole::Plain:
    default:
      return {RGB(0, 0, 0), kWhite};
  }
}

struct Paint {
  COLORREF fill;
  COLORREF text;
  COLORREF frame;
};

// The second choice of a confirmation and "Hide" are quiet; the rest are
// the panel's main action.
Paint PaintOf(ButtonLook look, bool pressed) {
  switch (look) {
    case ButtonLook::SecondChoice:
      return {pressed ? kBandGrey : kWhite, kBlue, kBlue};
    case ButtonLook::Quiet:
      return {pressed ? RGB(200, 200, 200) : kBandGrey, RGB(40, 40, 40), kBandGrey};
    case ButtonLook::Waiting:
      return {kLightBlue, RGB(110, 110, 110), kLightBlue};
    case ButtonLook::Main:
    case ButtonLook::None:
    default:
      return {pressed ? kDarkBlue : kBlue, kWhite, pressed ? kDarkBlue : kBlue};
  }
}

// The look travels in the control's GWLP_USERDATA, which the system's
// STATIC and BUTTON classes leave to the application: one byte each for the
// colour role, the button look and the shape, and a mark so that a control
// we did not make reads as plain.
constexpr LONG_PTR kLookMark = 0x51000000;

struct Look {
  ColourRole colour = ColourRole::Plain;
  ButtonLook button = ButtonLook::None;
  ButtonShape shape = ButtonShape::Square;
};

Look LookOf(HWND control) {
  const LONG_PTR packed = GetWindowLongPtrW(control, GWLP_USERDATA);
  if ((packed & 0xFF000000) != kLookMark) return {};
  return {static_cast<ColourRole>(packed & 0xFF), static_cast<ButtonLook>((packed >> 8) & 0xFF),
          static_cast<ButtonShape>((packed >> 16) & 0xFF)};
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

void RememberControlLook(HWND control, ColourRole colour, ButtonLook look, ButtonShape shape) {
  SetWindowLongPtrW(control, GWLP_USERDATA,
                    kLookMark | static_cast<LONG_PTR>(colour) | (static_cast<LONG_PTR>(look) << 8) |
                        (static_cast<LONG_PTR>(shape) << 16));
}

HBRUSH StaticControlColours(HWND control, HDC dc) {
  const Colours colours = ColoursOf(LookOf(control).colour);
  SetTextColor(dc, colours.text);
  SetBkColor(dc, colours.background);
  return KeptBrush(colours.background);
}

HBRUSH ButtonControlColours(HDC dc) {
  SetTextColor(dc, RGB(0, 0, 0));
  SetBkColor(dc, kWhite);
  return KeptBrush(kWhite);
}

void DrawOwnerDrawnControl(const DRAWITEMSTRUCT& item) {
  const Look look = LookOf(item.hwndItem);
  if (item.CtlType == ODT_BUTTON && look.shape == ButtonShape::Rounded) GiveRoundedCorners(item.hwndItem);
  RECT area = item.rcItem;
  const std::wstring text = TextOf(item.hwndItem);
  const HFONT font = reinterpret_cast<HFONT>(SendMessageW(item.hwndItem, WM_GETFONT, 0, 0));
  const SelectedObject selected(item.hDC, font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT));
  SetBkMode(item.hDC, TRANSPARENT);
  if (item.CtlType == ODT_STATIC) {
    // The loading strip's title: white on the strip's blue.
    const Colours colours = ColoursOf(look.colour);
    FillRect(item.hDC, &area, KeptBrush(colours.background));
    SetTextColor(item.hDC, colours.text);
    DrawTextW(item.hDC, text.c_str(), -1, &area, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    return;
  }
  const Paint paint = PaintOf(look.button, (item.itemState & ODS_SELECTED) != 0);
  FillRect(item.hDC, &area, KeptBrush(paint.frame));
  RECT inside = area;
  InflateRect(&inside, -1, -1);
  FillRect(item.hDC, &inside, KeptBrush(paint.fill));
  SetTextColor(item.hDC, paint.text);
  DrawTextW(item.hDC, text.c_str(), -1, &area, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}
