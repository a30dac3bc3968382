#pragma once
#include <string>

// Logs "<what> - <GetLastError() in decimal>" at Error. Call it right after
// the failing call, before anything else can change the thread's last error.
void LogLastError(const std::wstring& what);

// Logs `textEndingInDash` (a failure text that already ends in " - ")
// followed by the system's own text for GetLastError() ("Invalid window
// handle."), at Error; the decimal code stands in when the system has no
// text for it. The overlay's builders report their failures this way.
void LogLastErrorText(const wchar_t* textEndingInDash);

// The system's message for an error code, without its line end; the
// decimal code when there is none.
std::wstring SystemErrorText(unsigned long error);
