#include "log/write_log.h"

#include "log/addin_log.h"

void WriteLog(LogLevel level, std::wstring message) noexcept {
  if (level == LogLevel::Debug) return;
  try {
    if (AddinLog* log = CurrentAddinLog()) log->WriteLine(level, message);
  } catch (...) {
    // Logging must never stop the caller.
  }
}

bool LogWrites(LogLevel level) noexcept { return level != LogLevel::Debug; }
