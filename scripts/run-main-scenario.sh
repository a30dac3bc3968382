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
# The tests keep Wine from raising each window it activates itself (with no
# window manager under Xvfb that saves them a wait at every hide); the demo
# lets the X server keep the overlays above the Office window that owns
# them, as Windows does, so the screenshots show what a user sees.
wine_run reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d Y /f >/dev/null 2>&1
winpath() { echo "Z:${1//\//\\}"; }

user_dir="$(ls -d "$WINEPREFIX"/drive_c/users/*/AppData/Roaming | grep -v Public | head -1)"
user_dir="${user_dir%/AppData/Roaming}"
user="$(basename "$user_dir")"
logs="$user_dir/AppData/Roaming/QelvoFilewell/logs"

# A few colleagues have avatars, as the sync app would have fetched them
# (named by their identifier less its first two characters); the others
# get the default one.
avatars="$user_dir/AppData/Roaming/QelvoFilewell/avatar"
mkdir -p "$avatars"
for person in bo:#2b7bb9 ann:#c0392b cy:#27ae60 dee:#8e44ad; do
  convert -size 40x40 xc:white -fill "${person#*:}" -draw "circle 19.5,19.5 19.5,1" -fill white \
    -draw "circle 19.5,15 19.5,8" -draw "ellipse 19.5,36 12,10 180,360" -strip "png:$avatars/${person%%:*}"
done
rm -f "$logs"/msoffice_addinlog*.txt

# The user's synced folder with a few documents in it.
synced="$user_dir/Filewell"
rm -rf "$synced"
mkdir -p "$synced"
for name in report.docx notes.docx download.docx edited.docx conflict.docx renamed.docx moved.docx deleted.docx \
            readonly.docx failing.docx budget.xlsx deck.pptx; do
  printf 'content\n' > "$synced/$name"
done
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

# A synced document that stays quietly open, so Word does not quit when
# the add-in closes the others.
file $win_synced\\notes.docx
set is_sync_file=true
set file_combo_id=n1
set is_loading_data_from_server=false

# A newer version is on the web and already downloaded; the user reloads.
file $win_synced\\download.docx
set is_sync_file=true
set file_combo_id=d1
set is_loading_data_from_server=false
set last_modified_by_quid=u1bo
set last_modified_by=Bo Chan
set last_modified_time=2026-11-23 10:12
set is_download_present=Downloaded

# The same while the user has unsaved changes, which they keep as a copy.
file $win_synced\\edited.docx
set is_sync_file=true
set file_combo_id=d2
set is_loading_data_from_server=false
set is_download_present=Downloaded

file $win_synced\\conflict.docx
set is_sync_file=true
set file_combo_id=c1
set is_loading_data_from_server=false
set is_conflict_present=true

file $win_synced\\renamed.docx
set is_sync_file=true
set file_combo_id=r1
set is_loading_data_from_server=false
set is_rename_present=true
set src=renamed.docx
set dest=Quarterly report for the board (final, reviewed by finance and legal).docx

# Moved with its folder: the file must be closed before it can follow.
file $win_synced\\moved.docx
set is_sync_file=true
set file_combo_id=m1
set is_loading_data_from_server=false
set is_move_present=true
set is_folder_move_present=true
set src=C:\\Users\\$user\\Filewell\\Drafts
set dest=C:\\Users\\$user\\Filewell\\Projects\\2026\\Board meetings\\November

file $win_synced\\deleted.docx
set is_sync_file=true
set file_combo_id=x1
set is_loading_data_from_server=false
set is_delete_present=true

# Renamed on the web while opened read-only with changes: the save cannot be made.
file $win_synced\\readonly.docx
set is_sync_file=true
set file_combo_id=o1
set is_loading_data_from_server=false
set is_rename_present=true
set src=readonly.docx
set dest=readonly (approved).docx

# Moved on the web while the disk refuses every save.
file $win_synced\\failing.docx
set is_sync_file=true
set file_combo_id=f1
set is_loading_data_from_server=false
set is_move_present=true
set src=C:\\Users\\$user\\Filewell
set dest=C:\\Users\\$user\\Filewell\\Archive

file $win_synced\\budget.xlsx
set is_sync_file=true
set file_combo_id=b1
set is_loading_data_from_server=false
set is_conflict_present=true

file $win_synced\\deck.pptx
set is_sync_file=true
set file_combo_id=p1
set is_loading_data_from_server=false
set is_rename_present=true
set src=deck.pptx
set dest=deck (customer version).pptx
SCENARIO

(cd "$bin" && wine_run regsvr32 /s /n /i:user QSyncMSOfficeAddin.dll)
echo "registered per user: QelvoFilewellSync.OfficeAddin"

