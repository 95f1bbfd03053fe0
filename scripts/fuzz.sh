#!/bin/sh
# fuzz.sh SECONDS runs each fuzzer for that long; what they learn is kept in build/corpus, what they print in
# build/fuzz_NAME.log. It closes with one table. Exit status: 0 only if every fuzzer ran and found nothing.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
table=
status=1 # without a fuzzer
for fuzzer in "$root"/build/fuzz/bin/fuzz_*; do
    [ -x "$fuzzer" ] || continue
    [ -n "$table" ] || status=0
    name=$(basename "$fuzzer")
    log="$root/build/$name.log"
    mkdir -p "$root/build/corpus/$name"
    echo "== $name, $1 seconds"
    result=good
    "$fuzzer" -max_total_time="$1" -timeout=10 -print_final_stats=1 -verbosity=0 \
        -artifact_prefix="$root/build/corpus/$name-finding-" "$root/build/corpus/$name" >"$log" 2>&1 || result=FINDING
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    [ "${runs:-0}" -gt 0 ] || result=FAILED
    [ "$result" = good ] || { status=1; tail -n 50 "$log"; }
    table="$table$(printf '%-24s %12s  %s' "$name" "${runs:-0}" "$result")
"
done
printf '\n%-24s %12s\n%s' "fuzzer" "runs" "$table"
exit $status
