#include "common/text.h"

std::wstring Widen(const char* text) {
  std::wstring wide;
  if (text == nullptr) return wide;
  for (const char* p = text; *p != '\0'; ++p) wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(*p)));
  return wide;
}

namespace {
void AppendCodePoint(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}
}  // namespace

std::string ToUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 4);
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t unit = static_cast<char32_t>(text[i]);
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < text.size()) {
      char32_t low = static_cast<char32_t>(text[i + 1]);
      if (low >= 0xDC00 && low <= 0xDFFF) {
        AppendCodePoint(out, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
        ++i;
        continue;
      }
    }
    if ((unit >= 0xD800 && unit <= 0xDFFF) || unit > 0x10FFFF) unit = 0xFFFD;
    AppendCodePoint(out, unit);
  }
  return out;
}

namespace {
void AppendWide(std::wstring& out, char32_t cp) {
  if (sizeof(wchar_t) == 2 && cp >= 0x10000) {
    cp -= 0x10000;
    out.push_back(static_cast<wchar_t>(0xD800 + (cp >> 10)));
    out.push_back(static_cast<wchar_t>(0xDC00 + (cp & 0x3FF)));
  } else {
    out.push_back(static_cast<wchar_t>(cp));
  }
}
}  // namespace

std::wstring FromUtf8(std::string_view text) {
  std::wstring out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const size_t length = lead < 0x80 ? 1 : (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3
                                      : (lead & 0xF8) == 0xF0 ? 4 : 0;
    char32_t cp = length == 1 ? lead : length == 2 ? (lead & 0x1F) : length == 3 ? (lead & 0x0F) : (lead & 0x07);
    bool whole = length != 0 && i + length <= text.size();
    for (size_t k = 1; whole && k < length; ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      whole = (next & 0xC0) == 0x80;
      cp = (cp << 6) | (next & 0x3F);
    }
    // Overlong forms, surrogates and values past U+10FFFF are not characters.
    static const char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (whole && (cp < kSmallest[length] || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF)) whole = false;
    if (!whole) {
      AppendWide(out, 0xFFFD);
      ++i;
      continue;
    }
    AppendWide(out, cp);
    i += length;
  }
  return out;
}

void LowerAsciiInPlace(std::wstring& text) {
  for (wchar_t& c : text) {
    if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
  }
}
