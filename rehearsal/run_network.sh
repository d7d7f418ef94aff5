#!/bin/bash
# Sets up a small network of label printers and runs a command in it:
#
#   rehearsal/run_network.sh TRK COMMAND [ARGUMENT]...
#
# TRK is the tool, which also is the printers. The command finds in its environment
#   TRK_NETWORK          namespaces or loopback
#   TRK_PROGRAM_ADDRESS  the address to search from: 10.77.0.2 or 127.0.0.1
# and its exit status is this script's. Everything ends with it: the printers, and the two network namespaces
# that they and the command live in, which have no names and no way out. No packet reaches a card of this
# computer. Where namespaces aren't permitted the printers are on loopback addresses, and port 427 then needs
# root's rights.
set -euo pipefail

readonly ready_timeout=20 # seconds; far above what a step of the set-up takes

say() { echo "network: $*" >&2; }

# The printers, as options of trk printer: two of the sample medium's model, one of another, one agent that
# answers but has nothing to offer. Their addresses end in 11 and the numbers behind it. Each answers a little
# later than the one before it, so that the order of the list is the same in every run.
readonly printer_count=4
printer_options() {
    case $1 in
    0) options=(--model Label_100_Series --name 'Shelf A' --location 'Hall 2') ;;
    1) options=(--model Label_100_Series --name 'Shelf B') ;;
    2) options=(--model Label_200_Series --name 'Goods in') ;;
    3) options=(--empty) ;;
    esac
}

pids=()
outputs=()
start_printer() { # NUMBER ADDRESS PREFIX...
    local -a options
    printer_options "$1"
    local address=$2 delay=$((100 * $1)) output ready
    shift 2
    options+=(--address "$address" --delay "$delay" --seconds 3600)
    exec {output}< <(exec "$@" "$trk" printer "${options[@]}")
    pids+=($!)
    outputs+=("$output")
    if ! read -r -t "$ready_timeout" ready <&"$output" || [[ $ready != ready* ]]; then
        say "the printer at $address didn't start"
        exit 1
    fi
    say "printer $ready"
}

# Ends the printers and passes on what they have told. Reading their output up to its end waits for their own.
stop_printers() {
    local index line
    [ ${#pids[@]} -eq 0 ] || kill "${pids[@]}" 2>/dev/null || true
    for index in "${!outputs[@]}"; do
        while read -r line; do
            say "printer $((index + 1)) $line"
        done <&"${outputs[$index]}"
    done
}

start_printers() { # FIRST-THREE-NUMBERS PREFIX...
    local net=$1 number
    shift
    trap stop_printers EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    for ((number = 0; number < printer_count; number++)); do
        start_printer "$number" "$net.$((11 + number))" "$@"
    done
}

# The second namespace lives as long as the process in it, a cat that ends when this script closes its input.
hold_printer_namespace() {
    local answer
    coproc HOLDER { exec unshare --net cat; }
    holder=$HOLDER_PID
    echo up >&"${HOLDER[1]}"
    read -r -t "$ready_timeout" answer <&"${HOLDER[0]}"
}

# Begun again inside the program's namespace. The layer uses only interfaces whose names begin with "trk" for
# real traffic.
run_in_namespaces() {
    hold_printer_namespace
    local -a among_printers=(nsenter "--net=/proc/$holder/ns/net" --)
    local number
    ip link set lo up
    ip link add trk-program type veth peer name trk-printers netns "$holder"
    "${among_printers[@]}" ip link set lo up
    for ((number = 0; number < printer_count; number++)); do
        "${among_printers[@]}" ip address add "10.77.0.$((11 + number))/24" dev trk-printers
    done
    ip address add 10.77.0.2/24 dev trk-program
    "${among_printers[@]}" ip link set trk-printers up
    ip link set trk-program up
    start_printers 10.77.0 "${among_printers[@]}"
    TRK_NETWORK=namespaces TRK_PROGRAM_ADDRESS=10.77.0.2 "$@"
}

run_on_loopback() {
    say "network namespaces aren't permitted here, so the printers share loopback with the program:"
    say "it will find that another process uses its discovery port"
    start_printers 127.0.0 env
    TRK_NETWORK=loopback TRK_PROGRAM_ADDRESS=127.0.0.1 "$@"
}

# Whether unshare, with these options, gives a namespace in which links can be made.
permitted() { unshare "$@" -- ip link add trk-a type veth peer name trk-b 2>/dev/null; }

if [ "${1-}" = --in-namespace ]; then
    trk=$2
    shift 2
    run_in_namespaces "$@"
    exit
fi
if [ $# -lt 2 ]; then
    echo "usage: $0 TRK COMMAND [ARGUMENT]..." >&2
    exit 2
fi
trk=$1
shift
for own in '--net' '--user --map-root-user --net'; do
    # shellcheck disable=SC2086
    if permitted $own; then
        exec unshare $own -- "$BASH" "$0" --in-namespace "$trk" "$@"
    fi
done
run_on_loopback "$@"
