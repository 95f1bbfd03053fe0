#!/bin/sh
# soak.sh SECONDS runs the long checks: threads for that long, 10,000 calls of each operation, 200 secrets, and as many
# ends of a process as VL_ENDS in the environment says. It ends with a table; exit status 0 only if nothing failed.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
export VL_SOAK="$1" VL_ENDS="${VL_ENDS:-1000}"
table=
status=0
run() { # TITLE PROGRAM FILTER
    echo "== $1"
    log="$root/build/soak-$2.log"
    result=good
    start=$(date +%s)
    "$root/scripts/in-prefix.sh" "$root/build/release/bin/system/$2.exe" --gtest_filter="$3" >"$log" 2>&1 || result=FAILED
    grep -q '^\[  PASSED  \] [1-9]' "$log" || result=FAILED # a filter without a test passes, too
    [ $result = good ] || status=1
    grep -v '^\[\|^Note\|^Running' "$log"
    table="$table$(printf '%-40s %6d s  %s' "$1" $(($(date +%s) - start)) "$result")
"
}
run "calls from many threads" soak_test 'Soak.Mixed*'
run "many calls of each operation" soak_test 'Soak.Many*'
run "libraries and agents that mean no good" soak_test 'Liars.*:Link.*'
run "secrets in memory and files" soak_test 'Secrets.*'
run "ends of a process" system_test 'Lifetime.ProcessEnds*'
echo "== soak"
printf '%s' "$table"
exit $status
