#pragma once
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
