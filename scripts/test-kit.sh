#!/bin/sh
# test-kit.sh [try] makes build/package/VLOnlineIDs-VERSION-test-kit.zip: every Windows test program with what it needs, and
# run.cmd, which runs them where there is neither Wine nor a Unix tool. With "try" it then runs the unpacked kit in
# Wine's command processor; exit status 0 only if all passed.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
version=$(sed -n 's/^project(VLOnlineIDs VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
name="VLOnlineIDs-$version-test-kit"
out="$root/build/package"
kit="$out/$name"
rm -rf "$kit" "$kit.zip"
mkdir -p "$kit"
cp -R "$root/build/release/bin" "$kit/"
rm -f "$kit"/bin/*_bench.exe
cmake --install "$root/build/release" --prefix "$kit/package" --component dist >/dev/null
find "$kit" -name '*.exe' -exec x86_64-w64-mingw32-strip {} + -o -name 'V*.dll' -exec x86_64-w64-mingw32-strip {} +
(cd "$kit/bin" && find . -name '*_test.exe' | sed 's,^\./,,; s,/,\\,g' | LC_ALL=C sort | sed 's/$/\r/') >"$kit/programs.txt"
sed 's/$/\r/' "$root/packaging/run.cmd" >"$kit/run.cmd"
cp "$root/docs/windows.md" "$kit/README.md"
(cd "$out" && zip -q -r -X "$name.zip" "$name")
rm -rf "$kit"
ls -l "$kit.zip"
[ "${1:-}" = try ] || exit 0
tried=$(mktemp -d "$root/build/kit XXXXXX")
trap 'rm -rf "$tried"' EXIT
(cd "$tried" && python3 -m zipfile -e "$kit.zip" .)
cd "$tried/$name"
"$root/scripts/in-prefix.sh" cmd /c run.cmd
