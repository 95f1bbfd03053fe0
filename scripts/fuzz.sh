#!/bin/sh
# fuzz.sh SECONDS runs each fuzzer for that long; what they learn is kept in build/corpus.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
status=0
for fuzzer in "$root"/build/fuzz/bin/fuzz_*; do
    [ -x "$fuzzer" ] || continue
    name=$(basename "$fuzzer")
    mkdir -p "$root/build/corpus/$name"
    echo "== $name, $1 seconds"
    "$fuzzer" -max_total_time="$1" -timeout=10 -print_final_stats=1 -verbosity=0 \
        -artifact_prefix="$root/build/corpus/$name-finding-" "$root/build/corpus/$name" || status=1
done
[ $status -eq 0 ] && echo "fuzz: no finding"
exit $status
