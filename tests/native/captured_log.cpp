#include "tests/native/captured_log.h"

std::vector<CapturedLine>& CapturedLog() {
  static std::vector<CapturedLine> lines;
  return lines;
}

void ClearCapturedLog() { CapturedLog().clear(); }

std::vector<std::wstring> CapturedMessages(bool includeDebug) {
  std::vector<std::wstring> messages;
  for (const auto& line : CapturedLog()) {
    if (includeDebug || line.level != LogLevel::Debug) messages.push_back(line.message);
  }
  return messages;
}

void WriteLog(LogLevel level, std::wstring message) noexcept {
  try {
    CapturedLog().push_back({level, std::move(message)});
  } catch (...) {
  }
}
