#!/usr/bin/env bash
# How long the add-in keeps Office waiting at start-up and shutdown while
# the sync app is healthy, hung (reads each request and never answers) or
# absent: the durations of OnConnection and OnDisconnection inside the
# simulated Word, median of 5 starts each, as fractions of the limits past
# which Office flags a COM add-in as slow (1000 ms at start-up, 500 ms at
# shutdown). Word runs 1.5 s each time, so the update thread's first
# exchange is under way (or, with a hung sync app, stuck) when it exits.
# Run after building the windows preset (QSyncMSOfficeAddin, officesim,
# syncsim): scripts/with-display.sh bench/watchdog-timing.sh
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bin="$root/build/windows/bin"
"$root/tests/windows/prepare-prefix.sh" "$bin" >/dev/null
run() { "$root/tests/windows/wine-run.sh" "$@"; }
word='C:\Program Files\Microsoft Office\root\Office16\WINWORD.EXE'
script="$(mktemp --suffix=.txt)"
printf 'wait 1500\n' >"$script"
script_win="Z:${script//\//\\}"
(cd "$bin" && run regsvr32 /s /n /i:user QSyncMSOfficeAddin.dll)

median() { printf '%s\n' "$@" | sort -n | sed -n 3p; }
fraction() { awk "BEGIN{printf \"%.3f\", $1/$2}"; }

# One row: with $2 = serve, a sync app started with the arguments $3;
# five starts of Word.
measure() {
  local name="$1" serve="$2" arguments="$3" syncsim=""
  if [ "$serve" = serve ]; then
    # shellcheck disable=SC2086
    (cd "$bin" && exec "$root/tests/windows/wine-run.sh" syncsim.exe --run-ms 300000 $arguments >/dev/null 2>&1) &
    syncsim=$!
    sleep 3  # until it serves the pipe
  fi
  local connect=() disconnect=() out
  for _ in 1 2 3 4 5; do
    out=$(run "$word" --script "$script_win" 2>&1)
    connect+=("$(echo "$out" | sed -n 's/.*OnConnection returned .* in \([0-9.]*\) ms.*/\1/p')")
    disconnect+=("$(echo "$out" | sed -n 's/.*OnDisconnection returned .* in \([0-9.]*\) ms.*/\1/p')")
  done
  if [ -n "$syncsim" ]; then
    kill "$syncsim" 2>/dev/null || true
    wait "$syncsim" 2>/dev/null || true
  fi
  local mc md
  mc=$(median "${connect[@]}")
  md=$(median "${disconnect[@]}")
  printf '| %-8s | %8s ms | %s | %8s ms | %s | %s | %s |\n' "$name" "$mc" "$(fraction "$mc" 1000)" "$md" \
    "$(fraction "$md" 500)" "${connect[*]}" "${disconnect[*]}"
}

echo "| sync app | OnConnection median | of 1000 ms | OnDisconnection median | of 500 ms | connection runs (ms) | disconnection runs (ms) |"
echo "|---|---|---|---|---|---|---|"
measure healthy serve ""
measure hung serve "--never-answer"
measure absent none ""
(cd "$bin" && run regsvr32 /s /u /n /i:user QSyncMSOfficeAddin.dll)
rm -f "$script"
