#!/usr/bin/env bash
# Builds the windows preset's tick_bench and runs it under Wine on a private
# display: the median time of one UI tick with 1, 10 and 100 cached
# documents whose overlays are up to date, quiet and viewed, and how the
# time grows from 10 to 100 (10 = linear). Not part of the test run:
# timings depend on the machine and on what else runs on it. The prefix is
# the tests' (QSYNC_WINEPREFIX, default build/windows/wineprefix), prepared
# as they prepare it.
usage() {
  cat <<'USAGE'
usage: bench/tick-benchmark.sh [--smoke] [--help]
  (default)  500 ticks per case; the figures go to build/windows/tick_bench.txt
  --smoke    one tick with one document of each kind (no figures worth reading): what
             scripts/test.sh runs
  --help     this text
USAGE
}
smoke=""
case "${1:-}" in
  --help|-h) usage; exit 0 ;;
  --smoke) smoke="--smoke" ;;
  "") ;;
  *) usage >&2; exit 2 ;;
esac
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
export QSYNC_WINEPREFIX="${QSYNC_WINEPREFIX:-$root/build/windows/wineprefix}"
cmake --preset windows >/dev/null
cmake --build --preset windows --target tick_bench officesim
bin="$root/build/windows/bin"
# A smoke run comes right after the Windows tests, whose prefix is ready.
if ! { [ -n "$smoke" ] && [ -f "$QSYNC_WINEPREFIX/system.reg" ]; }; then
  tests/windows/prepare-prefix.sh "$bin" >/dev/null
fi
results="$root/build/windows/tick_bench.txt"
[ -z "$smoke" ] || results="$root/build/windows/tick_bench_smoke.txt"
cd "$bin"
echo "load average before the run: $(cut -d' ' -f1-3 /proc/loadavg) on $(nproc) processors" | tee "$results"
"$root/scripts/with-display.sh" "$root/tests/windows/wine-run.sh" ./tick_bench.exe $smoke | grep -v '^officesim: ' | tee -a "$results"
