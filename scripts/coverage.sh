#!/bin/sh
# coverage.sh runs the tests of the counting builds. It closes with one table, of the lines and branches in each folder of
# src/. A file of the portable formats counts by the build whose tests run more of it: some run on this machine alone, some
# only under Windows. Exit status: 0 only if no test failed, and at least 95 in 100 lines of src/ and branches of
# src/formats/ were run.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root" || exit 1
find build/coverage build/coverage-native -name '*.gcda' -delete
# Test programs compare what is written to standard error.
export GCOV_ERROR_FILE="$root/build/gcov-errors.log"
# The thousands of loads would each write all counts.
GTEST_FILTER='-Lifetime.LoadsKeepNothing' scripts/run_tests.py coverage-native coverage
status=$?
count() { # BUILD GCOV FILTER...
    build=$1 gcov=$2
    shift 2
    gcovr --gcov-executable "$gcov" --root . "$@" --object-directory "build/$build" --exclude-throw-branches \
        --exclude-unreachable-branches --txt "build/$build.txt" --csv "build/$build.csv" "build/$build" || exit 1
}
count coverage-native gcov --filter src/formats/
count coverage x86_64-w64-mingw32-gcov-posix --filter src/
awk -F , '
    function share(part, all) { return all ? int(1000 * part / all) / 10 : 100 }
    function add(name) { lines[name] += $2; run[name] += $3; branches[name] += $5; taken[name] += $6 }
    function share_of(row) { split(row, column, ","); return share(column[6], column[5]) }
    function print_row(name) {
        printf "%-24s %7d %6.1f %% %9d %6.1f %%\n", name, lines[name], share(run[name], lines[name]), branches[name],
            share(taken[name], branches[name])
    }
    FNR > 1 {
        if (!($1 in rows)) names[++files] = $1
        else if (share_of($0) < share_of(rows[$1])) next
        rows[$1] = $0
    }
    END {
        for (i = 1; i <= files; ++i) {
            $0 = rows[names[i]]
            split($1, part, "/")
            folder = "src/" part[2]
            if (!(folder in lines)) order[++folders] = folder
            add(folder)
            add("src")
        }
        printf "\n%-24s %7s %8s %9s %8s\n", "folder", "lines", "run", "branches", "taken"
        for (i = 1; i <= folders; ++i) print_row(order[i])
        print_row("src")
        if (share(run["src"], lines["src"]) < 95) { low = 1; print "less than 95 % of the lines of src" }
        if (share(taken["src/formats"], branches["src/formats"]) < 95) {
            low = 1
            print "less than 95 % of the branches of src/formats"
        }
        exit low || !lines["src"]
    }' build/coverage-native.csv build/coverage.csv || status=1
[ $status -eq 0 ] && echo "coverage: enough" || echo "coverage: a test failed, or it is too low"
exit $status
