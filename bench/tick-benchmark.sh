#!/usr/bin/env bash
# Builds the windows preset's tick_bench and runs it under Wine on a private
# display: the median time of one UI tick with 1, 10 and 100 cached
# documents whose overlays are up to date, quiet and viewed, and how the
# time grows from 10 to 100 (10 = linear). Not part of the test run:
# timings depend on the machine and on what else runs on it. The prefix is
# the tests' (QSYNC_WINEPREFIX, default build/windows/wineprefix), prepared
# as they prepare it.
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
export QSYNC_WINEPREFIX="${QSYNC_WINEPREFIX:-$root/build/windows/wineprefix}"
cmake --preset windows >/dev/null
cmake --build --preset windows --target tick_bench officesim
bin="$root/build/windows/bin"
tests/windows/prepare-prefix.sh "$bin" >/dev/null
results="$root/build/windows/tick_bench.txt"
cd "$bin"
echo "load average before the run: $(cut -d' ' -f1-3 /proc/loadavg) on $(nproc) processors" | tee "$results"
"$root/scripts/with-display.sh" "$root/tests/windows/wine-run.sh" ./tick_bench.exe | grep -v '^officesim: ' | tee -a "$results"
