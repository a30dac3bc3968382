#!/usr/bin/env bash
# The scenario itself, run inside with-display.sh.
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bin="$root/build/windows/bin"
out="$root/build/main-job"
mkdir -p "$out"
"$root/tests/windows/prepare-prefix.sh" "$bin" >/dev/null
export WINEPREFIX="$QSYNC_WINEPREFIX" WINEDEBUG=-all
wine_run() { "$root/tests/windows/wine-run.sh" "$@"; }

appdata="$(ls -d "$WINEPREFIX"/drive_c/users/*/AppData/Roaming | grep -v Public | head -1)"
logs="$appdata/QelvoFilewell/logs"
rm -f "$logs"/msoffice_addinlog*.txt

(cd "$bin" && wine_run regsvr32 /s /n /i:user QSyncMSOfficeAddin.dll)
echo "registered per user: QelvoFilewellSync.OfficeAddin"

cat > "$out/word-script.txt" <<'SCRIPT'
# Word runs for a while with the add-in loaded, then the user quits.
wait 6000
SCRIPT
word="C:\\Program Files\\Microsoft Office\\root\\Office16\\WINWORD.EXE"
wine_run "$word" --script "Z:${out//\//\\}\\word-script.txt" > "$out/officesim-output.txt" 2>&1 &
host_pid=$!
sleep 4
import -window root "$out/word-running.png"
wait "$host_pid" || true

cat "$out/officesim-output.txt"
cp "$logs/msoffice_addinlog.txt" "$out/"
echo "---- add-in log ($out/msoffice_addinlog.txt) ----"
cat "$logs/msoffice_addinlog.txt"
echo "---- screenshot: $out/word-running.png ----"
