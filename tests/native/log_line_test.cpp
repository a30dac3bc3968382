#include <gtest/gtest.h>

#include "log/log_line.h"

TEST(FormatLogTimestamp, PadsMillisecondsToThreeDigits) {
  LocalTimeParts t{2025, 3, 7, 9, 4, 5, 7};
  EXPECT_EQ(FormatLogTimestamp(t), L"[2025-03-07 09:04:05.007]");
  t.milliseconds = 45;
  EXPECT_EQ(FormatLogTimestamp(t), L"[2025-03-07 09:04:05.045]");
  t.milliseconds = 999;
  EXPECT_EQ(FormatLogTimestamp(t), L"[2025-03-07 09:04:05.999]");
}

TEST(FormatLogTimestamp, LeavesTheYearUnpadded) {
  LocalTimeParts t{987, 12, 31, 23, 59, 58, 0};
  EXPECT_EQ(FormatLogTimestamp(t), L"[987-12-31 23:59:58.000]");
}

TEST(FormatLogLine, WritesTheDocumentedExampleLine) {
  EXPECT_EQ(FormatLogLine(L"[2025-03-07 09:04:05.007]", OfficeHost::Word, L"11424", LevelLetter(LogLevel::Info),
                          L"MainThread", L"office app connects"),
            L"[2025-03-07 09:04:05.007] Word  pid=11424 I MainThread - office app connects");
}

TEST(HostTag, IsFiveCharactersWideForEveryHost) {
  EXPECT_STREQ(HostTag(OfficeHost::None), L"-----");
  EXPECT_STREQ(HostTag(OfficeHost::Word), L"Word ");
  EXPECT_STREQ(HostTag(OfficeHost::Excel), L"Excel");
  EXPECT_STREQ(HostTag(OfficeHost::PowerPoint), L"PPT  ");
}

TEST(LevelLetter, IsOneUpperCaseLetterPerLevel) {
  EXPECT_STREQ(LevelLetter(LogLevel::Fatal), L"F");
  EXPECT_STREQ(LevelLetter(LogLevel::Error), L"E");
  EXPECT_STREQ(LevelLetter(LogLevel::Warning), L"W");
  EXPECT_STREQ(LevelLetter(LogLevel::Info), L"I");
  EXPECT_STREQ(LevelLetter(LogLevel::Debug), L"D");
}

// A message is written on one line whatever it holds: line ends and other
// control characters appear escaped, so no text can start a forged line.
TEST(EscapeLogMessage, WritesLineEndsAndOtherControlCharactersEscaped) {
  EXPECT_EQ(EscapeLogMessage(L"a\r\nb\tc"), L"a\\r\\nb\\tc");
  EXPECT_EQ(EscapeLogMessage(std::wstring(L"x\0y", 3)), L"x\\x00y");
  EXPECT_EQ(EscapeLogMessage(L"\x1b[31mred\x7f"), L"\\x1b[31mred\\x7f");
  EXPECT_EQ(EscapeLogMessage(L"\x01\x1f"), L"\\x01\\x1f");
}

TEST(EscapeLogMessage, EscapesTheCharactersThatOtherViewersTakeForLineEnds) {
  EXPECT_EQ(EscapeLogMessage(L"a\x85" L"b\x2028" L"c\x2029" L"d"), L"a\\x85b\\u2028c\\u2029d");
}

TEST(EscapeLogMessage, LeavesPathsQuotesAndLettersAsTheyAre) {
  EXPECT_EQ(EscapeLogMessage(L"C:\\Users\\ann\\b\u00e9ta \"draft\".docx"),
            L"C:\\Users\\ann\\b\u00e9ta \"draft\".docx");
}

TEST(EscapeLogMessage, CutsALongMessageAndSaysSo) {
  const std::wstring message(1048576, L'a');
  const std::wstring escaped = EscapeLogMessage(message);
  EXPECT_EQ(escaped, std::wstring(kLogMessageMaxChars, L'a') + L" [cut: 1048576 characters in all]");
}

TEST(EscapeLogMessage, KeepsAMessageOfExactlyTheLimitWhole) {
  const std::wstring message(kLogMessageMaxChars, L'b');
  EXPECT_EQ(EscapeLogMessage(message), message);
  EXPECT_EQ(EscapeLogMessage(message + L"c"), message + L" [cut: 2049 characters in all]");
}

TEST(EscapeLogMessage, CountsTheLimitInWrittenCharactersAndNeverSplitsAnEscape) {
  // 2,047 letters and a line end: "\n" would end past the limit, so it goes
  // whole or not at all.
  const std::wstring message = std::wstring(kLogMessageMaxChars - 1, L'c') + L"\n";
  EXPECT_EQ(EscapeLogMessage(message), std::wstring(kLogMessageMaxChars - 1, L'c') + L" [cut: 2048 characters in all]");
  // Control characters alone: each takes four written characters.
  const std::wstring controls(1000, L'\x1b');
  std::wstring expected;
  for (int i = 0; i < 512; ++i) expected += L"\\x1b";
  EXPECT_EQ(EscapeLogMessage(controls), expected + L" [cut: 1000 characters in all]");
}

TEST(EscapeLogMessage, NeverSplitsASurrogatePair) {
  std::wstring message(kLogMessageMaxChars - 1, L'd');
  message += L"\U0001F600";  // two units where the wide string is UTF-16
  message += L"e";
  const std::wstring escaped = EscapeLogMessage(message);
  if (sizeof(wchar_t) == 2) {
    EXPECT_EQ(escaped, std::wstring(kLogMessageMaxChars - 1, L'd') + L" [cut: 2050 characters in all]");
  } else {
    EXPECT_EQ(escaped, std::wstring(kLogMessageMaxChars - 1, L'd') + L"\U0001F600 [cut: 2049 characters in all]");
  }
}

TEST(FormatLogLine, WritesAMessageWithLineEndsOnOneLine) {
  EXPECT_EQ(FormatLogLine(L"[2025-03-07 09:04:05.007]", OfficeHost::Word, L"11424", LevelLetter(LogLevel::Error),
                          L"EvntUpdate", L"x\r\n[2025-03-07 09:04:05.008] Word  pid=11424 I MainThread - forged"),
            L"[2025-03-07 09:04:05.007] Word  pid=11424 E EvntUpdate - "
            L"x\\r\\n[2025-03-07 09:04:05.008] Word  pid=11424 I MainThread - forged");
}

TEST(FormatLocalTime, SeparatesTheTimeWithColonsForTheLog) {
  const LocalTimeParts t{2026, 1, 2, 3, 4, 5, 6};
  EXPECT_EQ(FormatLocalTime(t, L':'), L"2026-01-02 03:04:05.006");
}

TEST(FormatLocalTime, SeparatesTheTimeWithDotsForAFileName) {
  const LocalTimeParts t{2026, 11, 15, 22, 24, 3, 7};
  EXPECT_EQ(FormatLocalTime(t, L'.'), L"2026-11-15 22.24.03.007");
}

TEST(FormatLocalTime, LeavesTheYearUnpaddedAndWideFieldsWhole) {
  const LocalTimeParts t{999, 12, 31, 23, 59, 59, 999};
  EXPECT_EQ(FormatLocalTime(t, L':'), L"999-12-31 23:59:59.999");
}
