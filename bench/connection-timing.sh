#!/usr/bin/env bash
# How long the add-in keeps Office waiting at start-up and shutdown: the
# durations of OnConnection and OnDisconnection inside the simulated Word,
# median of 5 starts, set against the limits past which Office flags a COM
# add-in as slow (1000 ms at start-up, 500 ms at shutdown).
# Run after building the windows preset: scripts/with-display.sh bench/connection-timing.sh
if [ "${1:-}" = "--help" ]; then
  cat <<'USAGE'
usage: bench/connection-timing.sh [--help]
  after building the windows preset, inside scripts/with-display.sh: OnConnection and
  OnDisconnection in the simulated Word, median of five starts, against Office's limits
USAGE
  exit 0
fi
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bin="$root/build/windows/bin"
"$root/tests/windows/prepare-prefix.sh" "$bin" >/dev/null
run() { "$root/tests/windows/wine-run.sh" "$@"; }
(cd "$bin" && run regsvr32 /s /n /i:user QSyncMSOfficeAddin.dll)
connect=() disconnect=()
for _ in 1 2 3 4 5; do
  out=$(run "C:\\Program Files\\Microsoft Office\\root\\Office16\\WINWORD.EXE" 2>&1)
  connect+=("$(echo "$out" | sed -n 's/.*OnConnection returned .* in \([0-9.]*\) ms.*/\1/p')")
  disconnect+=("$(echo "$out" | sed -n 's/.*OnDisconnection returned .* in \([0-9.]*\) ms.*/\1/p')")
done
(cd "$bin" && run regsvr32 /s /u /n /i:user QSyncMSOfficeAddin.dll)
median() { printf '%s\n' "$@" | sort -n | sed -n 3p; }
mc=$(median "${connect[@]}"); md=$(median "${disconnect[@]}")
echo "OnConnection    runs(ms): ${connect[*]}  median ${mc} ms = $(awk "BEGIN{printf \"%.4f\", $mc/1000}") of Office's 1000 ms limit"
echo "OnDisconnection runs(ms): ${disconnect[*]}  median ${md} ms = $(awk "BEGIN{printf \"%.4f\", $md/500}") of Office's 500 ms limit"
