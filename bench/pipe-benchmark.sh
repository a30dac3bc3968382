#!/usr/bin/env bash
# The add-in's pipe exchange (SyncAppPipe) against a bare pipe round trip
# with none of our code, under Wine, in turns: medians, 10th and 90th
# percentiles, and the ratio. Builds pipe_bench in the windows preset and
# runs it in the tests' prefix (QSYNC_WINEPREFIX, default
# build/windows/wineprefix). Nothing else may serve the user's pipe meanwhile.
usage() {
  cat <<'USAGE'
usage: bench/pipe-benchmark.sh [--rounds N] [--smoke] [--help]
  --rounds N  round trips of each kind (default 500)
  --smoke     build, then 5 rounds (no figures worth reading): what scripts/test.sh runs
  --help      this text
USAGE
}
set -eu
rounds=500
while [ $# -gt 0 ]; do
  case "$1" in
    --help|-h) usage; exit 0 ;;
    --smoke) rounds=5 ;;
    --rounds) rounds="$2"; shift ;;
    *) usage >&2; exit 2 ;;
  esac
  shift
done
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
export QSYNC_WINEPREFIX="${QSYNC_WINEPREFIX:-$root/build/windows/wineprefix}"
cmake --preset windows >/dev/null
cmake --build --preset windows --target pipe_bench >/dev/null
bin="$root/build/windows/bin"
# A smoke run comes right after the Windows tests, whose prefix is ready.
if ! { [ "$rounds" = 5 ] && [ -f "$QSYNC_WINEPREFIX/system.reg" ]; }; then
  tests/windows/prepare-prefix.sh "$bin" >/dev/null
fi
echo "load average before the run: $(cut -d' ' -f1-3 /proc/loadavg) on $(nproc) processors"
cd "$bin"
"$root/tests/windows/wine-run.sh" ./pipe_bench.exe --rounds "$rounds" 2>/dev/null
