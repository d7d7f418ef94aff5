#!/bin/sh
# Tells which share of the code the tests are, counted in lines that are not blank.
set -eu
cd "$(dirname "$0")/.."
count() {
    find "$@" -type f \( -name '*.cpp' -o -name '*.h' -o -name '*.rc' \) -exec cat {} + |
        grep -c '[^[:space:]]'
}
tests=$(count tests)
all=$(count src platform rehearsal acceptance tests tools windows)
awk -v tests="$tests" -v all="$all" 'BEGIN {
    share = 100 * tests / all
    printf "tests: %d of %d lines of code, %.1f %%\n", tests, all, share
    if (share < 25 || share > 33) print "warning: the share of tests is meant to lie between 25 and 33 %"
}'
