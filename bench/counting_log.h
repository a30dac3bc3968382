#pragma once
#include <cstdint>

// Lines handed to WriteLog since the program started. The benchmarks keep
// the callers' cost of building each message but write nothing, as the real
// log does with the trace lines that make up most of a cycle.
std::uint64_t LogLinesWritten();
