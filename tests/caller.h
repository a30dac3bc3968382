#pragma once
// Test helpers that assert take a Caller as their last argument, defaulted,
// and open TRACE_CALLER first: a failure inside the helper then names the
// test line that called it, not only the helper's own line.
#include <gtest/gtest.h>

struct Caller {
  // Default arguments are evaluated where the helper is called.
  Caller(const char* file = __builtin_FILE(), int line = __builtin_LINE()) : file(file), line(line) {}
  const char* file;
  int line;
};

#define TRACE_CALLER(caller) const testing::ScopedTrace callerTrace((caller).file, (caller).line, "called from here")
