#include "overlay/windows/text_extents.h"

#include <string>

#include "log/log_last_error.h"
#include "overlay/layouts/control_styles.h"

namespace {
// A control's text in a screen DC with the control's font.
class TextRuler {
 public:
  TextRuler() : dc_(GetDC(nullptr)) {}
  ~TextRuler() {
    if (dc_ != nullptr) {
      if (old_ != nullptr) SelectObject(dc_, old_);
      ReleaseDC(nullptr, dc_);
    }
  }
  TextRuler(const TextRuler&) = delete;
  TextRuler& operator=(const TextRuler&) = delete;

  bool Ready() const { return dc_ != nullptr; }
  void Use(HFONT font) {
    const HGDIOBJ previous = SelectObject(dc_, font ? static_cast<HGDIOBJ>(font) : GetStockObject(SYSTEM_FONT));
    if (old_ == nullptr) old_ = previous;
  }
  int LineHeight() const {
    TEXTMETRICW metrics{};
    return GetTextMetricsW(dc_, &metrics) ? metrics.tmHeight : 0;
  }
  TextExtent OneLine(const std::wstring& text) const {
    SIZE size{0, 0};
    if (!GetTextExtentPoint32W(dc_, text.c_str(), static_cast<int>(text.size()), &size)) return {};
    return {size.cx, size.cy};
  }
  TextExtent Wrapped(const std::wstring& text, int width, bool noPrefix) const {
    RECT area{0, 0, width, 0};
    const UINT format = DT_CALCRECT | DT_WORDBREAK | DT_EXPANDTABS | (noPrefix ? DT_NOPREFIX : 0);
    if (DrawTextW(dc_, text.c_str(), -1, &area, format) == 0) return {};
    return {area.right, area.bottom};
  }

 private:
  HDC dc_;
  HGDIOBJ old_ = nullptr;
};

constexpr std::uint32_t kNoPrefix = 0x80;  // SS_NOPREFIX
}  // namespace

std::vector<TextExtent> MeasureLayoutTexts(const PanelLayout& layout,
                                           const std::function<HFONT(const LayoutStep&)>& fontOf) {
  std::vector<TextExtent> extents(layout.steps.size());
  TextRuler ruler;
  if (!ruler.Ready()) {
    // Built as designed; a text may then be cut off, but the panel shows.
    LogLastErrorText(L"couldn't get screen DC while measuring texts - ");
    return extents;
  }
  for (size_t i = 0; i < layout.steps.size(); ++i) {
    const LayoutStep& step = layout.steps[i];
    if (step.kind != StepKind::Create || step.text.empty()) continue;
    ruler.Use(fontOf(step));
    switch (MeasureOf(step, ruler.LineHeight())) {
      case TextMeasure::None: break;
      case TextMeasure::OneLine:
        extents[i] = ruler.OneLine(step.className && lstrcmpiW(step.className, kSysLinkClass) == 0
                                       ? ShownLinkText(step.text)
                                       : step.text);
        break;
      case TextMeasure::CheckBoxLine: {
        TextExtent line = ruler.OneLine(step.text);
        // The box and the gap before the caption.
        line.width += GetSystemMetrics(SM_CXMENUCHECK) + 4;
        extents[i] = line;
        break;
      }
      case TextMeasure::LineHeight: extents[i] = {0, ruler.LineHeight()}; break;
      case TextMeasure::Wrapped: extents[i] = ruler.Wrapped(step.text, step.width, (step.style & kNoPrefix) != 0); break;
    }
  }
  return extents;
}
