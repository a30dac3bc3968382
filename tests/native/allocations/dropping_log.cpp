#include "tests/native/allocations/dropping_log.h"

#include <atomic>

#include "log/write_log.h"

namespace {
std::atomic<std::int64_t> g_debugLines{0};
}

std::int64_t DebugLinesHandedToTheLog() { return g_debugLines.load(); }

void WriteLog(LogLevel level, std::wstring) noexcept {
  if (level == LogLevel::Debug) ++g_debugLines;
}

bool LogWrites(LogLevel level) noexcept { return level != LogLevel::Debug; }
