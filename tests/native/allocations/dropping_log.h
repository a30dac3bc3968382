#pragma once
#include <cstdint>

// The log of this test program drops Debug lines, as the add-in's log does,
// and counts the ones that reached it anyway: a caller that asks LogWrites
// first never hands one over.
std::int64_t DebugLinesHandedToTheLog();
