#!/usr/bin/env bash
# A long fault run: the add-in inside the simulated Word against a sync app
# whose answers are bent at random and which dies mid-answer twenty times.
#
#   scripts/fault-run.sh [ANSWERS] [SEED]
#
# ANSWERS defaults to 10000; SEED to one taken from the clock (printed, so a
# failing run can be played again). The ctest version (fault_run_test) runs
# 250 answers and 5 deaths.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
root="$here/.."
answers="${1:-10000}"
export QSYNC_FAULT_ANSWERS="$answers"
export QSYNC_FAULT_KILLS="${QSYNC_FAULT_KILLS:-20}"
if [ -n "${2:-}" ]; then export QSYNC_FAULT_SEED="$2"; fi

cd "$root"
cmake --preset windows >/dev/null
cmake --build --preset windows --target QSyncMSOfficeAddin officesim syncsim fault_run_test
# The prefix as ctest's fixture makes it, then the run itself without ctest's time limit.
"$here/with-display.sh" ctest --preset windows -R '^wine\.prefix$' --output-on-failure
cd build/windows/bin
QSYNC_BIN_DIR="$PWD" "$here/with-display.sh" "$root/tests/windows/wine-run.sh" ./fault_run_test.exe
