#!/bin/bash
# make lint: the project's layout, and clang-tidy with the project's list, within a time that fits into each run of
# continuous integration.
#
#   cmake/lint.sh SECONDS
#
# All sources are held against the layout. clang-tidy takes seconds for each, so it looks at those that were changed since
# the branch left the main one (TRK_LINT_BASE, else origin/main, else the last commit), and then, until the seconds are
# over, at others, beginning where the number of commits points to, so that each has its turn. What wasn't looked at is
# counted. A changed file is looked at however long it takes, and what is found there fails; what is found in the others is
# told, and waits for who changes them next.
set -euo pipefail
cd "$(dirname "$0")/.."
mkdir -p build
readonly database=build/lint
seconds=$1
SECONDS=0 # the shell counts on from a value that make may have handed down

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror
echo "layout: $(git ls-files '*.cpp' '*.h' | wc -l) files"

cmake --preset test -B "$database" -DTRK_UNITY=OFF >"$database-configure.log" 2>&1 || {
    cat "$database-configure.log"
    exit 1
}
cmake --build "$database" --target trk_resource_file >/dev/null
base=${TRK_LINT_BASE:-$(git merge-base HEAD origin/main 2>/dev/null || git rev-parse --quiet --verify HEAD~1 || git rev-parse HEAD)}
mapfile -t known < <(sed -n "s|^  \"file\": \"$PWD/\(.*\.cpp\)\",\?\$|\1|p" "$database/compile_commands.json" | sort -u)
mapfile -t changed < <(git diff --name-only "$base" -- '*.cpp' | sort | comm -12 - <(printf '%s\n' "${known[@]}"))
mapfile -t others < <(printf '%s\n' "${known[@]}" | comm -23 - <(printf '%s\n' "${changed[@]}"))

tidy() { # FILE...: two at a time
    [ $# -gt 0 ] || return 0
    printf '%s\0' "$@" | xargs -0 -r -n 1 -P 2 clang-tidy -p "$database" --quiet --warnings-as-errors='*' \
        --extra-arg=-Wno-error --extra-arg=-Wno-unknown-warning-option 2>"$database/clang-tidy.log"
}

tidy "${changed[@]}"
looked=${#changed[@]}
turn=0 unclean=0
start=$(($(git rev-list --count HEAD) * 2 % (${#others[@]} + 1)))
while [ "$SECONDS" -lt "$seconds" ] && [ "$turn" -lt "${#others[@]}" ]; do
    batch=()
    for _ in 1 2; do
        [ "$turn" -ge "${#others[@]}" ] || batch+=("${others[(start + turn) % ${#others[@]}]}")
        turn=$((turn + 1))
    done
    tidy "${batch[@]}" || unclean=$((unclean + 1))
    looked=$((looked + ${#batch[@]}))
done
echo "clang-tidy: ${#changed[@]} changed files clean; $((looked - ${#changed[@]})) others looked at, two at a time, \
with findings in $unclean of the pairs; $((${#known[@]} - looked)) not looked at"
