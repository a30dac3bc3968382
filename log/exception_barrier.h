#pragma once
#include <exception>
#include <string>
#include <utility>

#include "common/text.h"
#include "log/write_log.h"

// The one exception barrier for every place that Office, Windows or our own
// thread calls into. The caller gets its neutral result back after an
// exception, which is logged at Error: a standard one as stdText(what()),
// any other as unknownText().
template <class Result, class Body, class StdText, class UnknownText>
Result GuardedWithTexts(Result neutral, Body&& body, StdText&& stdText, UnknownText&& unknownText) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (const std::exception& e) {
    WriteLog(LogLevel::Error, stdText(Widen(e.what())));
  } catch (...) {
    WriteLog(LogLevel::Error, unknownText());
  }
  return neutral;
}

// The usual wording:
//   "std exception occurred while <activity> - <what()>"
//   "unknown exception occurred while <activity>"
template <class Result, class Body>
Result Guarded(const wchar_t* activity, Result neutral, Body&& body) noexcept {
  return GuardedWithTexts(
      neutral, std::forward<Body>(body),
      [&](const std::wstring& what) {
        return std::wstring(L"std exception occurred while ") + activity + L" - " + what;
      },
      [&] { return std::wstring(L"unknown exception occurred while ") + activity; });
}

// For bodies without a result.
template <class Body>
void GuardedVoid(const wchar_t* activity, Body&& body) noexcept {
  Guarded(activity, 0, [&] {
    std::forward<Body>(body)();
    return 0;
  });
}
