#!/usr/bin/env bash
# The main job: builds the add-in, registers it for the current user in a
# Wine prefix, starts the simulated Word, which loads it as Office does,
# and shows the add-in's log and a screenshot of what the user sees.
if [ "${1:-}" = "--help" ]; then
  cat <<'USAGE'
usage: scripts/main-job.sh [--help]
  builds the add-in, plays the main scenario in the simulated Word and Excel against the simulated
  sync app (and a short part at 150 %), and leaves screenshots, report.docx, the log and a
  gallery in build/main-job/
USAGE
  exit 0
fi
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
scripts/install-prerequisites.sh
cmake --preset windows >/dev/null
cmake --build --preset windows
# A tall screen: a panel with many members opens below the badge, past the
# bottom of the Office window, as it would on a tall monitor.
QSYNC_SCREEN=1280x1600 scripts/with-display.sh scripts/run-main-scenario.sh
# The same add-in on a screen at 150 % (144 DPI), in a prefix of its own.
QSYNC_SCREEN=1280x1600 QSYNC_WINEPREFIX="$root/build/windows/wineprefix-144dpi" \
  scripts/with-display.sh scripts/run-dpi-scenario.sh 144
scripts/make-gallery.sh build/main-job build/main-job/gallery
# The signed per-user installer beside what the main job shows.
cp build/windows/bin/QSyncMSOfficeAddin.msi build/main-job/
