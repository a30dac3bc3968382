#!/usr/bin/env bash
# The DLL exports exactly COM's five entry points and imports only DLLs
# that ship with Windows (no MinGW runtime DLL beside it).
set -eu
dll="$1"
objdump=x86_64-w64-mingw32-objdump
exports=$($objdump -p "$dll" | awk '/\[Ordinal\/Name Pointer\] Table/{t=1;next} t&&/^[ \t]*\[/{print $NF} t&&/^$/{t=0}')
expected="DllCanUnloadNow DllGetClassObject DllInstall DllRegisterServer DllUnregisterServer"
if [ "$(echo $exports)" != "$expected" ]; then echo "exports: $(echo $exports) (expected $expected)"; exit 1; fi
allowed=" ADVAPI32.dll COMCTL32.dll gdiplus.dll GDI32.dll KERNEL32.dll msvcrt.dll OLEACC.dll ole32.dll OLEAUT32.dll SHELL32.dll SHLWAPI.dll USER32.dll "
status=0
for dll_name in $($objdump -p "$dll" | awk '/DLL Name:/{print $3}'); do
  case "$allowed" in *" $dll_name "*) ;; *) echo "imports $dll_name, which Windows does not ship"; status=1;; esac
done
[ "$status" -eq 0 ] && echo "exports: $expected; imports: system DLLs only"
exit $status
