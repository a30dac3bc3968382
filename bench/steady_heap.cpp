// glibc hands freed heap back to the kernel once the free space at its top
// passes a threshold, and moves that threshold (and the size from which it
// maps blocks of their own) as the program runs. Whether a benchmark then
// pays for tens of thousands of page faults per iteration depended on what
// earlier benchmarks in the same process had allocated, and on details as
// small as one trace string: the same reader measured 0.58 or 0.81 of
// RapidJSON's time. Fixing both thresholds before any benchmark runs makes
// every benchmark, ours and the baselines alike, measure its own work.
#include <cstdlib>  // defines __GLIBC__ on glibc

#if defined(__GLIBC__)
#include <malloc.h>

namespace {
const bool kSteadyHeap = [] {
  mallopt(M_MMAP_THRESHOLD, 64 * 1024 * 1024);
  mallopt(M_TRIM_THRESHOLD, 512 * 1024 * 1024);
  return true;
}();
}  // namespace
#endif
