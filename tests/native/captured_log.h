#pragma once
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "log/write_log.h"

// Natively, WriteLog records every call, Debug lines included, so tests can
// check the exact texts that the Windows log writer would receive (and,
// for Debug, drop).
struct CapturedLine {
  LogLevel level;
  std::wstring message;
  bool operator==(const CapturedLine& other) const { return level == other.level && message == other.message; }
};

std::vector<CapturedLine>& CapturedLog();
void ClearCapturedLog();
// Only the messages, in order, optionally without Debug lines.
std::vector<std::wstring> CapturedMessages(bool includeDebug = true);

// Lines are recorded under a lock, so several threads may log at once;
// read them once those threads are done.

// While one of these lives, lines are counted but not kept (stress tests
// that log millions of trace lines).
class CapturedLogPause {
 public:
  CapturedLogPause();
  ~CapturedLogPause();
  CapturedLogPause(const CapturedLogPause&) = delete;
  CapturedLogPause& operator=(const CapturedLogPause&) = delete;
};
// Lines logged since the process started, kept or not.
unsigned long long CapturedLineCount();

// Called with each line just after it is recorded, on the writing thread: a
// test can act in the middle of an operation, where another thread could.
// Lines logged by the observer itself reach it no more. Empty to stop.
void SetCapturedLogObserver(std::function<void(const CapturedLine&)> observer);
