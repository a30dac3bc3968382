#include "overlay/windows/overlay_fonts.h"

#include <map>
#include <utility>

#include "common/gdi_guards.h"
#include "overlay/layouts/control_styles.h"
#include "overlay/layouts/dpi_scaling.h"

namespace {
// The cell height of a font asked for at "the default size" (height 0).
// The system's default size is the same at every DPI, so a default-size
// font is given this height scaled instead above 96 DPI. Measured once;
// 16 (what Windows and Wine give) if it cannot be.
int DefaultCellHeight() {
  static const int height = [] {
    const WindowDc screen(nullptr);
    UniqueHfont font(CreateFontW(0, 0, 0, 0, 700, FALSE, FALSE, FALSE, 0, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                 DEFAULT_QUALITY, DEFAULT_PITCH, nullptr));
    TEXTMETRICW metrics{};
    if (screen.get() == nullptr || !font) return 16;
    const SelectedObject selected(screen.get(), font.get());
    if (!selected.ok() || !GetTextMetricsW(screen.get(), &metrics) || metrics.tmHeight <= 0) return 16;
    return static_cast<int>(metrics.tmHeight);
  }();
  return height;
}
}  // namespace

HFONT OverlayFont(FontRole role, int dpi) {
  if (role == FontRole::None) return nullptr;
  // UI thread only. Kept, never deleted: a font made per panel or per
  // message would cost a GDI object each time. One per role and DPI in use.
  static auto* fonts = new std::map<std::pair<FontRole, int>, HFONT>();
  dpi = UsableDpi(dpi);
  HFONT& font = (*fonts)[{role, dpi}];
  if (font == nullptr) {
    const FontSpec wanted =
        dpi == kDesignDpi ? FontSpecOf(role) : ScaleFontForDpi(FontSpecOf(role), dpi, DefaultCellHeight());
    font = CreateFontW(wanted.height, 0, 0, 0, wanted.weight, wanted.italic ? TRUE : FALSE, FALSE, FALSE, 0,
                       OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, nullptr);
  }
  return font;
}

HFONT UnsetTextFont(int dpi) {
  dpi = UsableDpi(dpi);
  if (dpi == kDesignDpi) return nullptr;
  static auto* fonts = new std::map<int, HFONT>();  // UI thread only; kept
  HFONT& font = (*fonts)[dpi];
  if (font == nullptr) {
    font = CreateFontW(ScaleForDpi(DefaultCellHeight(), dpi), 0, 0, 0, 400, FALSE, FALSE, FALSE, 0, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, nullptr);
  }
  return font;
}

void TakeOverlayFontsOutOfLinks(HWND window) {
  EnumChildWindows(
      window,
      [](HWND child, LPARAM) -> BOOL {
        wchar_t name[16] = {};
        if (GetClassNameW(child, name, 16) > 0 && lstrcmpiW(name, kSysLinkClass) == 0) {
          SendMessageW(child, WM_SETFONT, 0, FALSE);
        }
        return TRUE;
      },
      0);
}
