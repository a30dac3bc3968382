#include "log/log_line.h"

#include <algorithm>

namespace {
void AppendPadded(std::wstring& out, int value, size_t width) {
  std::wstring digits = std::to_wstring(value);
  if (digits.size() < width) out.append(width - digits.size(), L'0');
  out += digits;
}

// What a line shows for one character; empty when it stands as it is.
std::wstring_view EscapeOf(wchar_t c, wchar_t (&scratch)[8]) {
  switch (c) {
    case L'\r':
      return L"\\r";
    case L'\n':
      return L"\\n";
    case L'\t':
      return L"\\t";
    default:
      break;
  }
  static const wchar_t kHex[] = L"0123456789abcdef";
  const unsigned code = static_cast<unsigned>(c);
  if (code < 0x20 || (code >= 0x7f && code <= 0x9f)) {
    scratch[0] = L'\\';
    scratch[1] = L'x';
    scratch[2] = kHex[(code >> 4) & 0xf];
    scratch[3] = kHex[code & 0xf];
    return std::wstring_view(scratch, 4);
  }
  if (code == 0x2028 || code == 0x2029) {
    scratch[0] = L'\\';
    scratch[1] = L'u';
    for (int i = 0; i < 4; ++i) scratch[2 + i] = kHex[(code >> (12 - 4 * i)) & 0xf];
    return std::wstring_view(scratch, 6);
  }
  return std::wstring_view();
}

bool IsSurrogatePair(wchar_t high, wchar_t low) {
  return sizeof(wchar_t) == 2 && static_cast<unsigned>(high) >= 0xD800 && static_cast<unsigned>(high) <= 0xDBFF &&
         static_cast<unsigned>(low) >= 0xDC00 && static_cast<unsigned>(low) <= 0xDFFF;
}
}  // namespace

std::wstring EscapeLogMessage(std::wstring_view message) {
  std::wstring out;
  out.reserve(std::min(message.size(), kLogMessageMaxChars) + 40);
  wchar_t scratch[8];
  for (size_t i = 0; i < message.size(); ++i) {
    const wchar_t c = message[i];
    const std::wstring_view escape = EscapeOf(c, scratch);
    // A pair of surrogates goes whole or not at all.
    const size_t units = !escape.empty() ? escape.size()
                         : (i + 1 < message.size() && IsSurrogatePair(c, message[i + 1])) ? 2
                                                                           : 1;
    if (out.size() + units > kLogMessageMaxChars) {
      out += L" [cut: " + std::to_wstring(message.size()) + L" characters in all]";
      return out;
    }
    if (!escape.empty()) {
      out += escape;
    } else {
      out.append(message.substr(i, units));
      i += units - 1;
    }
  }
  return out;
}

std::wstring FormatLocalTime(const LocalTimeParts& t, wchar_t timeSeparator) {
  std::wstring out = std::to_wstring(t.year);
  out += L'-';
  AppendPadded(out, t.month, 2);
  out += L'-';
  AppendPadded(out, t.day, 2);
  out += L' ';
  AppendPadded(out, t.hour, 2);
  out += timeSeparator;
  AppendPadded(out, t.minute, 2);
  out += timeSeparator;
  AppendPadded(out, t.second, 2);
  out += L'.';
  AppendPadded(out, t.milliseconds, 3);
  return out;
}

std::wstring FormatLogTimestamp(const LocalTimeParts& t) { return L"[" + FormatLocalTime(t, L':') + L"]"; }

const wchar_t* LevelLetter(LogLevel level) {
  static const wchar_t* const letters[] = {L"F", L"E", L"W", L"I", L"D"};
  const int index = static_cast<int>(level);
  return (index >= 0 && index <= 4) ? letters[index] : L"?";
}

const wchar_t* HostTag(OfficeHost host) {
  static const wchar_t* const tags[] = {L"-----", L"Word ", L"Excel", L"PPT  "};
  const int index = static_cast<int>(host);
  return (index >= 0 && index <= 3) ? tags[index] : tags[0];
}

std::wstring FormatLogLine(std::wstring_view stamp, OfficeHost host, std::wstring_view pidText,
                           std::wstring_view letter, std::wstring_view threadName, std::wstring_view message) {
  std::wstring line;
  line.reserve(stamp.size() + pidText.size() + threadName.size() + std::min(message.size(), kLogMessageMaxChars) + 64);
  line += stamp;
  line += L' ';
  line += HostTag(host);
  line += L" pid=";
  line += pidText;
  line += L' ';
  line += letter;
  line += L' ';
  line += threadName;
  line += L" - ";
  line += EscapeLogMessage(message);
  return line;
}
