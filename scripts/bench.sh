#!/bin/sh
# bench.sh runs the benchmark programs one after the other and prints their tables of ratios.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
status=0
for program in "$root"/build/release/bin/*_bench.exe; do
    echo "== $(basename "$program" .exe)"
    "$root/scripts/in-prefix.sh" "$program" || status=1
done
exit $status
