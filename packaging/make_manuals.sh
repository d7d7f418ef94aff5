#!/bin/bash
# Manual pages of trk and of each of its sub-commands, from their own help: make_manuals.sh TRK FOLDER.
# The sub-commands are those that its help lists.
set -euo pipefail
trk=$1
folder=$2
rm -rf "$folder"
mkdir -p "$folder"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# help2man asks a program named like the page for its help and its version. What stands behind "Example" is commands,
# whose lines it would fill into a paragraph, so they come as a section of their own.
page() { # NAME SHORT [SUB-COMMAND]
    "$trk" "${@:3}" --help | sed "s|Usage: $trk|Usage: trk|" >"$work/help"
    sed '/^Example/,$d' "$work/help" >"$work/before"
    printf '#!/bin/sh\ncase $1 in --version) "%s" --version | sed "s/^trk /%s /" ;; *) cat "%s" ;; esac\n' "$trk" "$1" "$work/before" >"$work/$1"
    chmod +x "$work/$1"
    { echo '[EXAMPLES]' && echo .nf && sed -n '/^Example/,$p' "$work/help" && echo .fi; } >"$work/examples"
    help2man --no-info --section=1 --manual="trk's commands" --name="$2" --include="$work/examples" \
        --output="$folder/$1.1" "$work/$1"
    gzip --no-name --best "$folder/$1.1"
}

page trk "check and rehearse distribution folders of label printers"
"$trk" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z]*\)  *\(.*\)$/\1 \2/p' | while read -r name short; do
    page "trk-$name" "$short" "$name"
done
