#!/bin/sh
# package.sh makes build/package from build/dist: a zip archive for Windows, the same as an installer and as a package for
# Windows Installer, the Linux tools, what integrators build with, the debug symbols, a list of all that is inside (SPDX),
# and checksums. Nothing has debug symbols except their own archive; times are the commit's.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
version=${VERSION:-$(sed -n 's/^project(VLOnlineIDs VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")}
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git -C "$root" log -1 --format=%ct 2>/dev/null || date +%s)}
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C
out=${OUTPUT:-"$root/build/package"}
name="VLOnlineIDs-$version"
tools="vltools-$version"
sdk="$name-sdk"
symbols="$name-symbols"
rm -rf "$out"
mkdir -p "$out/$name" "$out/$tools" "$out/$symbols"
cd "$out"
cp -R "$root/build/dist/." "$name/"
cp -R "$root/build/sdk" "$sdk"
cp -R "$root/examples" "$sdk/examples"
for file in vlbackup vltrace share; do
    [ ! -e "$name/$file" ] || mv "$name/$file" "$tools/"
done
for folder in "$name" "$tools" "$sdk"; do
    cp -R "$root"/*.md "$root/LICENSE" "$root/docs" "$folder/"
    mkdir -p "$folder/examples"
    cp -R "$root/examples/samples" "$folder/examples/"
    "$root/scripts/check-docs.py" --package "$folder"
    [ "$folder" = "$sdk" ] || "$root/scripts/sbom.py" notices "$folder"
done

# separate PREFIX FILE: the symbols of FILE go beside, and FILE names them for the debugger.
separate() {
    debug="$symbols/$(basename "$2").debug"
    "$1objcopy" --only-keep-debug "$2" "$debug"
    "$1strip" --strip-all "$2"
    (cd "$symbols" && "$1objcopy" "--add-gnu-debuglink=$(basename "$debug")" "../$2")
}
for file in "$name"/*.dll "$name"/*.exe "$name"/standins/*.exe "$name"/standins/V*.dll; do
    separate x86_64-w64-mingw32- "$file"
done
for file in "$tools/vlbackup" "$tools/vltrace"; do
    separate "" "$file"
done
find . -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +

for folder in "$name" "$sdk" "$symbols"; do
    find "$folder" | sort | zip -q -X -@ "$folder.zip"
done
tar --sort=name --owner=0 --group=0 --numeric-owner -cJf "$tools.tar.xz" "$tools"
makensis -V2 -NOCD "-DVERSION=$version" "-DSOURCE=$out/$name" "-DOUTPUT=$out/$name-setup.exe" \
    "$root/packaging/installer.nsi"

# The compiler of the other package looks for files below the folder of its sources.
cp "$root/packaging/installer.wxs" .
find "$name" -type f | sort |
    wixl-heat --prefix "$name/" --component-group Package --var var.SOURCE --directory-ref PACKAGEDIR --win64 >files.wxs
setup=$(sed -n 's|.*File Id="\([^"]*\)".*/vlsetup.exe".*|\1|p' files.wxs)
product=$(python3 -c 'import sys, uuid; print(uuid.uuid5(uuid.NAMESPACE_URL, sys.argv[1]))' "$name-$SOURCE_DATE_EPOCH")
wixl --arch x64 -D Win64=yes -D "VERSION=$version" -D "PRODUCT=$product" -D "SETUP=$setup" -D "SOURCE=$name" \
    --output "$name.msi" installer.wxs files.wxs
rm -rf installer.wxs files.wxs "$name" "$tools" "$sdk" "$symbols"

"$root/scripts/sbom.py" write "$out" "$version"
sha256sum -- * >SHA256SUMS
ls -l
