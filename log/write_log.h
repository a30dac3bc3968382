#pragma once
#include <string>

// Severity of a log line; the letter written for each is in log_line.h.
enum class LogLevel : int { Fatal = 0, Error = 1, Warning = 2, Info = 3, Debug = 4 };

// The one logging entry point. Debug lines are dropped here, before any
// lock or file is touched. Never throws and never stops the caller.
void WriteLog(LogLevel level, std::wstring message) noexcept;

// Whether WriteLog keeps lines of `level`. Callers whose message would copy
// something large (a whole answer) ask first, so that a line the log drops
// costs nothing.
bool LogWrites(LogLevel level) noexcept;
