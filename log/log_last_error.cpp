#include "log/log_last_error.h"

#include <windows.h>

#include "log/write_log.h"

void LogLastError(const std::wstring& what) {
  const DWORD error = GetLastError();
  WriteLog(LogLevel::Error, what + L" - " + std::to_wstring(error));
}

void LogLastErrorText(const wchar_t* textEndingInDash) {
  const DWORD error = GetLastError();
  WriteLog(LogLevel::Error, std::wstring(textEndingInDash) + SystemErrorText(error));
}

std::wstring SystemErrorText(unsigned long error) {
  wchar_t buffer[512];
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), buffer, 512, nullptr);
  while (length > 0 && (buffer[length - 1] == L'\r' || buffer[length - 1] == L'\n' || buffer[length - 1] == L' ')) {
    --length;
  }
  if (length == 0) return std::to_wstring(error);
  return std::wstring(buffer, length);
}
