#include "tests/native/captured_log.h"

std::vector<CapturedLine>& CapturedLog() {
  static std::vector<CapturedLine> lines;
  return lines;
}

namespace {
std::function<void(const CapturedLine&)>& Observer() {
  static std::function<void(const CapturedLine&)> observer;
  return observer;
}
bool g_observing = false;
}  // namespace

void ClearCapturedLog() { CapturedLog().clear(); }

void SetCapturedLogObserver(std::function<void(const CapturedLine&)> observer) { Observer() = std::move(observer); }

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
    if (Observer() && !g_observing) {
      g_observing = true;
      const CapturedLine line = CapturedLog().back();
      Observer()(line);
      g_observing = false;
    }
  } catch (...) {
    g_observing = false;
  }
}
