// The one exception barrier: the neutral result after any exception, one
// Error line in the usual wording or in the caller's own.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "log/exception_barrier.h"
#include "tests/native/captured_log.h"

namespace {
std::wstring OwnStdText(const std::wstring& what) { return L"std exception occurred in a test procedure - " + what; }
std::wstring OwnUnknownText() { return L"unknown exception occurred in a test procedure"; }
}  // namespace

TEST(Guarded, ReturnsTheBodysResultAndLogsNothingWhenNothingIsThrown) {
  ClearCapturedLog();
  EXPECT_EQ(Guarded(L"adding", 0, [] { return 42; }), 42);
  EXPECT_TRUE(CapturedLog().empty());
}

TEST(Guarded, LogsAStdExceptionWhileTheActivityAndReturnsTheNeutralResult) {
  ClearCapturedLog();
  EXPECT_EQ(Guarded(L"adding", -1, []() -> int { throw std::runtime_error("boom"); }), -1);
  EXPECT_EQ(CapturedLog(),
            (std::vector<CapturedLine>{{LogLevel::Error, L"std exception occurred while adding - boom"}}));
}

TEST(Guarded, LogsAnUnknownExceptionWhileTheActivity) {
  ClearCapturedLog();
  EXPECT_EQ(Guarded(L"adding", -1, []() -> int { throw 7; }), -1);
  EXPECT_EQ(CapturedLog(), (std::vector<CapturedLine>{{LogLevel::Error, L"unknown exception occurred while adding"}}));
}

TEST(GuardedWithTexts, LogsAStdExceptionInTheCallersOwnWording) {
  ClearCapturedLog();
  EXPECT_FALSE(GuardedWithTexts(
      false, []() -> bool { throw std::logic_error("bad"); }, OwnStdText, OwnUnknownText));
  EXPECT_EQ(CapturedLog(),
            (std::vector<CapturedLine>{{LogLevel::Error, L"std exception occurred in a test procedure - bad"}}));
}

TEST(GuardedWithTexts, LogsAnUnknownExceptionInTheCallersOwnWording) {
  ClearCapturedLog();
  EXPECT_FALSE(GuardedWithTexts(
      false, []() -> bool { throw 1; }, OwnStdText, OwnUnknownText));
  EXPECT_EQ(CapturedLog(),
            (std::vector<CapturedLine>{{LogLevel::Error, L"unknown exception occurred in a test procedure"}}));
}

TEST(GuardedVoid, RunsTheBodyAndSwallowsWhatItThrows) {
  ClearCapturedLog();
  int ran = 0;
  GuardedVoid(L"counting", [&] {
    ++ran;
    throw std::runtime_error("x");
  });
  EXPECT_EQ(ran, 1);
  EXPECT_EQ(CapturedLog(),
            (std::vector<CapturedLine>{{LogLevel::Error, L"std exception occurred while counting - x"}}));
}
