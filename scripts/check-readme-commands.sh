#!/usr/bin/env bash
# Checks that every command README.md shows in a ```sh block still runs, so
# the README cannot go stale: scripts must exist and print their usage for
# --help (exit 0, no work done), presets must exist, Windows programs must be
# built and print their usage for --help under Wine, any other command must
# be installed. Run by scripts/test.sh after the builds; takes seconds.
#   scripts/check-readme-commands.sh [--under-wine] [README]
# Windows programs are checked in their image (built, carrying a usage text)
# unless --under-wine runs each with --help, which costs seconds per program
# on a busy machine (the Windows tests run them anyway).
if [ "${1:-}" = "--help" ]; then
  cat <<'USAGE'
usage: scripts/check-readme-commands.sh [--help] [--under-wine] [README]
  checks every command in the README's ```sh blocks without running its work: scripts must
  print usage for --help, presets must exist, Windows programs must be built and carry a usage
  text (--under-wine: must print it for --help under Wine), other commands must be installed
USAGE
  exit 0
fi
under_wine=0
if [ "${1:-}" = "--under-wine" ]; then under_wine=1; shift; fi
set -u
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
readme="${1:-README.md}"
bin="build/windows/bin"
export QSYNC_WINEPREFIX="${QSYNC_WINEPREFIX:-$root/build/windows/wineprefix}"
failures=0
checked=0
fail() { echo "FAIL $readme:$line: $*"; failures=$((failures + 1)); }

# Prints usage for --help and exits 0 (a script or, through Wine, a program).
prints_usage() {
  local output
  output=$("$@" --help 2>&1) || return 1
  echo "$output" | grep -qi "usage"
}

# A console program under Wine in the tests' prefix, without a screen: a
# program that only prints its usage opens no window.
wine_console() {
  WINEPREFIX="$QSYNC_WINEPREFIX" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" DISPLAY="" wine "$@"
}

# The simulated Office plays the host its file name names; the README shows
# it under Office's names.
windows_program() {
  case "$(basename "$1")" in
    WINWORD.EXE|EXCEL.EXE|POWERPNT.EXE|OUTLOOK.EXE) echo "$bin/officesim.exe" ;;
    *) if [ -f "$1" ]; then echo "$1"; else echo "$bin/$(basename "$1")"; fi ;;
  esac
}

check_command() {
  # Leading VAR=value assignments belong to the environment.
  while [ $# -gt 0 ] && [[ "$1" =~ ^[A-Za-z_][A-Za-z0-9_]*= ]]; do shift; done
  [ $# -gt 0 ] || return 0
  checked=$((checked + 1))
  local first="$1"
  case "$first" in
    bash|sh) shift; check_command "$@" ;;
    cmake|ctest)
      local preset="" build=""
      for word in "$@"; do
        [ "$build" = next ] && preset="$word" && build=""
        [ "$word" = "--preset" ] && build=next
      done
      [ -n "$preset" ] || { fail "$* names no preset"; return; }
      local list
      if [ "$first" = ctest ]; then list=$(ctest --list-presets 2>/dev/null)
      elif [ "${2:-}" = "--build" ]; then list=$(cmake --build --list-presets 2>/dev/null)
      else list=$(cmake --list-presets 2>/dev/null); fi
      echo "$list" | grep -q "\"$preset\"" || fail "$first has no such preset: $preset" ;;
    *.sh)
      if [ ! -f "$first" ]; then fail "no such script: $first"; return; fi
      prints_usage bash "$first" || fail "$first --help does not print its usage and exit 0"
      # Wrappers run the rest of the line: check that too.
      case "$(basename "$first")" in
        with-display.sh|wine-run.sh) shift; check_command "$@" ;;
      esac ;;
    *.exe|*.EXE)
      local program
      program=$(windows_program "$first")
      if [ ! -f "$program" ]; then fail "$first is not built ($program): build the windows preset first"; return; fi
      if [ "$under_wine" = 0 ]; then
        grep -aq "usage: " "$program" || fail "$first ($program) carries no usage text"
        return
      fi
      if [ ! -f "$QSYNC_WINEPREFIX/system.reg" ]; then fail "no Wine prefix to run $first in: run the Windows tests first"; return; fi
      prints_usage wine_console "$program" || fail "$first --help does not print its usage and exit 0 under Wine" ;;
    *) command -v "$first" >/dev/null || fail "$first is not installed" ;;
  esac
}

# Each line of each ```sh block, comments cut, split at && ; and |.
while IFS= read -r entry; do
  line="${entry%%:*}"
  text="${entry#*:}"
  text="${text%%#*}"
  text="${text//&&/;}"
  text="${text//|/;}"
  IFS=';' read -ra commands <<<"$text"
  for command in "${commands[@]}"; do
    read -ra words <<<"$command"
    check_command "${words[@]}"
  done
done < <(awk '/^```sh[[:space:]]*$/ { inside = 1; next } /^```/ { inside = 0; next } inside { print NR ":" $0 }' "$readme")

echo "README commands: $checked checked, $failures failed"
[ "$failures" -eq 0 ]
