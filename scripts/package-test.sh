#!/bin/bash
# package-test.sh runs the installer of build/package under Wine: a silent installation, the entry among the installed
# programs, and a silent removal, after which only Cleanup.txt is left. Exit status: 0 only if all is as expected.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
prefix=$(mktemp -d "$root/build/wine/run-XXXXXX") || exit 1
cleanup() {
    "$root/scripts/stop-prefix.sh" "$prefix"
    rm -rf "$prefix"
}
trap cleanup EXIT
fail() {
    printf 'package-test: %s\n' "$*" >&2
    exit 1
}
run() { HOME="$root/build/wine/home" WINEPREFIX="$prefix" timeout 120 "$root/scripts/wine-run.sh" "$@"; }
# All files except the folder for temporary ones, where the installer keeps the copy of itself that is running.
files() { (cd "$prefix/drive_c" && find . -path '*/Temp/*' -prune -o -print | LC_ALL=C sort); }

"$root/scripts/clone-prefix.sh" "$prefix"
cp "$root"/build/package/*-setup.exe "$prefix/drive_c/setup.exe"
before=$(files)
run 'C:\setup.exe' /S '/D=C:\Product' || fail "the installation failed"
run 'C:\Product\bin\vlhost.exe' info || fail "the plug-in does not answer"
key='HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\VLOnlineIDs'
run reg query "$key" /v QuietUninstallString || fail "no entry among the installed programs"
run 'C:\Product\bin\VLOnlineIDs-uninstall.exe' /S || fail "the removal failed"
# The copy that does the work runs on after the uninstaller has ended.
for _ in $(seq 100); do
    [ -e "$prefix/drive_c/Product/bin" ] || break
    sleep 0.2
done
left=$(diff <(printf '%s\n' "$before") <(files))
[ "$left" = "$(printf '1a2,3\n> ./Product\n> ./Product/Cleanup.txt')" ] || fail "left behind: $left"
run reg query "$key" >/dev/null 2>&1 && fail "the entry is still there"
run reg query 'HKLM\SOFTWARE\Veltrano' >/dev/null 2>&1 && fail "registry keys are still there"
echo "package-test: installed, answered, removed"
