#include <gtest/gtest.h>

#include "addin/heap_corruption_handler.h"
#include "log/log_folder.h"
#include "tests/windows/wine_test_support.h"

namespace {
LONG HandleCode(DWORD code) {
  EXCEPTION_RECORD record{};
  record.ExceptionCode = code;
  CONTEXT context{};
  EXCEPTION_POINTERS pointers{&record, &context};
  return HeapCorruptionHandler(&pointers);
}
}  // namespace

// Running on over a corrupt heap can turn a crash into lost or damaged
// documents; the exception goes on to Windows' own handling.
TEST(HeapCorruptionHandler, LogsHeapCorruptionAndPassesItOn) {
  InitLogFolder();
  DeleteLogFiles();
  EXPECT_EQ(HandleCode(0xC0000374), EXCEPTION_CONTINUE_SEARCH);
  EXPECT_EQ(LogMessages(LogFilePath()),
            (std::vector<std::string>{"STATUS_HEAP_CORRUPTION - passed on, the process cannot safely go on"}));
}

TEST(HeapCorruptionHandler, PassesEveryOtherExceptionOnWithoutLogging) {
  InitLogFolder();
  DeleteLogFiles();
  EXPECT_EQ(HandleCode(EXCEPTION_ACCESS_VIOLATION), EXCEPTION_CONTINUE_SEARCH);
  EXPECT_EQ(HandleCode(0xC0000375), EXCEPTION_CONTINUE_SEARCH);
  EXPECT_EQ(GetFileAttributesW(LogFilePath().c_str()), INVALID_FILE_ATTRIBUTES);
}

namespace {
LONG g_seenAfterUs = 0;
// Stands for whatever comes after the add-in's handler (here: the test's
// own, which lets the raiser go on so the test can look).
LONG CALLBACK NextHandler(EXCEPTION_POINTERS* exception) {
  if (exception->ExceptionRecord->ExceptionCode != 0xC0000374) return EXCEPTION_CONTINUE_SEARCH;
  ++g_seenAfterUs;
  return EXCEPTION_CONTINUE_EXECUTION;
}
}  // namespace

TEST(HeapCorruptionHandler, LetsARaisedHeapCorruptionReachTheNextHandler) {
  InitLogFolder();
  DeleteLogFiles();
  PVOID ours = AddVectoredExceptionHandler(0, HeapCorruptionHandler);
  ASSERT_NE(ours, nullptr);
  PVOID next = AddVectoredExceptionHandler(0, NextHandler);  // called after ours
  ASSERT_NE(next, nullptr);
  g_seenAfterUs = 0;
  RaiseException(0xC0000374, 0, 0, nullptr);
  EXPECT_NE(RemoveVectoredExceptionHandler(next), 0u);
  EXPECT_NE(RemoveVectoredExceptionHandler(ours), 0u);
  EXPECT_EQ(g_seenAfterUs, 1);
  EXPECT_EQ(LogMessages(LogFilePath()),
            (std::vector<std::string>{"STATUS_HEAP_CORRUPTION - passed on, the process cannot safely go on"}));
}
