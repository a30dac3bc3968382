#!/usr/bin/env bash
# Runs a command with one private Xvfb screen (1280x800, or QSYNC_SCREEN) and one persistent wineserver
# for the Wine prefix, both stopped afterwards.
if [ "${1:-}" = "--help" ]; then
  cat <<'USAGE'
usage: scripts/with-display.sh COMMAND [ARGUMENTS...]
  runs COMMAND with a private Xvfb screen (1280x800, or QSYNC_SCREEN) and one wineserver for
  the prefix (QSYNC_WINEPREFIX, default build/windows/wineprefix), both stopped afterwards
USAGE
  exit 0
fi
set -u
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
export QSYNC_WINEPREFIX="${QSYNC_WINEPREFIX:-$root/build/windows/wineprefix}"
display=""
for candidate in $(seq 90 130); do
  if [ ! -e "/tmp/.X11-unix/X$candidate" ] && [ ! -e "/tmp/.X$candidate-lock" ]; then display=":$candidate"; break; fi
done
Xvfb "$display" -screen 0 "${QSYNC_SCREEN:-1280x800}x24" -nolisten tcp >/dev/null 2>&1 &
xvfb_pid=$!
export DISPLAY="$display"
for _ in $(seq 50); do [ -e "/tmp/.X11-unix/X${display#:}" ] && break; sleep 0.1; done
cleanup() {
  WINEPREFIX="$QSYNC_WINEPREFIX" wineserver -k >/dev/null 2>&1 || true
  kill "$xvfb_pid" >/dev/null 2>&1 || true
}
trap cleanup EXIT
"$@"
