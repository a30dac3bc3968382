#include "overlay/overlay_fonts.h"

#include <map>

HFONT OverlayFont(FontRole role) {
  if (role == FontRole::None) return nullptr;
  // UI thread only. Kept, never deleted: a font made per panel or per
  // message would cost a GDI object each time.
  static auto* fonts = new std::map<FontRole, HFONT>();
  HFONT& font = (*fonts)[role];
  if (font == nullptr) {
    const FontSpec spec = FontSpecOf(role);
    font = CreateFontW(spec.height, 0, 0, 0, spec.weight, spec.italic ? TRUE : FALSE, FALSE, FALSE, 0,
                       OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, nullptr);
  }
  return font;
}
