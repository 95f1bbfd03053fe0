#!/bin/bash
# package-test.sh tries what make package made, under Wine: the installer and the package for Windows Installer, each over
# an older version, into a machine that has something of its own in the same places; the plug-in answers and takes a
# backup; after the removal all is as before, except for Cleanup.txt, which lists what belongs to users. Then the Linux
# tools and the lists. Exit status: 0 only if all is as expected.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
made="$root/build/package"
work=$(mktemp -d "$root/build/wine/run-XXXXXX") || exit 1
prefix="$work/prefix"
cleanup() {
    "$root/scripts/stop-prefix.sh" "$prefix"
    rm -rf "$work"
}
trap cleanup EXIT
fail() {
    printf 'package-test: %s\n' "$*" >&2
    exit 1
}
run() { HOME="$root/build/wine/home" WINEPREFIX="$prefix" timeout 120 "$root/scripts/wine-run.sh" "$@"; }

# state NAME: all files with their checksums, and the values of all programs in the registry. Left out are the folder for
# temporary files, which an uninstaller runs from, and what Windows Installer notes for itself.
state() {
    "$root/scripts/stop-prefix.sh" "$prefix"
    (cd "$prefix/drive_c" && find . \( -path '*/Temp/*' -o -path './windows/Installer' \) -prune -o -print | sort |
        while read -r path; do [ -d "$path" ] && echo "$path" || sha256sum "$path"; done) >"$work/$1"
    awk '/^\[/ { key = $1; next } /^["@].*=/ && key ~ /^\[Software/ && key !~ /CurrentVersion\\\\Installer/ { print key, $0 }' \
        "$prefix/system.reg" >>"$work/$1"
}

# try NAME FOLDER: install-old, install-new and remove are functions that do it.
try() {
    rm -rf "$prefix"
    "$root/scripts/clone-prefix.sh" "$prefix"
    cp "$made"/*-setup.exe "$made"/*.msi "$prefix/drive_c/"
    mkdir "$prefix/drive_c/old"
    cp "$work"/old/*-setup.exe "$work"/old/*.msi "$prefix/drive_c/old/"
    # Somebody else's.
    echo foreign >"$prefix/drive_c/windows/system32/VLFPApi.dll"
    run reg add 'HKLM\SOFTWARE\Veltrano\Other' /v Kept /d foreign >/dev/null
    state before
    install-old || fail "$1: installing the older version failed"
    install-new || fail "$1: installing over it failed"
    run "$2\\bin\\vlhost.exe" info >/dev/null || fail "$1: the plug-in does not answer"
    run "$2\\bin\\vlhost.exe" status >/dev/null || fail "$1: the plug-in has no status"
    [ "$(run reg query 'HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall' /s | grep -c 'DisplayVersion')" = 1 ] ||
        fail "$1: not one entry among the installed programs"
    remove || fail "$1: the removal failed"
    state after
    diff "$work/before" "$work/after" | grep '^[<>]' >"$work/left"
    grep -vE 'Cleanup\.txt$|^> [.]/Product( Folder)?$' "$work/left" && fail "$1: the machine is not as it was"
    grep -q 'Cleanup\.txt$' "$work/left" || fail "$1: no Cleanup.txt is left"
    echo "package-test: $1: installed over an older version, answered, removed"
}

VERSION=0.9.0 OUTPUT="$work/old" "$root/scripts/package.sh" >/dev/null || fail "the older version can't be made"
(cd "$made" && sha256sum -c --quiet SHA256SUMS) || fail "the checksums are wrong"
"$root/scripts/sbom.py" check "$made"/*.spdx.json || fail "the list of components is not valid"

# The installer takes the rest of its command line as the folder, without quotation marks.
install-old() { run "C:\\old\\$(basename "$work"/old/*-setup.exe)" /S '/D=C:\Product'; }
install-new() { run "C:\\$(basename "$made"/*-setup.exe)" /S '/D=C:\Product'; }
remove() {
    run 'C:\Product\bin\VLOnlineIDs-uninstall.exe' /S || return 1
    for _ in $(seq 100); do # the copy that does the work runs on after the uninstaller has ended
        [ -e "$prefix/drive_c/Product/bin" ] || return 0
        sleep 0.2
    done
    return 1
}
try installer 'C:\Product'

install-old() {
    run msiexec /i "C:\\old\\$(basename "$work"/old/*.msi)" /qn 'INSTALLDIR=C:\Product Folder' STANDINS=none &&
        [ ! -e "$prefix/drive_c/Product Folder/bin/VloSet.dll" ]
}
install-new() { run msiexec /i "C:\\$(basename "$made"/*.msi)" /qn 'INSTALLDIR=C:\Product Folder'; }
remove() { run msiexec /x "C:\\$(basename "$made"/*.msi)" /qn; }
try 'Windows Installer' 'C:\Product Folder'

tar -xJf "$made"/vltools-*.tar.xz -C "$work" || fail "the archive of the Linux tools can't be read"
"$work"/vltools-*/vlbackup info "$root/examples/samples/first.vlb" >/dev/null || fail "vlbackup does not run"
"$work"/vltools-*/vltrace --help >/dev/null || fail "vltrace does not run"
echo "package-test: the Linux tools run"
