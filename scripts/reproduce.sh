#!/bin/sh
# reproduce.sh builds the last commit once more, in another folder and without the compiler cache, and compares every
# file as it is shipped, without symbols (the cache shortens the paths in those). Exit status: 0 only if all are equal
# to the byte.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
[ -z "$(git -C "$root" status --porcelain)" ] || {
    echo "reproduce: there are changes that no commit has; commit them and run make build first" >&2
    exit 1
}
SOURCE_DATE_EPOCH=$(git -C "$root" log -1 --format=%ct) # strip writes a time, too
export SOURCE_DATE_EPOCH CCACHE_DISABLE=1 # JsonCpp's build turns the cache on wherever it is found
again=$(mktemp -d "$root/build/reproduce XXXXXX")
trap 'rm -rf "$again"' EXIT
git clone -q "$root" "$again"
mkdir -p "$again/build"
cp -R "$root/build/third-party" "$again/build/"
cd "$again"
for preset in release native-release; do
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" --target vl_product >/dev/null
    cmake --install "build/$preset" --prefix build/two --component dist --strip >/dev/null
    cmake --install "$root/build/$preset" --prefix build/one --component dist --strip >/dev/null
done
diff -r build/one build/two
echo "reproduce: $(find build/two -type f | wc -l) files are equal to the byte"
