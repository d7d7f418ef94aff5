#!/bin/bash
# make times: where the time of the last builds and tests went. A second of the clock may hold as many seconds of the
# processor as it has cores, and fewer where others use them too.
set -eu
cd "$(dirname "$0")/.."
readonly longest=12 # lines of each of the lists

printf '%-24s %10s %10s\n' step clock processor
[ ! -e build/times.txt ] || awk '{ printf "%-24s %8.1f s %8.1f s\n", $1, $2, $3 }' build/times.txt

# Ninja's log has a line for each output: start and end in milliseconds, time stamp, name.
for log in build/*/.ninja_log; do
    [ -e "$log" ] || continue
    printf '\nlongest steps of %s, by the clock\n' "$(dirname "$log")"
    awk -F '\t' '!/^#/ { spent[$4] = $2 - $1 } END { for (name in spent) printf "%8.1f s  %s\n", spent[name] / 1000, name }' \
        "$log" | sort -rn | head -n "$longest"
done

# ctest's own record: name, number of runs, mean seconds; the failed tests follow behind a line of dashes.
costs=build/test/Testing/Temporary/CTestCostData.txt
if [ -e "$costs" ]; then
    printf '\nlongest tests, by the clock\n'
    awk '/^---/ { exit } NF == 3 { printf "%8.1f s  %s\n", $3, $1 }' "$costs" | sort -rn | head -n "$longest"
fi
