#!/bin/bash
# Runs a step of the build and notes in build/times.txt what it took: timed.sh NAME COMMAND [ARGUMENT]...
# One line a step, the last run of it: name, seconds by the clock, seconds of the processor in the step and all that it
# started. cmake/times.sh shows them.
set -u
cd "$(dirname "$0")/.."
mkdir -p build
readonly times=build/times.txt
name=$1
shift
TIMEFORMAT='%R %U %S'
exec {out}>&1 {errors}>&2
status=0
spent=$({ time "$@" >&"$out" 2>&"$errors"; } 2>&1) || status=$?
{
    grep -v "^$name " "$times" 2>/dev/null
    awk -v name="$name" '{ printf "%s %.1f %.1f\n", name, $1, $2 + $3 }' <<<"$spent"
} >"$times.new"
mv "$times.new" "$times"
exit "$status"
