#!/bin/bash
# make sweep: every road under every failing call, lie about a size and event of the user; then installs and removals
# one after the other; then rehearsals that are cut off.
#
#   sweep/run.sh RUNS ROUNDS
#
# RUNS of the first are taken, evenly spread over all; "all" takes all, and then every cut is tried, too. Drives lie in
# memory where there is room: most of the time would go into their files.
set -u
cd "$(dirname "$0")/.."
readonly runs=$1 rounds=$2 program=build/test/sweep/trk_sweep
if [ -z "${TMPDIR:-}" ] && [ -w /dev/shm ] && [ "$(df --output=avail -k /dev/shm | tail -1)" -gt 1000000 ]; then
    export TMPDIR=/dev/shm
fi
status=0
if [ "$runs" = all ]; then
    "$program" || status=1
    "$program" --soak "$rounds" &
    soak=$!
    TRK_ALL_CUTS=1 build/test/tests/trk_rehearsal_tests --gtest_brief=1 --gtest_filter='CutOff.*' || status=1
    wait "$soak" || status=1
else
    "$program" --sample "$runs" || status=1
    "$program" --soak "$rounds" || status=1
fi
exit "$status"
