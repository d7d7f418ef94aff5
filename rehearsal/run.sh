#!/bin/bash
# make run: the whole life of an installation on one simulated machine. Label printers answer on real sockets in a
# network of their own; the program finds them, installs, installs once more, and is taken off again. The machine
# stays in build/run, so that the next run begins with what this one left.
set -euo pipefail
cd "$(dirname "$0")/.."

readonly trk=build/linux/rehearsal/trk
readonly state=build/run

headline() { printf '\n%s\n%s\n' "$1" "$(printf '%.0s=' $(seq ${#1}))"; }

# Begun again among the printers.
if [ "${1-}" = --among-printers ]; then
    mkdir -p "$state"
    if [ ! -e "$state/machine.json" ]; then
        sed "s/\"10\.77\.0\.2\"/\"$TRK_PROGRAM_ADDRESS\"/" samples/machine.json >"$state/machine.json"
        cp "$state/machine.json" "$state/before.json"
    fi
    headline "Install on the machine of $state/machine.json ($TRK_NETWORK)"
    "$trk" rehearse --machine "$state/machine.json" --script samples/install.actions samples/medium
    headline "Install once more: the driver is there, the queue's name is taken"
    "$trk" rehearse --machine "$state/machine.json" --script samples/install.actions samples/medium
    headline "Removal, by the library's operations alone"
    "$trk" remove --machine "$state/machine.json" --before "$state/before.json"
    exit
fi
exec "$trk" network --printers samples/printers.json -- rehearsal/run.sh --among-printers
