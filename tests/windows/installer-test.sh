#!/usr/bin/env bash
# The per-user MSI under Wine, against registration by hand:
#   - `msiexec /i … /qn` leaves, value for value, the registry that
#     `regsvr32 /n /i:user` leaves for the DLL in the same place;
#   - the simulated Word loads the add-in from where the MSI put it;
#   - installing twice, and later versions over this one, keep it so, and an
#     older package does not replace a newer one;
#   - `msiexec /x … /qn` leaves the registry as it was and no file behind.
# The profile is a lived-in one: each host's add-in list and the user's
# classes already hold another program's entries, which must stay untouched.
# usage: installer-test.sh BIN_DIR WXS
set -u
bin="$(cd "$1" && pwd)"
wxs="$(cd "$(dirname "$2")" && pwd)/$(basename "$2")"
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
: "${QSYNC_WINEPREFIX:=$here/../../build/windows/wineprefix}"
export WINEPREFIX="$QSYNC_WINEPREFIX" WINEDEBUG=-all
wine_run() { "$here/wine-run.sh" "$@"; }

clsid='{A1763C80-EE08-402F-9099-AF98401AA069}'
libid='{203E860C-97A0-4328-9B04-F87DA2DD09CE}'
iid='{2A582D20-9B8A-4D5E-AA4B-490C896C488E}'
progid='QelvoFilewellSync.OfficeAddin'
hosts=(Word Excel PowerPoint)
other_clsid='{0B1C2D3E-4F50-4617-8293-A4B5C6D7E8F9}'

