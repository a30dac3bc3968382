#!/usr/bin/env bash
# Builds everything and runs every test: the native unit tests (sanitizers,
# the bounded fuzz run) and the Windows tests under Wine + Xvfb.
if [ "${1:-}" = "--help" ]; then
  cat <<'USAGE'
usage: scripts/test.sh [--help]
  builds every preset and runs every test: native (ASan/UBSan, TSan, bounded fuzzing), the
  benchmarks once each, Windows under Wine + Xvfb, and the README command check
USAGE
  exit 0
fi
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
scripts/install-prerequisites.sh

# Each native test is its own process; two at a time halves the wall time
# on a 2-core machine (the fuzz runs are two of them).
jobs="$(nproc 2>/dev/null || echo 2)"
cmake --preset native >/dev/null
cmake --build --preset native
ctest --preset native -j "$jobs"

# Every benchmark builds and runs once (the bench build compiles only the
# benchmarks and the layers they measure), so none can rot unseen.
bench/run-benchmarks.sh --smoke

# The same tests once more under ThreadSanitizer: the cache and the log are
# shared by two threads.
cmake --preset tsan >/dev/null
cmake --build --preset tsan
ctest --preset tsan -j "$jobs"

cmake --preset windows >/dev/null
cmake --build --preset windows
# A fresh prefix per run: tests must not lean on what an earlier run left.
rm -rf build/windows/wineprefix
scripts/with-display.sh ctest --preset windows
# The Windows benchmarks once each, in the prefix the tests just used.
bench/tick-benchmark.sh --smoke
bench/pipe-benchmark.sh --smoke
# Every command the README shows still runs.
scripts/check-readme-commands.sh
