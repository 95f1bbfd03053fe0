#!/bin/sh
# lint.sh checks the layout of every C++ file, the direction of every include, the static checks of every translation
# unit, what integrators get, and the scripts.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root" || exit 1
status=0
git ls-files '*.h' '*.cpp' | xargs clang-format-14 --dry-run -Werror || status=1
scripts/check-layers.py || status=1

# The build must be configured, and what it generates there.
cmake --build build/release --target vl_product_picture >/dev/null || exit 1
include=$(x86_64-w64-mingw32-g++-posix -print-file-name=include)
git ls-files 'src/*.cpp' 'tools/*.cpp' 'standins/*.cpp' 'examples/*.cpp' ':!*posix.cpp' ':!examples/consumer' |
    xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/release --quiet --warnings-as-errors='*' \
        --extra-arg=--target=x86_64-w64-mingw32 --extra-arg="-isystem$include/c++" \
        --extra-arg="-isystem$include/c++/x86_64-w64-mingw32" --extra-arg=-Wno-unknown-warning-option \
        --extra-arg=-Wno-unused-command-line-argument >build/clang-tidy.log 2>&1 || {
    grep -vE '^[0-9]+ warnings? (generated|treated)' build/clang-tidy.log
    status=1
}
# What the Windows build leaves out.
clang-tidy-14 --quiet --warnings-as-errors='*' $(git ls-files '*posix.cpp' examples/consumer/*.cpp) -- -std=c++20 -Isrc -Itools \
    2>build/clang-tidy-posix.log || {
    cat build/clang-tidy-posix.log
    status=1
}
scripts/check-interfaces.sh || status=1
for script in scripts/*.py; do
    python3 -c 'import ast, sys; ast.parse(open(sys.argv[1]).read())' "$script" || status=1
done
for script in $(git grep -lE '^#!/bin/(ba)?sh' -- scripts packaging .ci); do
    "$(sed -n '1s,^#!/bin/,,p' "$script")" -n "$script" || status=1
done
[ $status -eq 0 ] && echo "lint: clean"
exit $status
