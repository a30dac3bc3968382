#include "overlay/windows/overlay_fonts.h"

#include <map>

#include "overlay/layouts/control_styles.h"

HFONT OverlayFont(FontRole role) {
  if (role == FontRole::None) return nullptr;
  // UI thread only. Kept, never deleted: a font made per panel or per
  // message would cost a GDI object each time.
  static auto* fonts = new std::map<FontRole, HFONT>();
  HFONT& font = (*fonts)[role];
  if (font == nullptr) {
    const FontSpec wanted = FontSpecOf(role);
    font = CreateFontW(wanted.height, 0, 0, 0, wanted.weight, wanted.italic ? TRUE : FALSE, FALSE, FALSE, 0,
                       OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, nullptr);
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
