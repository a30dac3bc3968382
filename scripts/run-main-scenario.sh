#!/usr/bin/env bash
# The scenario itself, run inside with-display.sh: the simulated sync app
# serves the pipe from a scenario, the simulated Word and Excel load the
# add-in as Office does, and a user works with synced documents while the
# sync app reports what happens to them on the web. Leaves the add-in's
# log, what the sync app received and a screenshot of each state the user
# sees in build/main-job/.
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
office="C:\\Program Files\\Microsoft Office\\root\\Office16"

# The sync app's story of report.docx, in steps of two requests (the update
# thread asks every 4 s, and at once when a document opens): still loading,
# offline, one colleague viewing, one editing while three view, a crowd of
# twelve, everybody gone (safe to edit), a colleague back, whom the user
# then hides.
cat > "$out/sync-scenario.txt" <<SCENARIO
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
set is_internet_connected=false

after 5
set is_internet_connected=true
set is_loading_data_from_server=false

after 7
set all_editors_quid=u1ann
set all_editors_names=Ann Lee
set all_viewers_quid=u1bo|u1cy|u1dee
set all_viewers_names=Bo Chan|Cy Ray|Dee Park

after 9
set all_editors_quid=u1ann|u1eve|u1fox|u1gus|u1hal
set all_editors_names=Ann Lee|Eve Moss|Fox Tan|Gus Orr|Hal Kim
set all_viewers_quid=u1bo|u1cy|u1dee|u1ida|u1jo|u1kai|u1lu
set all_viewers_names=Bo Chan|Cy Ray|Dee Park|Ida Wu|Jo Bell|Kai Roe|Lu Fry

after 11
set all_editors_quid=
set all_editors_names=
set all_viewers_quid=
set all_viewers_names=

after 13
set all_viewers_quid=u1bo
set all_viewers_names=Bo Chan

file $win_synced\\budget.xlsx
set is_sync_file=true
set file_combo_id=b1
set is_internet_connected=true
set is_loading_data_from_server=false
set all_editors_quid=u1ann
set all_editors_names=Ann Lee
SCENARIO

(cd "$bin" && wine_run regsvr32 /s /n /i:user QSyncMSOfficeAddin.dll)
echo "registered per user: QelvoFilewellSync.OfficeAddin"

wine_run "$bin/syncsim.exe" --scenario "$(winpath "$out/sync-scenario.txt")" \
  --record "$(winpath "$out/sync-requests.txt")" --run-ms 240000 > "$out/syncsim-output.txt" 2>&1 &
sync_pid=$!
sleep 2

shot() { echo "screenshot $(winpath "$out/$1")"; }
# The simulated user waits for each state to reach the screen, looks at it
# (a screenshot), and at the end hides the overlay.
cat > "$out/word-script.txt" <<SCRIPT
wait 1000
open $win_synced\\report.docx
wait-for-text 20000 Qelvo Filewell
wait 500
$(shot word-1-loading.png)
wait-for-text 20000 No Internet Connection
wait 500
$(shot word-2-no-internet.png)
wait-for-text 20000 Another user is viewing this file
wait 500
$(shot word-3-viewing-only.png)
wait-for-text 20000 LIVE MEMBERS ( 4 )
wait 500
$(shot word-4-editing-4-members.png)
wait-for-text 20000 LIVE MEMBERS ( 12 )
wait 500
$(shot word-5-editing-12-members-scrolling.png)
wait-for-text 20000 No active collaborators
wait 500
$(shot word-6-safe-to-edit.png)
wait-for-text 20000 Another user is viewing this file
wait 500
click-button Hide
wait 4500
$(shot word-7-hidden.png)
close report.docx
wait 500
SCRIPT
wine_run "$office\\WINWORD.EXE" --script "$(winpath "$out/word-script.txt")" > "$out/word-output.txt" 2>&1 || true

cat > "$out/excel-script.txt" <<SCRIPT
wait 500
open $win_synced\\budget.xlsx
wait-for-text 20000 Another user is editing this file
wait 500
$(shot excel-editing.png)
close budget.xlsx
wait 500
SCRIPT
wine_run "$office\\EXCEL.EXE" --script "$(winpath "$out/excel-script.txt")" > "$out/excel-output.txt" 2>&1 || true

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
echo "---- screenshots of what the user saw ----"
ls -1 "$out"/*.png
