#include "log/log_last_error.h"

#include <windows.h>

#include "log/write_log.h"

void LogLastError(const std::wstring& what) {
  const DWORD error = GetLastError();
  WriteLog(LogLevel::Error, what + L" - " + std::to_wstring(error));
}
