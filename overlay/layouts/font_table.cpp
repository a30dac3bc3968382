#include "overlay/layouts/font_table.h"

bool operator==(const FontSpec& a, const FontSpec& b) {
  return a.height == b.height && a.weight == b.weight && a.italic == b.italic;
}

FontSpec FontSpecOf(FontRole role) {
  switch (role) {
    case FontRole::None: return {0, 0, false};
    case FontRole::Title: return {19, 700, false};
    case FontRole::Body: return {18, 400, false};
    case FontRole::BodyItalic: return {18, 400, true};
    case FontRole::WaitItalic: return {19, 400, true};
    case FontRole::OverlayTitle: return {18, 700, false};
    case FontRole::Section: return {17, 700, false};
    case FontRole::DefaultBold: return {0, 700, false};
  }
  return {0, 0, false};
}
