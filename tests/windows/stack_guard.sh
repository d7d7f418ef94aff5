#!/bin/sh
# Holds every routine of the two libraries in dist/ that has a buffer on its stack to having the stack protector's
# check: stack_guard.sh SOURCE. A frame of 256 bytes or more is taken for a buffer's; the program has no smaller texts.
set -eu
cd "$1/dist"
for target in i686 x86_64; do
    "$target-w64-mingw32-objdump" --disassemble --reloc --no-show-raw-insn "$target/libtrk.a" |
        awk -v target="$target" -v frame=256 '
        function judge() {
            if (routine != "" && large) {
                routines++
                if (!guarded) { print target ": " routine " has a buffer and no guard"; bare++ }
            }
            large = guarded = 0
        }
        /^[0-9a-f]+ <.*>:$/ { judge(); routine = $2 }
        /sub +\$0x[0-9a-f]+,%[er]sp/ {
            match($0, /\$0x[0-9a-f]+/)
            digits = substr($0, RSTART + 3, RLENGTH - 3)
            value = 0
            for (i = 1; i <= length(digits); i++)
                value = value * 16 + index("0123456789abcdef", substr(digits, i, 1)) - 1
            if (value >= frame) large = 1
        }
        /___?chkstk_ms/ { large = 1 } # frames of more than a page
        /__stack_chk_fail/ { guarded = 1 }
        END {
            judge()
            print target ": " routines + 0 " routines with buffers, " bare + 0 " without a guard"
            exit bare > 0 || routines == 0
        }'
done
