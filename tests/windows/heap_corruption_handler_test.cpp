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

TEST(HeapCorruptionHandler, ContinuesAfterHeapCorruptionAndLogsIt) {
  InitLogFolder();
  DeleteLogFiles();
  EXPECT_EQ(HandleCode(0xC0000374), EXCEPTION_CONTINUE_EXECUTION);
  EXPECT_EQ(LogMessages(LogFilePath()),
            (std::vector<std::string>{"STATUS_HEAP_CORRUPTION - trying to continue execution"}));
}

TEST(HeapCorruptionHandler, PassesEveryOtherExceptionOnWithoutLogging) {
  InitLogFolder();
  DeleteLogFiles();
  EXPECT_EQ(HandleCode(EXCEPTION_ACCESS_VIOLATION), EXCEPTION_CONTINUE_SEARCH);
  EXPECT_EQ(HandleCode(0xC0000375), EXCEPTION_CONTINUE_SEARCH);
  EXPECT_EQ(GetFileAttributesW(LogFilePath().c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(HeapCorruptionHandler, LetsARaisedHeapCorruptionReturnToTheRaiser) {
  PVOID handler = AddVectoredExceptionHandler(0, HeapCorruptionHandler);
  ASSERT_NE(handler, nullptr);
  RaiseException(0xC0000374, 0, 0, nullptr);  // would end the process without the handler
  EXPECT_NE(RemoveVectoredExceptionHandler(handler), 0u);
}
