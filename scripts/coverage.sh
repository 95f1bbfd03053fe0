#!/bin/sh
# coverage.sh runs the tests of the counting build and prints line and branch coverage of src/.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root" || exit 1
find build/coverage -name '*.gcda' -delete
scripts/run_tests.py coverage
gcovr --gcov-executable x86_64-w64-mingw32-gcov-posix --root . --filter 'src/' --object-directory build/coverage \
    --exclude-throw-branches --print-summary build/coverage
