#include "tests/native/captured_log.h"

#include <atomic>
#include <mutex>

std::vector<CapturedLine>& CapturedLog() {
  static std::vector<CapturedLine> lines;
  return lines;
}

namespace {
std::mutex& LogLock() {
  static std::mutex lock;
  return lock;
}
std::function<void(const CapturedLine&)>& Observer() {
  static std::function<void(const CapturedLine&)> observer;
  return observer;
}
thread_local bool t_observing = false;
std::atomic<int> g_pauses{0};
std::atomic<unsigned long long> g_lineCount{0};
}  // namespace

CapturedLogPause::CapturedLogPause() { ++g_pauses; }
CapturedLogPause::~CapturedLogPause() { --g_pauses; }
unsigned long long CapturedLineCount() { return g_lineCount.load(); }

void ClearCapturedLog() {
  std::lock_guard<std::mutex> lock(LogLock());
  CapturedLog().clear();
}

void SetCapturedLogObserver(std::function<void(const CapturedLine&)> observer) {
  std::lock_guard<std::mutex> lock(LogLock());
  Observer() = std::move(observer);
}

std::vector<std::wstring> CapturedMessages(bool includeDebug) {
  std::lock_guard<std::mutex> lock(LogLock());
  std::vector<std::wstring> messages;
  for (const auto& line : CapturedLog()) {
    if (includeDebug || line.level != LogLevel::Debug) messages.push_back(line.message);
  }
  return messages;
}

void WriteLog(LogLevel level, std::wstring message) noexcept {
  ++g_lineCount;
  if (g_pauses.load() > 0) return;
  try {
    CapturedLine line{level, std::move(message)};
    std::function<void(const CapturedLine&)> observer;
    {
      std::lock_guard<std::mutex> lock(LogLock());
      CapturedLog().push_back(line);
      if (!t_observing) observer = Observer();
    }
    // Outside the lock: the observer may act on the code under test, which
    // logs again (those lines reach it no more).
    if (observer) {
      t_observing = true;
      observer(line);
      t_observing = false;
    }
  } catch (...) {
    t_observing = false;
  }
}

// Natively every level is recorded, so the trace texts can be checked.
bool LogWrites(LogLevel) noexcept { return true; }
