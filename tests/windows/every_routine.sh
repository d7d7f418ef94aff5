#!/bin/sh
# Holds link/link_all.cpp to naming every routine that a header of the library declares, and no other:
# every_routine.sh SOURCE. What each caller compiles for itself can't be linked, and what the platform's own headers lack
# isn't the library's.
set -eu
cd "$1"
declared=$(find src -name '*.h' ! -name platform_gaps.h | sort | xargs perl -0777 -ne '
    s{//.*|^\s*#.*}{}gm;
    1 while s/\{[^{}]*\}/;/; # bodies become ends of statements, the innermost first
    for (split /;/) {
        print "$1\n" if !/\b(inline|template|constexpr|using)\b/ && /(\w+)\s*\([^()]*\)\s*$/;
    }' | sort -u)
linked=$(perl -0777 -ne 's{//.*}{}g; print join("\n", /\w+/g), "\n" for /\bkeep\(([^()]*)\);/g' \
    tests/windows/link/link_all.cpp | sort -u)
echo "$(echo "$declared" | wc -l) routines are declared, $(echo "$linked" | wc -l) linked"
[ -n "$declared" ]
if [ "$declared" != "$linked" ]; then
    for name in $declared; do echo "$linked" | grep -qx "$name" || echo "declared, not linked: $name"; done
    for name in $linked; do echo "$declared" | grep -qx "$name" || echo "linked, not declared: $name"; done
    exit 1
fi
