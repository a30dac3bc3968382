#pragma once
#include <string>

// Logs "<what> - <GetLastError() in decimal>" at Error. Call it right after
// the failing call, before anything else can change the thread's last error.
void LogLastError(const std::wstring& what);
