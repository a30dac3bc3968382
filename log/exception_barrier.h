#pragma once
#include <exception>
#include <string>
#include <utility>

#include "common/text.h"
#include "log/write_log.h"

// The one exception barrier for every place that Office, Windows or our own
// thread calls into. A standard exception is logged as
//   "std exception occurred while <activity> - <what()>"
// and any other as
//   "unknown exception occurred while <activity>",
// and the caller gets its neutral result back.
template <class Result, class Body>
Result Guarded(const wchar_t* activity, Result neutral, Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (const std::exception& e) {
    WriteLog(LogLevel::Error, std::wstring(L"std exception occurred while ") + activity + L" - " + Widen(e.what()));
  } catch (...) {
    WriteLog(LogLevel::Error, std::wstring(L"unknown exception occurred while ") + activity);
  }
  return neutral;
}

// For bodies without a result.
template <class Body>
void GuardedVoid(const wchar_t* activity, Body&& body) noexcept {
  Guarded(activity, 0, [&] {
    std::forward<Body>(body)();
    return 0;
  });
}
