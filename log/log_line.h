#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "common/office_app.h"
#include "log/write_log.h"

// A broken-down local time, as GetLocalTime gives it.
struct LocalTimeParts {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int milliseconds = 0;
};

// "2025-03-07 09:04:05.007" with ':' between hour, minute and second, or
// "2025-03-07 09.04.05.007" with '.': the year unpadded, the other fields
// padded with zeros to two digits, milliseconds to three. The log lines
// and the separate copies' names share it.
std::wstring FormatLocalTime(const LocalTimeParts& time, wchar_t timeSeparator);

// "[2025-03-07 09:04:05.007]".
std::wstring FormatLogTimestamp(const LocalTimeParts& time);

// "F", "E", "W", "I", "D".
const wchar_t* LevelLetter(LogLevel level);

// Five characters wide so the column lines up: "-----", "Word ", "Excel", "PPT  ".
const wchar_t* HostTag(OfficeHost host);

// Name written for a thread that was never named.
inline constexpr const wchar_t* kUnnamedThread = L"THREAD_NAME";

// The most characters of one message a line holds, escapes counted as
// written. A longer message is cut there and says so, so no single message
// can fill the file and force a rotation by itself.
inline constexpr size_t kLogMessageMaxChars = 2048;

// The message as a line shows it: CR, LF and the other C0 controls, DEL,
// the C1 controls and U+2028/U+2029 written escaped ("\r", "\n", "\t",
// "\x1b", "\u2028"), so text from another process can neither end the
// line nor start a forged one; cut at kLogMessageMaxChars with
// " [cut: N characters in all]". Backslashes stay as they are: paths
// would be unreadable otherwise.
std::wstring EscapeLogMessage(std::wstring_view message);

// One line without its line end:
// stamp " " host " pid=" pid " " letter " " thread " - " escaped message
std::wstring FormatLogLine(std::wstring_view stamp, OfficeHost host, std::wstring_view pidText,
                           std::wstring_view letter, std::wstring_view threadName, std::wstring_view message);
