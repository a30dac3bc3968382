#include "addin/heap_corruption_handler.h"

#include "log/write_log.h"

LONG CALLBACK HeapCorruptionHandler(EXCEPTION_POINTERS* exception) {
  constexpr DWORD kStatusHeapCorruption = 0xC0000374;
  if (exception != nullptr && exception->ExceptionRecord != nullptr &&
      exception->ExceptionRecord->ExceptionCode == kStatusHeapCorruption) {
    WriteLog(LogLevel::Error, L"STATUS_HEAP_CORRUPTION - trying to continue execution");
    return EXCEPTION_CONTINUE_EXECUTION;
  }
  return EXCEPTION_CONTINUE_SEARCH;
}
