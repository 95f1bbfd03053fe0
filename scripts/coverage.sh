#!/bin/sh
# coverage.sh runs the tests of the counting build. It closes with one table, of the lines and branches in each folder of
# src/. Exit status: 0 only if no test failed, and at least 95 in 100 lines of src/ and branches of src/formats/ were run.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root" || exit 1
find build/coverage -name '*.gcda' -delete
# The thousands of loads would each write all counts.
GTEST_FILTER='-Lifetime.LoadsKeepNothing' scripts/run_tests.py coverage
status=$?
gcovr --gcov-executable x86_64-w64-mingw32-gcov-posix --root . --filter 'src/' --object-directory build/coverage \
    --exclude-throw-branches --txt build/coverage.txt --csv build/coverage.csv build/coverage || exit 1
awk -F , '
    function share(part, all) { return all ? int(1000 * part / all) / 10 : 100 }
    function add(name) { lines[name] += $2; run[name] += $3; branches[name] += $5; taken[name] += $6 }
    function print_row(name) {
        printf "%-24s %7d %6.1f %% %9d %6.1f %%\n", name, lines[name], share(run[name], lines[name]), branches[name],
            share(taken[name], branches[name])
    }
    FNR > 1 {
        parts = split($1, part, "/")
        folder = "src/" part[2]
        if (!(folder in lines)) order[++folders] = folder
        add(folder)
        add("src")
    }
    END {
        printf "\n%-24s %7s %8s %9s %8s\n", "folder", "lines", "run", "branches", "taken"
        for (i = 1; i <= folders; ++i) print_row(order[i])
        print_row("src")
        if (share(run["src"], lines["src"]) < 95) { low = 1; print "less than 95 % of the lines of src" }
        if (share(taken["src/formats"], branches["src/formats"]) < 95) {
            low = 1
            print "less than 95 % of the branches of src/formats"
        }
        exit low || !lines["src"]
    }' build/coverage.csv || status=1
[ $status -eq 0 ] && echo "coverage: enough" || echo "coverage: a test failed, or it is too low"
exit $status
