#include "log/log_line.h"

namespace {
void AppendPadded(std::wstring& out, int value, size_t width) {
  std::wstring digits = std::to_wstring(value);
  if (digits.size() < width) out.append(width - digits.size(), L'0');
  out += digits;
}
}  // namespace

std::wstring FormatLogTimestamp(const LocalTimeParts& t) {
  std::wstring out = L"[";
  out += std::to_wstring(t.year);
  out += L'-';
  AppendPadded(out, t.month, 2);
  out += L'-';
  AppendPadded(out, t.day, 2);
  out += L' ';
  AppendPadded(out, t.hour, 2);
  out += L':';
  AppendPadded(out, t.minute, 2);
  out += L':';
  AppendPadded(out, t.second, 2);
  out += L'.';
  AppendPadded(out, t.milliseconds, 3);
  out += L']';
  return out;
}

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
  line.reserve(stamp.size() + pidText.size() + threadName.size() + message.size() + 24);
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
  line += message;
  return line;
}