wine_run "$bin/syncsim.exe" --scenario "$(winpath "$out/sync-scenario.txt")" \
  --record "$(winpath "$out/sync-requests.txt")" --run-ms 480000 > "$out/syncsim-output.txt" 2>&1 &
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
# The web's changes, one document at a time.
open $win_synced\\notes.docx
open $win_synced\\download.docx
wait-for-text 20000 Download latest version
wait 500
$(shot word-8-download.png)
click-button Download latest version
wait 300
$(shot word-9-downloading.png)
wait-for-text 20000 Reload
wait 500
$(shot word-10-reload.png)
click-button Reload
wait 1000
open $win_synced\\edited.docx
type edited.docx
wait-for-text 20000 Save my changes as a separate copy
wait 500
$(shot word-11-download-unsaved-changes.png)
click-button Save my changes as a separate copy
click-button Download latest version
wait-for-text 20000 Reload
click-button Reload
wait-for-text 20000 Save a copy & Reload
wait 500
$(shot word-12-reload-save-copy-or-discard.png)
click-button Save a copy & Reload
wait 1000
open $win_synced\\conflict.docx
wait-for-text 20000 Resolve conflict
wait 500
$(shot word-13-conflict.png)
click-button Resolve conflict
wait-for-text 20000 Continue
wait 500
$(shot word-14-conflict-continue.png)
click-button Continue
wait 1000
open $win_synced\\renamed.docx
wait-for-text 20000 This file has been renamed
wait 500
$(shot word-15-renamed.png)
click-button Reload
wait-for-text 20000 Continue
wait 500
$(shot word-16-renamed-continue.png)
click-button Continue
wait 1000
open $win_synced\\moved.docx
wait-for-text 20000 This file has been moved to a new location
wait 500
$(shot word-17-moved-close-first.png)
close moved.docx
wait 500
open $win_synced\\deleted.docx
wait-for-text 20000 This file has been deleted
wait 500
$(shot word-18-deleted.png)
close deleted.docx
wait 500
open-readonly $win_synced\\readonly.docx
type readonly.docx
wait-for-text 20000 This file has been renamed
click-button Reload
wait-for-text 20000 Save & Continue
wait 500
$(shot word-19-renamed-save-or-discard.png)
click-button Save & Continue
wait-for-text 20000 You can't make changes to this file, because the file has a read-only permission level.
wait 500
$(shot word-20-error-read-only.png)
prompt-answer discard
close readonly.docx
wait 500
open $win_synced\\failing.docx
type failing.docx
fail-saves failing.docx
wait-for-text 20000 This file has been moved to a new location
click-button Reload
wait-for-text 20000 Save & Continue
click-button Save & Continue
wait-for-text 20000 An error occurred while saving the file. Please ensure you have sufficient privileges and try again.
wait 500
$(shot word-21-error-save.png)
close failing.docx
wait 500
report
SCRIPT
wine_run "$office\\WINWORD.EXE" --script "$(winpath "$out/word-script.txt")" > "$out/word-output.txt" 2>&1 || true

# Excel: a conflict on a workbook with unsaved changes, resolved by
# discarding them.
cat > "$out/excel-script.txt" <<SCRIPT
wait 500
open $win_synced\\budget.xlsx
type budget.xlsx
wait-for-text 20000 Resolve conflict
wait 500
$(shot excel-conflict.png)
click-button Resolve conflict
wait-for-text 20000 Discard & Continue
wait 500
$(shot excel-conflict-save-or-discard.png)
click-button Discard & Continue
wait 1000
report
SCRIPT
wine_run "$office\\EXCEL.EXE" --script "$(winpath "$out/excel-script.txt")" > "$out/excel-output.txt" 2>&1 || true

# PowerPoint: a presentation renamed on the web, reloaded.
cat > "$out/powerpoint-script.txt" <<SCRIPT
wait 500
open $win_synced\\deck.pptx
wait-for-text 20000 This file has been renamed
wait 500
$(shot powerpoint-renamed.png)
click-button Reload
wait-for-text 20000 Continue
click-button Continue
wait 1000
report
SCRIPT
wine_run "$office\\POWERPNT.EXE" --script "$(winpath "$out/powerpoint-script.txt")" > "$out/powerpoint-output.txt" 2>&1 || true

kill "$sync_pid" >/dev/null 2>&1 || true
wait "$sync_pid" 2>/dev/null || true

# What a sync-app builder would see: syncprobe checks, rule by rule, a
# simulated sync app that answers for two documents as the real one should.
cat > "$out/syncprobe-scenario.txt" <<'SCENARIO'
file C:\probe\report.docx
set is_sync_file=true
set file_combo_id=k3v9x
set is_internet_connected=true
set is_loading_data_from_server=false
set is_download_present=Already Up-to-date
set all_viewers_quid=u1|u2
set all_viewers_names=Ann Lee|Bo Chan
file C:\probe\budget.xlsx
set is_sync_file=false
SCENARIO
# A pipe of its own: the scenario's sync app may still be winding down.
probe_pipe='\\.\pipe\FilewellSync-MSOfficeIntegration-syncprobe'
wine_run "$bin/syncsim.exe" --pipe "$probe_pipe" --scenario "$(winpath "$out/syncprobe-scenario.txt")" --run-ms 60000 \
  > "$out/syncprobe-syncsim-output.txt" 2>&1 &
probe_sync_pid=$!
sleep 3
probe_status=0
wine_run "$bin/syncprobe.exe" --pipe "$probe_pipe" --file 'C:\probe\report.docx' --file 'C:\probe\budget.xlsx' \
  > "$out/syncprobe-report.txt" 2>&1 || probe_status=$?
kill "$probe_sync_pid" >/dev/null 2>&1 || true
wait "$probe_sync_pid" 2>/dev/null || true
(cd "$bin" && wine_run regsvr32 /s /u /n /i:user QSyncMSOfficeAddin.dll)

cp "$logs/msoffice_addinlog.txt" "$out/"
echo "---- simulated Word ----"
cat "$out/word-output.txt"
echo "---- simulated Excel ----"
cat "$out/excel-output.txt"
echo "---- simulated PowerPoint ----"
cat "$out/powerpoint-output.txt"
echo "---- requests the sync app received ($out/sync-requests.txt) ----"
cat "$out/sync-requests.txt"
echo "---- add-in log ($out/msoffice_addinlog.txt) ----"
cat "$out/msoffice_addinlog.txt"
echo "---- syncprobe against the simulated sync app ($out/syncprobe-report.txt, exit $probe_status) ----"
cat "$out/syncprobe-report.txt"
echo "---- screenshots of what the user saw ----"
ls -1 "$out"/*.png
