#!/bin/sh
# faults.sh makes every fault that a test run only samples: each failing call, each hostile backup, each moment at which
# a restore may end. It closes with one table and the calls that failed, by function; what it says of the faults that it
# found stands before them.
# Exit status: 0 only if every program ran to its end and found nothing.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
log="$root/build/faults.log"
failed=
: >"$log"
for program in hostile_test faults_test; do
    echo "== $program"
    VL_STRIDE=1 "$root/scripts/in-prefix.sh" "$root/build/release/bin/system/$program.exe" --gtest_brief=1 \
        >>"$log" 2>&1 || failed="$failed $program"
done
cat "$log"
tr -d '\r' <"$log" | sed -n 's/^\(.*\): \([0-9]*\) runs, \([0-9]*\) faults$/\1\t\2\t\3/p' | awk -F '\t' '
    BEGIN { row = "%-24s %8s %8s\n"; printf "\n" row, "what", "runs", "faults" }
    { printf row, $1, $2, $3; runs += $2; faults += $3 }
    END { printf row, "all", runs, faults; exit runs == 0 || faults > 0 }' || failed="$failed (see above)"
echo "failed calls, by function:"
tr -d '\r' <"$log" | awk '$1 == "failed" && NF == 3 { calls[$2] += $3 }
    END { for (name in calls) print name "=" calls[name] }' | sort | paste -sd ' ' - | fold -s -w 100
[ -z "$failed" ] && echo "faults: no finding" || { echo "faults: failed:$failed"; exit 1; }
