#include "addin/heap_corruption_handler.h"

#include "log/write_log.h"

namespace {
// Set while a thread is logging from here: should logging itself meet the
// corrupt heap again, the nested report is passed on without a second try.
volatile LONG g_reporting = 0;
}  // namespace

LONG CALLBACK HeapCorruptionHandler(EXCEPTION_POINTERS* exception) {
  constexpr DWORD kStatusHeapCorruption = 0xC0000374;
  if (exception != nullptr && exception->ExceptionRecord != nullptr &&
      exception->ExceptionRecord->ExceptionCode == kStatusHeapCorruption) {
    if (InterlockedCompareExchange(&g_reporting, 1, 0) == 0) {
      WriteLog(LogLevel::Error, L"STATUS_HEAP_CORRUPTION - passed on, the process cannot safely go on");
      InterlockedExchange(&g_reporting, 0);
    }
  }
  return EXCEPTION_CONTINUE_SEARCH;
}
