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
