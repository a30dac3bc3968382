#include "overlay/layouts/shown_text.h"

namespace {
bool IsRemoved(wchar_t c) {
  const auto code = static_cast<unsigned long>(c);
  if (code <= 0x1F || (code >= 0x7F && code <= 0x9F)) return true;  // C0, DEL, C1
  if (code >= 0x202A && code <= 0x202E) return true;                // LRE RLE PDF LRO RLO
  if (code >= 0x2066 && code <= 0x2069) return true;                // LRI RLI FSI PDI
  return false;
}

bool IsHighSurrogate(wchar_t c) {
  const auto code = static_cast<unsigned long>(c);
  return code >= 0xD800 && code <= 0xDBFF;
}
}  // namespace

std::wstring CleanShownText(std::wstring_view text, std::size_t maxLength) {
  std::wstring shown;
  if (maxLength == 0) return shown;
  shown.reserve(text.size() < maxLength ? text.size() : maxLength);
  for (const wchar_t c : text) {
    if (IsRemoved(c)) continue;
    if (shown.size() == maxLength) {
      // One more character than fits: the text is cut, and says so.
      shown.resize(maxLength - 1);
      if (!shown.empty() && IsHighSurrogate(shown.back())) shown.pop_back();
      shown.push_back(L'\u2026');
      return shown;
    }
    shown.push_back(c);
  }
  return shown;
}
