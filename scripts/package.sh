#!/bin/sh
# package.sh makes build/package: a zip archive of build/dist without debug symbols, an installer that does what
# install.cmd does, and an archive of the symbols. Times in the archives are the commit's.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
version=$(sed -n 's/^project(VLOnlineIDs VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git -C "$root" log -1 --format=%ct 2>/dev/null || date +%s)}
export SOURCE_DATE_EPOCH TZ=UTC
out="$root/build/package"
name="VLOnlineIDs-$version"
symbols="$name-symbols"
rm -rf "$out"
mkdir -p "$out/$name" "$out/$symbols"
cp -R "$root/build/dist/." "$out/$name/"
cp "$root/README.md" "$root/CHANGELOG.md" "$out/$name/"
cp -R "$root/docs" "$out/$name/docs"

# separate PREFIX FILE: the symbols of FILE go beside, and FILE names them for the debugger.
separate() {
    debug="$out/$symbols/$(basename "$2").debug"
    "$1objcopy" --only-keep-debug "$2" "$debug"
    "$1strip" --strip-all "$2"
    (cd "$out/$symbols" && "$1objcopy" "--add-gnu-debuglink=$(basename "$debug")" "$2")
}
for file in "$out/$name"/*.dll "$out/$name"/*.exe "$out/$name"/standins/*.exe "$out/$name"/standins/V*.dll; do
    separate x86_64-w64-mingw32- "$file"
done
for file in "$out/$name/vlbackup" "$out/$name/vltrace"; do
    separate "" "$file"
done

find "$out" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
for folder in "$name" "$symbols"; do
    (cd "$out" && find "$folder" | LC_ALL=C sort | zip -q -X -@ "$folder.zip")
done
makensis -V2 -NOCD "-DVERSION=$version" "-DSOURCE=$out/$name" "-DOUTPUT=$out/$name-setup.exe" \
    "$root/packaging/installer.nsi"
rm -rf "${out:?}/$name" "${out:?}/$symbols"
ls -l "$out"
