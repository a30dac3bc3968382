#include "overlay/layouts/text_fit.h"

#include <algorithm>
#include <cwctype>

#include "overlay/layouts/control_styles.h"

namespace {
constexpr std::uint32_t kTypeMask = 0x1F;         // SS_TYPEMASK
constexpr std::uint32_t kStaticLeft = 0x0;        // SS_LEFT
constexpr std::uint32_t kStaticOwnerDraw = 0xD;   // SS_OWNERDRAW
constexpr std::uint32_t kEndEllipsis = 0x4000;    // SS_ENDELLIPSIS
constexpr std::uint32_t kButtonTypeMask = 0xF;    // BS_TYPEMASK
constexpr std::uint32_t kButtonCheckBox = 0x3;    // BS_AUTOCHECKBOX

bool IsClass(const LayoutStep& step, const wchar_t* name) {
  if (step.className == nullptr) return false;
  // Class names are case-insensitive, as Windows compares them.
  const wchar_t* a = step.className;
  const wchar_t* b = name;
  for (; *a != 0 && *b != 0; ++a, ++b) {
    if (std::towlower(*a) != std::towlower(*b)) return false;
  }
  return *a == *b;
}

struct Growth {
  int dx = 0;  // moved right
  int dy = 0;  // moved down
  int dw = 0;  // grew wider
  int dh = 0;  // grew taller
};

// The part of a step's rectangle that no sibling after it covers: the
// design lets a rule or a box start a few pixels inside the text above it,
// which is harmless while the text ends higher, and hides its last line
// when it does not.
struct Room {
  int width;
  int height;
};
Room RoomOf(const PanelLayout& layout, int index) {
  const LayoutStep& step = layout.steps[static_cast<size_t>(index)];
  Room room{step.width, step.height};
  for (const LayoutStep& other : layout.steps) {
    if (&other == &step || other.kind != StepKind::Create || other.parent != step.parent) continue;
    const bool acrossColumns = other.x < step.x + step.width && other.x + other.width > step.x;
    const bool acrossRows = other.y < step.y + step.height && other.y + other.height > step.y;
    if (acrossColumns && other.y > step.y && other.y < step.y + step.height) {
      room.height = std::min(room.height, other.y - step.y);
    }
    if (acrossRows && other.x > step.x && other.x < step.x + step.width) {
      room.width = std::min(room.width, other.x - step.x);
    }
  }
  return room;
}

bool Above(const LayoutStep& upper, const LayoutStep& lower) {
  return upper.y < lower.y && upper.y + upper.height < lower.y + lower.height;
}
bool LeftInSameRow(const LayoutStep& left, const LayoutStep& right) {
  const bool sameRow = right.y < left.y + left.height && right.y + right.height > left.y;
  return sameRow && left.x < right.x && left.x + left.width < right.x + right.width;
}
}  // namespace

TextMeasure MeasureOf(const LayoutStep& step, int lineHeight) {
  // Rules (lines of underscores or hyphens) run off the panel's edge on
  // purpose: never measured.
  if (step.kind != StepKind::Create || step.text.empty() || step.id == ControlId::Rule) return TextMeasure::None;
  if (IsClass(step, kStaticClass)) {
    const std::uint32_t type = step.style & kTypeMask;
    if (type == kStaticOwnerDraw) return TextMeasure::OneLine;
    if (type != kStaticLeft) return TextMeasure::None;
    if (step.style & kEndEllipsis) return TextMeasure::LineHeight;
    return step.height < 2 * lineHeight ? TextMeasure::OneLine : TextMeasure::Wrapped;
  }
  if (IsClass(step, kButtonClass)) {
    return (step.style & kButtonTypeMask) == kButtonCheckBox ? TextMeasure::CheckBoxLine : TextMeasure::OneLine;
  }
  if (IsClass(step, kSysLinkClass)) return TextMeasure::OneLine;
  return TextMeasure::None;  // our own windows: the scroll areas scroll their text
}

