#!/usr/bin/env bash
# The scenario itself, run inside with-display.sh: the simulated sync app
# serves the pipe from a scenario, the simulated Word and Excel load the
# add-in as Office does, and a user opens, edits, saves and closes synced
# documents. Leaves the add-in's log, what the sync app received and
# screenshots in build/main-job/.
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bin="$root/build/windows/bin"
out="$root/build/main-job"
rm -rf "$out"
mkdir -p "$out"
"$root/tests/windows/prepare-prefix.sh" "$bin" >/dev/null
export WINEPREFIX="$QSYNC_WINEPREFIX" WINEDEBUG=-all
wine_run() { "$root/tests/windows/wine-run.sh" "$@"; }
winpath() { echo "Z:${1//\//\\}"; }

user_dir="$(ls -d "$WINEPREFIX"/drive_c/users/*/AppData/Roaming | grep -v Public | head -1)"
user_dir="${user_dir%/AppData/Roaming}"
user="$(basename "$user_dir")"
logs="$user_dir/AppData/Roaming/QelvoFilewell/logs"
rm -f "$logs"/msoffice_addinlog*.txt

# The user's synced folder with a few documents in it.
synced="$user_dir/Filewell"
rm -rf "$synced"
mkdir -p "$synced"
for name in report.docx notes.docx budget.xlsx; do printf 'content\n' > "$synced/$name"; done
win_synced="C:\\users\\$user\\Filewell"

cat > "$out/sync-scenario.txt" <<SCENARIO
# report.docx is synced and up to date; Bo starts viewing it after a while.
file $win_synced\\report.docx
set is_sync_file=true
set file_combo_id=k3v9x
set is_internet_connected=true
set is_loading_data_from_server=false
set is_download_present=Already Up-to-date
after 4
set all_viewers_quid=u42
set all_viewers_names=Bo Chan

# notes.docx is still being fetched from the server.
file $win_synced\\notes.docx
set is_sync_file=true
set file_combo_id=n7
set is_loading_data_from_server=true

# budget.xlsx is synced; the sync app is offline.
file $win_synced\\budget.xlsx
set is_sync_file=true
set file_combo_id=b1
set is_internet_connected=false
set is_loading_data_from_server=false
SCENARIO

(cd "$bin" && wine_run regsvr32 /s /n /i:user QSyncMSOfficeAddin.dll)
echo "registered per user: QelvoFilewellSync.OfficeAddin"

wine_run "$bin/syncsim.exe" --scenario "$(winpath "$out/sync-scenario.txt")" \
  --record "$(winpath "$out/sync-requests.txt")" --run-ms 120000 > "$out/syncsim-output.txt" 2>&1 &
sync_pid=$!
sleep 2

cat > "$out/word-script.txt" <<SCRIPT
# The user opens a synced report, edits and saves it, opens a second
# document, then closes the report.
wait 1000
open $win_synced\\report.docx
wait 2000
type report.docx
wait 4500
save report.docx
open $win_synced\\notes.docx
wait 5000
close report.docx
wait 1000
SCRIPT
office="C:\\Program Files\\Microsoft Office\\root\\Office16"
wine_run "$office\\WINWORD.EXE" --script "$(winpath "$out/word-script.txt")" > "$out/word-output.txt" 2>&1 &
host_pid=$!
sleep 6
import -window root "$out/word-running.png"
wait "$host_pid" || true

cat > "$out/excel-script.txt" <<SCRIPT
wait 500
open $win_synced\\budget.xlsx
wait 3000
close budget.xlsx
wait 500
SCRIPT
wine_run "$office\\EXCEL.EXE" --script "$(winpath "$out/excel-script.txt")" > "$out/excel-output.txt" 2>&1 &
host_pid=$!
sleep 3
import -window root "$out/excel-running.png"
wait "$host_pid" || true

kill "$sync_pid" >/dev/null 2>&1 || true
wait "$sync_pid" 2>/dev/null || true
(cd "$bin" && wine_run regsvr32 /s /u /n /i:user QSyncMSOfficeAddin.dll)

cp "$logs/msoffice_addinlog.txt" "$out/"
echo "---- simulated Word ----"
cat "$out/word-output.txt"
echo "---- simulated Excel ----"
cat "$out/excel-output.txt"
echo "---- requests the sync app received ($out/sync-requests.txt) ----"
cat "$out/sync-requests.txt"
echo "---- add-in log ($out/msoffice_addinlog.txt) ----"
cat "$out/msoffice_addinlog.txt"
echo "---- screenshots: $out/word-running.png $out/excel-running.png ----"
