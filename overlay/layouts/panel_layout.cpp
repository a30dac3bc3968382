#include "overlay/layouts/panel_layout.h"

#include <cwchar>
#include <ostream>

#include "common/text.h"

namespace {
bool SameText(const wchar_t* a, const wchar_t* b) {
  if (a == nullptr || b == nullptr) return a == b;
  return std::wcscmp(a, b) == 0;
}

void PrintText(std::ostream& out, const wchar_t* text) {
  if (text == nullptr) {
    out << "null";
    return;
  }
  out << '"' << ToUtf8(text) << '"';
}

const char* FontName(FontRole font) {
  static const char* const names[] = {"None",       "Title",        "Body",    "BodyItalic",
                                      "WaitItalic", "OverlayTitle", "Section", "DefaultBold"};
  const auto index = static_cast<unsigned>(font);
  return index < sizeof(names) / sizeof(names[0]) ? names[index] : "?";
}

const char* ImageName(ImageRole image) {
  static const char* const names[] = {"None", "Avatar", "ErrorIcon", "WarningIcon", "DriveBitmap"};
  const auto index = static_cast<unsigned>(image);
  return index < sizeof(names) / sizeof(names[0]) ? names[index] : "?";
}
}  // namespace

bool operator==(const LayoutStep& a, const LayoutStep& b) {
  return a.kind == b.kind && SameText(a.className, b.className) && a.style == b.style && a.exStyle == b.exStyle &&
         a.text == b.text && a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height && a.id == b.id &&
         a.font == b.font && a.image == b.image && a.tryUserAvatar == b.tryUserAvatar && a.avatarFile == b.avatarFile &&
         a.backdrop == b.backdrop && a.parent == b.parent && a.target == b.target && a.startMarquee == b.startMarquee &&
         a.circleRegion == b.circleRegion && SameText(a.failureText, b.failureText) &&
         SameText(a.regionFailureText, b.regionFailureText) &&
         SameText(a.setRegionFailureText, b.setRegionFailureText) && a.colour == b.colour &&
         a.buttonLook == b.buttonLook && a.buttonShape == b.buttonShape;
}

bool operator!=(const LayoutStep& a, const LayoutStep& b) { return !(a == b); }

std::ostream& operator<<(std::ostream& out, const LayoutStep& step) {
  out << (step.kind == StepKind::Create ? "{create " : "{resize ");
  PrintText(out, step.className);
  out << " style 0x" << std::hex << step.style << " ex 0x" << step.exStyle << std::dec << " text ";
  PrintText(out, step.text.c_str());
  out << " at " << step.x << "," << step.y << " " << step.width << "x" << step.height << " id "
      << static_cast<int>(step.id) << " font " << FontName(step.font) << " image " << ImageName(step.image);
  if (step.image == ImageRole::Avatar) {
    out << (step.tryUserAvatar ? " user avatar " : " default avatar ");
    PrintText(out, step.avatarFile.c_str());
  }
  if (step.image != ImageRole::None) out << " on 0x" << std::hex << step.backdrop << std::dec;
  if (step.colour != ColourRole::Plain) out << " colour " << static_cast<int>(step.colour);
  if (step.buttonLook != ButtonLook::None) {
    out << " look " << static_cast<int>(step.buttonLook)
        << (step.buttonShape == ButtonShape::Rounded ? " rounded" : " square");
  }
  out << " parent " << step.parent << " target " << step.target;
  if (step.startMarquee) out << " marquee";
  if (step.circleRegion) out << " circle";
  out << " fails ";
  PrintText(out, step.failureText);
  if (step.regionFailureText != nullptr || step.setRegionFailureText != nullptr) {
    out << " / ";
    PrintText(out, step.regionFailureText);
    out << " / ";
    PrintText(out, step.setRegionFailureText);
  }
  return out << "}";
}
