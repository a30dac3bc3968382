#!/usr/bin/env bash
# Creates the Wine prefix that every Windows test of this build shares, once
# per test run: a crash must end a test at once (no debugger waiting), the
# sync app's folder under %APPDATA% exists as it does on a user's machine,
# and the simulated Office is installed under Office's own folder names.
set -eu
bin_dir="$1"
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
: "${QSYNC_WINEPREFIX:=$here/../../build/windows/wineprefix}"
export WINEPREFIX="$QSYNC_WINEPREFIX" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
run() { "$here/wine-run.sh" "$@"; }

if [ ! -f "$WINEPREFIX/system.reg" ]; then
  mkdir -p "$WINEPREFIX"
  run wineboot -i >/dev/null 2>&1
  wineserver -w
fi
# A screen at another DPI (QSYNC_LOGPIXELS, for the overlay's DPI tests):
# Wine 8 takes the system DPI from this value when a process starts.
if [ -n "${QSYNC_LOGPIXELS:-}" ]; then
  run reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$QSYNC_LOGPIXELS" /f >/dev/null 2>&1
fi
# A debugger that cannot start: Wine then ends the crashed process at once
# instead of waiting for winedbg.
run reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' /v Debugger /t REG_SZ /d 'false' /f >/dev/null 2>&1
run reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' /v Auto /t REG_SZ /d 1 /f >/dev/null 2>&1
run reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f >/dev/null 2>&1
# Xvfb runs no window manager, so Wine must not hand windows to one: a
# managed window (one with a caption, the active one, one that owns pop-ups
# such as an Office window under its badge) waits up to two seconds at a hide
# or destroy for a state change that no window manager will ever report.
run reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d N /f >/dev/null 2>&1

appdata="$WINEPREFIX/drive_c/users/${USER:-$(id -un)}/AppData/Roaming"
[ -d "$appdata" ] || appdata="$(ls -d "$WINEPREFIX"/drive_c/users/*/AppData/Roaming | head -1)"
mkdir -p "$appdata/QelvoFilewell/bin/images" "$appdata/QelvoFilewell/avatar"
# The overlay images, where the sync app installs them.
cp "$here/../../assets/images/"*.png "$appdata/QelvoFilewell/bin/images/"

office="$WINEPREFIX/drive_c/Program Files/Microsoft Office/root/Office16"
mkdir -p "$office"
if [ -f "$bin_dir/officesim.exe" ]; then
  for name in WINWORD.EXE EXCEL.EXE POWERPNT.EXE OUTLOOK.EXE; do cp "$bin_dir/officesim.exe" "$office/$name"; done
fi
wineserver -w
echo "prefix ready: $WINEPREFIX"