user="${USER:-$(id -un)}"
[ -d "$WINEPREFIX/drive_c/users/$user" ] || user="$(basename "$(ls -d "$WINEPREFIX"/drive_c/users/*/AppData | grep -v Public | head -1 | xargs dirname)")"
company_dir="$WINEPREFIX/drive_c/users/$user/AppData/Local/Programs/Qelvo Filewell"
install_dir="$company_dir/Office Add-in"
win_dll="C:\\users\\$user\\AppData\\Local\\Programs\\Qelvo Filewell\\Office Add-in\\QSyncMSOfficeAddin.dll"
winpath() { echo "Z:${1//\//\\}"; }

work="$(mktemp -d)"
failures=0
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }
started=$(date +%s)

# Registry edits go through one .reg file each: every Wine process start
# costs about half a second.
reg_import() {  # reg_import LINES...: the lines of a .reg file's body
  { printf 'Windows Registry Editor Version 5.00\r\n\r\n'; printf '%s\r\n' "$@"; } >"$work/import.reg"
  wine_run reg import "$(winpath "$work/import.reg")" >/dev/null 2>&1
}
# The .reg lines that remove every key registration may write, whole, in
# both hives (Wine registers a per-user type library for the whole machine),
# and the other programs' entries of the lived-in profile.
our_key_removals() {
  local root key
  for root in HKEY_CURRENT_USER HKEY_LOCAL_MACHINE; do
    for key in "$progid" "$progid.1" "CLSID\\$clsid" "TypeLib\\$libid" "Interface\\$iid"; do
      echo "[-$root\\Software\\Classes\\$key]"
    done
  done
  for host in "${hosts[@]}"; do echo "[-HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\$host\\Addins\\$progid]"; done
}
other_program_removals() {
  for host in "${hosts[@]}"; do echo "[-HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\$host\\Addins\\Other.Addin]"; done
  echo '[-HKEY_CURRENT_USER\Software\Classes\Other.Document]'
  for key in CLSID TypeLib Interface; do echo "[-HKEY_CURRENT_USER\\Software\\Classes\\$key\\$other_clsid]"; done
}
installed_msi=""
cleanup() {
  [ -n "$installed_msi" ] && wine_run msiexec /x "$(winpath "$installed_msi")" /qn >/dev/null 2>&1
  mapfile -t lines < <(other_program_removals; our_key_removals)
  reg_import "${lines[@]}"
  rm -rf "$company_dir" "$work"
}
trap cleanup EXIT

# One line per key and per value ("key<TAB>value"), key names in lower case
# as the registry compares them: two states compare with diff.
normalise() {
  iconv -f UTF-16 -t UTF-8 | tr -d '\r' | awk '
    /^Windows Registry Editor/ || /^$/ { next }
    /^\[/ { key = tolower(substr($0, 2, length($0) - 2)); print key; next }
    { print key "\t" $0 }'
}
export_key() {
  if wine_run reg export "$1" "$(winpath "$work/export.reg")" /y >/dev/null 2>&1; then
    normalise <"$work/export.reg"
  fi
}
# Everything registration or the MSI may touch: the user's classes and the
# Office keys (the user's hive is read whole, one process instead of two, and
# cut down here; the whole of it stays in NAME.hkcu) and, with
# "with-machine", our keys among the machine's classes, where Wine's
# registration by hand puts the type library. The MSI's rows are all for the
# user, which the package itself shows (see the start).
snapshot() {  # snapshot NAME [with-machine]
  export_key HKCU >"$work/$1.hkcu"
  {
    grep -e '^hkey_current_user\\software\\classes' -e '^hkey_current_user\\software\\microsoft\\office' "$work/$1.hkcu"
    if [ "${2:-}" = with-machine ]; then
      export_key "HKLM\\Software\\Classes\\CLSID\\$clsid"
      export_key "HKLM\\Software\\Classes\\TypeLib\\$libid"
      export_key "HKLM\\Software\\Classes\\Interface\\$iid"
    fi
  } | LC_ALL=C sort >"$work/$1.txt"
  echo "  ($1 at $(($(date +%s) - started)) s)"
}
expect_same() {  # expect_same STATE_A STATE_B WHAT
  if ! diff -u "$work/$1.txt" "$work/$2.txt" >"$work/diff.txt"; then
    fail "$3"
    sed 's/^/    /' "$work/diff.txt"
  else
    echo "ok: $3"
  fi
}
msiexec_expect() {  # msiexec_expect EXPECTED_RC WHAT ARGS...
  local expected="$1" what="$2"
  shift 2
  wine_run msiexec "$@" /qn /l*v "$(winpath "$work/msiexec.log")" >/dev/null 2>&1
  local rc=$?
  # A process's exit code reaches Linux as its low byte: 1603 arrives as 67.
  if [ "$rc" -ne $((expected % 256)) ]; then
    fail "$what: msiexec returned $rc, expected $expected"
    tail -40 "$work/msiexec.log" 2>/dev/null | tr -d '\r' | sed 's/^/    /'
    return 1
  fi
  echo "ok: $what (msiexec $rc)"
}

# --- What the package says about itself, read on the Linux side.
# Word count bit 8 of the summary: no elevation needed; no ALLUSERS; and
# every registry row under HKEY_CURRENT_USER (root 1).
word_count=$(msiinfo suminfo "$bin/QSyncMSOfficeAddin.msi" 2>/dev/null | sed -n 's/^Source: \([0-9]*\).*/\1/p')
[ -n "$word_count" ] && [ $((word_count & 8)) -eq 8 ] || fail "the package asks for elevation (word count '$word_count')"
msiinfo export "$bin/QSyncMSOfficeAddin.msi" Property | grep -q '^ALLUSERS' && fail "the package sets ALLUSERS"
machine_rows=$(msiinfo export "$bin/QSyncMSOfficeAddin.msi" Registry | awk -F'\t' 'NR > 3 && $2 != 1' | wc -l)
[ "$machine_rows" -eq 0 ] || fail "$machine_rows registry rows of the package are not for the current user"
[ "$failures" -eq 0 ] && echo "ok: the package is per-user: no elevation, no ALLUSERS, HKEY_CURRENT_USER only"

# --- A clean, lived-in profile.
# One wineserver for the whole test rather than one per command; it ends
# itself 10 s after the last program, and holds none of ctest's pipes.
wineserver -p10 </dev/null >/dev/null 2>&1
mapfile -t lines < <(our_key_removals)
for host in "${hosts[@]}"; do
  lines+=("[HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\$host\\Addins\\Other.Addin]" '"LoadBehavior"=dword:00000002')
done
lines+=('[HKEY_CURRENT_USER\Software\Classes\Other.Document]' "@=\"Another program's document\""
  "[HKEY_CURRENT_USER\\Software\\Classes\\CLSID\\$other_clsid]" "@=\"Another program's class\""
  "[HKEY_CURRENT_USER\\Software\\Classes\\TypeLib\\$other_clsid\\1.0]" "@=\"Another program's library\""
  "[HKEY_CURRENT_USER\\Software\\Classes\\Interface\\$other_clsid]" "@=\"Another program's interface\"")
reg_import "${lines[@]}"
rm -rf "$company_dir"
snapshot before
# An earlier run that stopped half-way may have left the product installed.
if grep -qi 'ProductName.*Qelvo Filewell Sync' "$work/before.hkcu"; then
  wine_run msiexec /x "$(winpath "$bin/QSyncMSOfficeAddin.msi")" /qn >/dev/null 2>&1
  snapshot before
fi

# --- Registration by hand, with the DLL where the MSI puts it.
mkdir -p "$install_dir"
cp "$bin/QSyncMSOfficeAddin.dll" "$install_dir/"
wine_run regsvr32 /s /n /i:user "$win_dll" >/dev/null 2>&1 || fail "regsvr32 /n /i:user returned $?"
snapshot by_hand with-machine
# Back to the clean profile (unregistration itself is registration_test's).
wine_run regsvr32 /s /u /n /i:user "$win_dll" >/dev/null 2>&1 || fail "regsvr32 /u /n /i:user returned $?"
rm -rf "$company_dir"
# Wine's RegisterTypeLibForUser registers for the whole machine; Windows
# writes the same keys under the user's classes, where the MSI writes them.
sed 's/^hkey_local_machine\\software\\classes\\/hkey_current_user\\software\\classes\\/' "$work/by_hand.txt" |
  LC_ALL=C sort >"$work/by_hand_as_windows.txt"

# --- Installing.
msiexec_expect 0 "msiexec /i installs for the user" /i "$(winpath "$bin/QSyncMSOfficeAddin.msi")"
installed_msi="$bin/QSyncMSOfficeAddin.msi"
snapshot installed
expect_same by_hand_as_windows installed "the MSI writes exactly what regsvr32 /n /i:user writes"
if cmp -s "$install_dir/QSyncMSOfficeAddin.dll" "$bin/QSyncMSOfficeAddin.dll"; then
  echo "ok: the signed DLL is installed under %LOCALAPPDATA%\\Programs\\Qelvo Filewell\\Office Add-in"
else
  fail "no DLL, or another one, at $install_dir"
fi

# --- The simulated Word loads the add-in from there, as Word would.
printf 'wait 300\n' >"$work/word-script.txt"
office="C:\\Program Files\\Microsoft Office\\root\\Office16"
wine_run "$office\\WINWORD.EXE" --script "$(winpath "$work/word-script.txt")" >"$work/word.txt" 2>&1
loaded="officesim: $progid created through the classes view (ProgID $progid.1, class and server in HKCU) - $win_dll"
if grep -qxF "$loaded" <(tr -d '\r' <"$work/word.txt") &&
   grep -q "^officesim: $progid OnConnection returned 0x00000000" "$work/word.txt"; then
  echo "ok: the simulated Word loads the installed add-in and connects it"
else
  fail "the simulated Word did not load the installed add-in; it printed:"
  sed 's/^/    /' "$work/word.txt"
fi

# --- Installing the same package again changes nothing.
msiexec_expect 0 "msiexec /i a second time" /i "$(winpath "$bin/QSyncMSOfficeAddin.msi")"
snapshot installed_twice
expect_same installed installed_twice "a second install leaves the same registry"

# --- A later version replaces this one: 1.0.0.5 (Windows Installer reads
# only three fields of a version, to it the same as 1.0.0.4), then 1.0.1.0.
build_msi() {  # build_msi VERSION UPGRADE_BELOW OUTPUT
  (cd "$bin" && wixl -a x64 -D ProductVersion="$1" -D UpgradeBelow="$2" -D AddinDll=QSyncMSOfficeAddin.dll -o "$3" "$wxs") \
    >"$work/wixl.txt" 2>&1 || { fail "wixl could not build version $1"; cat "$work/wixl.txt"; }
}
# Windows Installer's own list of the user's products holds one of ours:
# the given package, not an older one beside it.
expect_only_product() {  # expect_only_product SNAPSHOT PACKAGE_NAME WHAT
  local ours
  grep '^hkey_current_user\\software\\microsoft\\installer\\products' "$work/$1.hkcu" >"$work/products.txt"
  ours=$(grep -c 'ProductName"="Qelvo Filewell Sync Add-in for Microsoft Office"' "$work/products.txt")
  if [ "$ours" -eq 1 ] && grep -q "PackageName\"=\"$2\"" "$work/products.txt"; then
    echo "ok: $3"
  else
    fail "$3: $ours products of ours are installed:"; grep -i 'ProductName\|PackageName' "$work/products.txt" | sed 's/^/    /'
  fi
}
build_msi 1.0.0.5 1.0.1 "$work/upgrade.msi"
msiexec_expect 0 "version 1.0.0.5 installs over 1.0.0.4" /i "$(winpath "$work/upgrade.msi")"
installed_msi="$work/upgrade.msi"
snapshot upgraded
expect_same installed upgraded "the upgrade leaves the same registry"
[ -f "$install_dir/QSyncMSOfficeAddin.dll" ] || fail "the upgrade left no DLL"
expect_only_product upgraded upgrade.msi "after the upgrade only 1.0.0.5 is installed"

build_msi 1.0.1.0 1.0.2 "$work/later.msi"
msiexec_expect 0 "version 1.0.1.0 installs over 1.0.0.5" /i "$(winpath "$work/later.msi")"
installed_msi="$work/later.msi"
# The older package refuses (1603, its launch condition) and changes nothing.
msiexec_expect 1603 "1.0.0.4 does not install over 1.0.1.0" /i "$(winpath "$bin/QSyncMSOfficeAddin.msi")"
# Stopped by the launch condition that says "A newer version … is already
# installed" (Windows logs the text; Wine only the action's failure), before
# anything was removed or written.
grep -q "LaunchConditions\. Return value [^1]" "$work/msiexec.log" || fail "the downgrade was not refused by its launch condition"
grep -q "RemoveExistingProducts\|InstallFiles\|WriteRegistryValues" "$work/msiexec.log" && fail "the refused downgrade went on to change the installation"
snapshot refused
expect_only_product refused later.msi "after the refused downgrade only 1.0.1.0 is installed"

# --- Uninstalling.
msiexec_expect 0 "msiexec /x uninstalls" /x "$(winpath "$work/later.msi")" && installed_msi=""
snapshot uninstalled
expect_same before uninstalled "msiexec /x leaves no key and no value of ours, and the others' entries as they were"
if [ -e "$company_dir" ]; then
  fail "msiexec /x left files behind:"; find "$company_dir" | sed 's/^/    /'
else
  echo "ok: msiexec /x leaves no file and no folder of ours"
fi

echo "installer test took $(($(date +%s) - started)) s"
[ "$failures" -eq 0 ] && echo "1 passed, 0 failed" || echo "0 passed, 1 failed"
exit $((failures > 0))
