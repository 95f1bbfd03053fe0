#!/bin/sh
# package.sh makes build/package: a zip archive of build/dist, and an installer that does what install.cmd does.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
version=$(sed -n 's/^project(VLOnlineIDs VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
out="$root/build/package"
name="VLOnlineIDs-$version"
rm -rf "$out"
mkdir -p "$out/$name"
cp -R "$root/build/dist/." "$out/$name/"
cp "$root/README.md" "$root/CHANGELOG.md" "$out/$name/"
cp -R "$root/docs" "$out/$name/docs"
(cd "$out" && zip -q -r -X "$name.zip" "$name")
makensis -V2 -NOCD "-DVERSION=$version" "-DSOURCE=$out/$name" "-DOUTPUT=$out/$name-setup.exe" \
    "$root/packaging/installer.nsi"
rm -rf "${out:?}/$name"
ls -l "$out"
