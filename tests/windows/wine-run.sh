#!/usr/bin/env bash
# Runs a Windows program under Wine in the test prefix. CMake uses it as the
# cross-compiling emulator, so ctest runs Windows tests through it.
if [ "${1:-}" = "--help" ]; then
  echo "usage: tests/windows/wine-run.sh PROGRAM.exe [ARGUMENTS...]  (in the tests' prefix, QSYNC_WINEPREFIX)"
  exit 0
fi
set -eu
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
: "${QSYNC_WINEPREFIX:=$here/../../build/windows/wineprefix}"
export WINEPREFIX="$QSYNC_WINEPREFIX"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
if [ -z "${DISPLAY:-}" ]; then
  exec xvfb-run -a -s "-screen 0 1280x800x24" wine "$@"
fi
exec wine "$@"