PanelLayout GrowLayoutToFitTexts(const PanelLayout& layout, const std::vector<TextExtent>& extents) {
  const int count = static_cast<int>(layout.steps.size());
  std::vector<Growth> growth(static_cast<size_t>(count));
  for (int i = 0; i < count && i < static_cast<int>(extents.size()); ++i) {
    const LayoutStep& step = layout.steps[static_cast<size_t>(i)];
    if (step.kind != StepKind::Create) continue;
    const Room room = RoomOf(layout, i);
    growth[static_cast<size_t>(i)].dw = std::max(0, extents[static_cast<size_t>(i)].width - room.width);
    growth[static_cast<size_t>(i)].dh = std::max(0, extents[static_cast<size_t>(i)].height - room.height);
  }

  // A parent's children are laid out before the parent itself, so that its
  // own growth is known when its siblings are pushed: parents always come
  // before their children in the steps, so from the last parent down.
  PanelLayout grown = layout;
  for (int parent = count - 1; parent >= kPanelParent; --parent) {
    std::vector<int> members;
    for (int i = 0; i < count; ++i) {
      const LayoutStep& step = layout.steps[static_cast<size_t>(i)];
      if (step.kind == StepKind::Create && step.parent == parent) members.push_back(i);
    }
    if (members.empty()) continue;
    // Pushes, top to bottom and left to right: a step's push depends only
    // on steps that start strictly higher (or further left).
    std::vector<int> byY = members;
    std::stable_sort(byY.begin(), byY.end(), [&](int a, int b) {
      return layout.steps[static_cast<size_t>(a)].y < layout.steps[static_cast<size_t>(b)].y;
    });
    for (int j : byY) {
      for (int i : members) {
        if (!Above(layout.steps[static_cast<size_t>(i)], layout.steps[static_cast<size_t>(j)])) continue;
        growth[static_cast<size_t>(j)].dy =
            std::max(growth[static_cast<size_t>(j)].dy, growth[static_cast<size_t>(i)].dy + growth[static_cast<size_t>(i)].dh);
      }
    }
    std::vector<int> byX = members;
    std::stable_sort(byX.begin(), byX.end(), [&](int a, int b) {
      return layout.steps[static_cast<size_t>(a)].x < layout.steps[static_cast<size_t>(b)].x;
    });
    for (int j : byX) {
      for (int i : members) {
        if (!LeftInSameRow(layout.steps[static_cast<size_t>(i)], layout.steps[static_cast<size_t>(j)])) continue;
        growth[static_cast<size_t>(j)].dx =
            std::max(growth[static_cast<size_t>(j)].dx, growth[static_cast<size_t>(i)].dx + growth[static_cast<size_t>(i)].dw);
      }
    }
    int oldRight = 0, newRight = 0, oldBottom = 0, newBottom = 0;
    for (int i : members) {
      const LayoutStep& step = layout.steps[static_cast<size_t>(i)];
      const Growth& g = growth[static_cast<size_t>(i)];
      oldRight = std::max(oldRight, step.x + step.width);
      newRight = std::max(newRight, step.x + g.dx + step.width + g.dw);
      oldBottom = std::max(oldBottom, step.y + step.height);
      newBottom = std::max(newBottom, step.y + g.dy + step.height + g.dh);
    }
    const int wider = std::max(0, newRight - oldRight);
    const int taller = std::max(0, newBottom - oldBottom);
    const int parentWidth = parent == kPanelParent ? layout.width : layout.steps[static_cast<size_t>(parent)].width;
    for (int i : members) {
      const LayoutStep& step = layout.steps[static_cast<size_t>(i)];
      // A strip or a list across the whole parent stays across it.
      if (step.x == 0 && step.width == parentWidth) growth[static_cast<size_t>(i)].dw += wider;
    }
    if (parent == kPanelParent) {
      grown.width += wider;
      grown.height += taller;
      grown.createHeight += taller;
    } else {
      growth[static_cast<size_t>(parent)].dw += wider;
      growth[static_cast<size_t>(parent)].dh += taller;
    }
  }

  for (int i = 0; i < count; ++i) {
    LayoutStep& step = grown.steps[static_cast<size_t>(i)];
    const Growth& g = step.kind == StepKind::ResizeChild && step.target >= 0 && step.target < count
                          ? growth[static_cast<size_t>(step.target)]
                          : growth[static_cast<size_t>(i)];
    step.x += g.dx;
    step.y += g.dy;
    step.width += g.dw;
    step.height += g.dh;
  }
  return grown;
}

std::wstring ShownLinkText(const std::wstring& markup) {
  std::wstring shown;
  bool inTag = false;
  for (wchar_t c : markup) {
    if (c == L'<') {
      inTag = true;
    } else if (c == L'>') {
      inTag = false;
    } else if (!inTag) {
      shown += c;
    }
  }
  return shown;
}
