#!/usr/bin/env bash
# The main job's look at a screen above 100 %, run inside with-display.sh
# with QSYNC_WINEPREFIX naming a prefix of its own: that prefix's LogPixels
# is the DPI given (144, 150 %, unless told), the add-in is registered there
# for the user, and the simulated Word plays a short story from the
# simulated sync app: still loading, four live members, offline. Leaves
# word-<dpi>dpi-*.png and that Word's log (msoffice_addinlog-<dpi>dpi.txt)
# in build/main-job/, beside the main scenario's.
if [ "${1:-}" = "--help" ]; then
  echo "usage: QSYNC_WINEPREFIX=PREFIX scripts/with-display.sh scripts/run-dpi-scenario.sh [DPI]"
  exit 0
fi
set -eu
dpi="${1:-144}"
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bin="$root/build/windows/bin"
out="$root/build/main-job"
mkdir -p "$out"
QSYNC_LOGPIXELS="$dpi" "$root/tests/windows/prepare-prefix.sh" "$bin" >/dev/null
export WINEPREFIX="$QSYNC_WINEPREFIX" WINEDEBUG=-all
wine_run() { "$root/tests/windows/wine-run.sh" "$@"; }
# As in the main scenario: the X server keeps the overlays above the Office
# window that owns them, so the screenshots show what a user sees.
wine_run reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d Y /f >/dev/null 2>&1
winpath() { echo "Z:${1//\//\\}"; }

user_dir="$(ls -d "$WINEPREFIX"/drive_c/users/*/AppData/Roaming | grep -v Public | head -1)"
user_dir="${user_dir%/AppData/Roaming}"
user="$(basename "$user_dir")"
logs="$user_dir/AppData/Roaming/QelvoFilewell/logs"
avatars="$user_dir/AppData/Roaming/QelvoFilewell/avatar"
mkdir -p "$avatars"
# Two colleagues' avatars, one with a double-size twin as a sync app may
# provide for screens above 100 %.
for person in bo:#2b7bb9 ann:#c0392b; do
  convert -size 40x40 xc:white -fill "${person#*:}" -draw "circle 19.5,19.5 19.5,1" -fill white \
    -draw "circle 19.5,15 19.5,8" -draw "ellipse 19.5,36 12,10 180,360" -strip "png:$avatars/${person%%:*}"
done
convert -size 80x80 xc:white -fill '#c0392b' -draw "circle 39.5,39.5 39.5,2" -fill white \
  -draw "circle 39.5,30 39.5,16" -draw "ellipse 39.5,72 24,20 180,360" -strip "png:$avatars/ann@2x"
rm -f "$logs"/msoffice_addinlog*.txt

synced="$user_dir/Filewell"
rm -rf "$synced"
mkdir -p "$synced"
for name in report.docx notes.docx; do printf 'content\n' > "$synced/$name"; done
win_synced="C:\\users\\$user\\Filewell"
office="C:\\Program Files\\Microsoft Office\\root\\Office16"
scenario="$out/sync-scenario-${dpi}dpi.txt"
cat > "$scenario" <<SCENARIO
file $win_synced\\report.docx
set is_sync_file=true
set file_combo_id=k3v9x
set is_internet_connected=true
set is_loading_data_from_server=true
set is_download_present=Already Up-to-date
set last_modified_by_quid=u1bo
set last_modified_by=Bo Chan
set last_modified_time=2026-11-23 09:41
set all_viewers_quid=u1bo
set all_viewers_names=Bo Chan

after 3
set is_loading_data_from_server=false
set all_editors_quid=u1ann
set all_editors_names=Ann Lee
set all_viewers_quid=u1bo|u1cy|u1dee
set all_viewers_names=Bo Chan|Cy Ray|Dee Park

after 6
set is_internet_connected=false

file $win_synced\\notes.docx
set is_sync_file=true
set file_combo_id=n1
set is_loading_data_from_server=false
SCENARIO

(cd "$bin" && wine_run regsvr32 /s /n /i:user QSyncMSOfficeAddin.dll)
wine_run "$bin/syncsim.exe" --scenario "$(winpath "$scenario")" --run-ms 120000 \
  > "$out/syncsim-output-${dpi}dpi.txt" 2>&1 &
sync_pid=$!
sleep 2

shot() { echo "screenshot $(winpath "$out/word-${dpi}dpi-$1")"; }
cat > "$out/word-script-${dpi}dpi.txt" <<SCRIPT
wait 1000
open $win_synced\\report.docx
wait-for-text 20000 Qelvo Filewell
wait 500
$(shot 1-loading.png)
wait-for-text 20000 LIVE MEMBERS ( 4 )
wait 500
$(shot 2-editing-4-members.png)
wait-for-text 20000 No Internet Connection
wait 500
$(shot 3-no-internet.png)
report
SCRIPT
wine_run "$office\\WINWORD.EXE" --script "$(winpath "$out/word-script-${dpi}dpi.txt")" \
  > "$out/word-output-${dpi}dpi.txt" 2>&1 || true

kill "$sync_pid" >/dev/null 2>&1 || true
wait "$sync_pid" 2>/dev/null || true
(cd "$bin" && wine_run regsvr32 /s /u /n /i:user QSyncMSOfficeAddin.dll)
cp "$logs/msoffice_addinlog.txt" "$out/msoffice_addinlog-${dpi}dpi.txt" 2>/dev/null || true
echo "---- simulated Word at $dpi DPI ----"
cat "$out/word-output-${dpi}dpi.txt"
ls -1 "$out"/word-"${dpi}"dpi-*.png
