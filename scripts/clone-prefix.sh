#!/bin/sh
# clone-prefix.sh TARGET makes a prefix of its own from the base prefix: own registry, own files, own objects.
# The big, unchanging files are hard links: never write to one of them in place.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
base="$root/build/wine/base"
mkdir -p "$1"
# Without the time stamp the clone would update itself for seconds; a copied server socket would reach the base.
cp -a "$base"/*.reg "$base/.update-timestamp" "$base/dosdevices" "$1/"
cp -al "$base/drive_c" "$1/drive_c"
rm -rf "$1/drive_c/users"
cp -a "$base/drive_c/users" "$1/drive_c/users"
