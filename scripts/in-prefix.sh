#!/bin/sh
# in-prefix.sh PROGRAM [ARGUMENT...] runs a Windows program in a fresh clone of the base prefix and removes the
# clone afterwards. Exit status: the program's.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/base-prefix.sh" || exit 1
prefix=$(mktemp -d "$root/build/wine/run-XXXXXX") || exit 1
cleanup() {
    "$root/scripts/stop-prefix.sh" "$prefix"
    rm -rf "$prefix"
}
trap cleanup EXIT
trap 'exit 143' TERM INT HUP
"$root/scripts/clone-prefix.sh" "$prefix"
HOME="$root/build/wine/home" WINEPREFIX="$prefix" "$root/scripts/wine-run.sh" "$@"
