#!/usr/bin/env bash
# Builds the bench preset and runs the sync-link benchmarks: answer scanning
# and request building in MB/s at 10, 1,000 and 10,000 files, UpdateFile per
# record. Then prints how the time grows from 1,000 to 10,000 files: about
# 10 means linear growth. Not part of the test run: timings depend on the
# machine and on what else runs on it.
#   bench/run-benchmarks.sh [extra Google Benchmark options]
# BENCH_BUILD_DIR chooses the build folder (default build/bench).
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
scripts/install-prerequisites.sh
build="${BENCH_BUILD_DIR:-build/bench}"
cmake --preset bench -B "$build" >/dev/null
cmake --build "$build" --target synclink_bench
results="$build/synclink_bench.txt"
"$build/bin/synclink_bench" --benchmark_color=false "$@" | tee "$results"

# CPU time of one benchmark in nanoseconds, from the console table.
cpu_ns() {
  awk -v name="$1" '$1 == name {
    factor = ($5 == "ns") ? 1 : ($5 == "us") ? 1e3 : ($5 == "ms") ? 1e6 : 1e9
    print $4 * factor; exit }' "$results"
}
echo
for benchmark in BM_ParseAnswer BM_BuildRequest; do
  small=$(cpu_ns "$benchmark/1000") large=$(cpu_ns "$benchmark/10000")
  if [ -n "$small" ] && [ -n "$large" ]; then
    awk -v b="$benchmark" -v s="$small" -v l="$large" \
      'BEGIN { printf "%s: 10,000 files take %.1f times as long as 1,000 (10 = linear)\n", b, l / s }'
  fi
done
