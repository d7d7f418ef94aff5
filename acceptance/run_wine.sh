#!/bin/bash
# make wine: the real 64-bit program under Wine and the rehearsal of the same scenario, held against each other.
#
#   acceptance/run_wine.sh [NAME]...     a scenario, or `contract`; none: all
#
# `contract` runs the tests of the platform's calls under Wine, against the table in differences.md.
#
# A scenario is a folder with machine.json and the actions of one or more runs on that machine, run1.actions, ...
# Its file `setting`, where there is one, has lines of these words:
#   network none       runs without any adapter, not among the printers
#   locale NAME        the system's locale, such as de_DE (code page UTF-8 outside, Windows' own inside)
#   without PATH       takes a file off the medium
#   hollow NAME        puts a library without any function in place of the system's
#   plant NAME...      lays libraries of these names beside the program that leave a file on C: when they are loaded
#   system NAME        the version of Windows by winecfg's name; else win10
#   language WORD      puts the language into the medium's settings.inf
# With a file `wanted.json` the rehearsal can't tell: then that is what each record under Wine must contain.
#
# TRK_WINE_AT_ONCE, 3 unless set, is how many run at the same time.
#
# Everything lies in build/wine: a prefix made once, and for each scenario a copy of it, both platforms' machines,
# records and logs. The user's own prefix is never touched. Nothing needs a display.
set -euo pipefail
cd "$(dirname "$0")/.."

readonly root=$PWD
readonly state=${TRK_WINE_STATE:-$root/build/wine}
readonly linux=$root/${TRK_LINUX_BUILD:-build/linux}
readonly trk=$linux/rehearsal/trk
readonly compare=$linux/acceptance/trk_compare
readonly windows=${TRK_WINDOWS_BUILD:-$root/build/windows-x86_64}
readonly program=${TRK_PROGRAM:-$windows/src/trk_setup64.exe} # the one that is started
readonly sibling=${TRK_SIBLING:-} # the one that it hands over to, where it does
readonly banner_bits=${TRK_BANNER_BITS:-64} # of the program that writes the log, or `none` where there is no log
readonly scenarios_folder=${TRK_SCENARIOS:-$root/acceptance/scenarios}
readonly template=$state/template
readonly run_timeout=90   # seconds; what the pilot gives a run
readonly hang_timeout=150 # what a run may take when the pilot itself hangs
readonly at_once=${TRK_WINE_AT_ONCE:-3}

unset DISPLAY WAYLAND_DISPLAY

say() { echo "wine: $*" >&2; }

# shellcheck source=acceptance/wine_prefix.sh
. "$root/acceptance/wine_prefix.sh"

# Reads the scenario's settings into the variables of their names.
read_setting() {
    network='' locale='' language='' system='' plant='' hollow='' without=()
    local word rest
    [ -e "$1/setting" ] || return 0
    while read -r word rest; do
        case $word in
        network) network=$rest ;;
        locale) locale=$rest ;;
        language) language=$rest ;;
        system) system=$rest ;;
        plant) plant=$rest ;;
        hollow) hollow=$rest ;;
        without) without+=("$rest") ;;
        *)
            say "$1/setting: unknown word $word"
            return 1
            ;;
        esac
    done <"$1/setting"
}

make_medium() { # MEDIUM
    lay_medium "$1" "$program" ${sibling:+"$sibling"}
    [ -z "$language" ] || printf '[UI]\r\nLanguage=%s\r\n' "$language" >"$1/wrenchbay/settings.inf"
}

# The machine's file for both sides: the folders and the program that installs are named as Wine has them.
make_machines() { # SCENARIO RUN-FOLDER
    local side installer=${sibling:-$program} system=x64
    [ "${TRK_WINE_ARCH-}" != win32 ] || system=x86
    for side in rehearsed wine; do
        mkdir -p "$2/$side"
        jq -s --arg installer "${installer##*/}" --arg system "$system" \
            '.[0] * {program_name: $installer, system: $system} * .[1]' \
            "$root/acceptance/machine.json" "$1/machine.json" >"$2/$side/machine.json"
    done
}

rehearse() { # SCENARIO RUN-FOLDER RUN
    local status=0
    "${alone[@]}" timeout "$hang_timeout" "$trk" rehearse --quiet --machine "$2/rehearsed/machine.json" \
        --script "$1/$3.actions" --report "$2/rehearsed/$3.json" "$2/d/medium" \
        >>"$2/rehearsed/output" 2>&1 || status=$?
    # A scenario's failure is wanted often enough; what isn't is a run that didn't take place.
    [ "$status" -le 1 ]
}

# Wine prefers its own libraries wherever others lie, so it is told to look for the planted ones first. A program
# without protection then loads one, or the scenario would prove nothing.
plant_libraries() { # RUN-FOLDER
    local name found
    for name in $plant; do
        cp "$windows/acceptance/trk_planted.dll" "$1/d/medium/$name"
        overrides+=";${name%.dll}=n,b"
    done
    cp "$windows/acceptance/trk_unguarded.exe" "$1/d/medium/"
    (cd "$1/d/medium" && WINEPREFIX=$1/wine/prefix WINEDLLOVERRIDES=$overrides timeout "$hang_timeout" \
        wine 'D:\medium\trk_unguarded.exe' </dev/null >>"$1/wine/output" 2>&1) || true
    found=$(find "$1/wine/prefix/drive_c" -maxdepth 1 -iname 'D__medium_*')
    if [ -z "$found" ]; then
        echo "  an unprotected program didn't load the planted library either"
        return 1
    fi
    find "$1/wine/prefix/drive_c" -maxdepth 1 -iname 'D__medium_*' -delete
    rm "$1/d/medium/trk_unguarded.exe"
}

pilot() { # SCENARIO RUN-FOLDER RUN
    local starter=''
    local -a environment=("WINEPREFIX=$2/wine/prefix" "TRK_MACHINE_FILE=$(windows_path "$2/wine/machine.json")")
    environment+=("WINEDLLOVERRIDES=$overrides")
    [ -z "$locale" ] || environment+=("LOCPATH=$state/locales" "LC_ALL=$locale.UTF-8")
    if [ -n "$language" ]; then
        # Wine has the choice of a thread's language as a stub, so the spooler's library steps in from the start.
        environment+=(TRK_THREAD_LANGUAGE=1)
        starter="$(windows_path "$windows/acceptance/winspool/trk_preload.exe") C:\\windows\\system32\\winspool.drv "
    fi
    "${alone[@]}" env -u LANG -u LC_ALL "${environment[@]}" timeout "$hang_timeout" \
        wine "$windows/acceptance/pilot/trk_pilot.exe" "$run_timeout" 'D:\medium' \
        "$(windows_path "$1/$3.actions")" "$(windows_path "$2/wine/$3.json")" \
        "${starter}D:\\medium\\${program##*/}" </dev/null >>"$2/wine/output" 2>&1
}

# Each run's log begins with a banner that tells which of the two programs wrote it. The comparer skips it.
check_banners() { # RUNS LOG
    local found others
    [ "$banner_bits" != none ] || return 0
    found=$(grep -c "^Vorlane Installer $banner_bits ---" "$2" || true)
    others=$(grep -c '^Vorlane Installer ' "$2" || true)
    if [ "$found" != "$1" ] || [ "$others" != "$1" ]; then
        echo "  $1 runs, but $found of $others banners are of the $banner_bits-bit program"
        return 1
    fi
}

check_records() { # WANTED RECORD...
    local wanted=$1 record
    shift
    for record in "$@"; do
        if ! jq --exit-status --slurpfile wanted "$wanted" 'contains($wanted[0])' "$record" >/dev/null; then
            echo "  $(basename "$record") isn't as wanted:"
            cat "$record"
            return 1
        fi
    done
}

# Both platforms' runs of one scenario and the judgement over them.
run_scenario() { # SCENARIO RUN-FOLDER
    local script run runs=0
    alone=()
    read_setting "$1" || return 1
    [ "$network" != none ] || alone=(unshare --net --)
    [ -z "$locale" ] || make_locale "$locale" || return 1
    rm -rf "$2"
    mkdir -p "$2/d"
    make_medium "$2/d/medium" && make_machines "$1" "$2" && make_prefix "$2/wine/prefix" "$2/d" || return 1
    overrides=$WINEDLLOVERRIDES
    [ -z "$plant" ] || plant_libraries "$2" || return 1
    [ -z "$hollow" ] || ln -sf "$windows/acceptance/trk_hollow.dll" "$2/wine/prefix/drive_c/windows/system32/$hollow"
    [ -z "$system" ] || WINEPREFIX=$2/wine/prefix timeout "$make_timeout" winecfg -v "$system" || return 1
    for script in "$1"/run*.actions; do
        run=$(basename "$script" .actions)
        runs=$((runs + 1))
        if [ ! -e "$1/wanted.json" ] && ! rehearse "$1" "$2" "$run"; then
            echo "  the rehearsal of $run failed:"
            tail -3 "$2/rehearsed/output"
            return 1
        fi
        if ! pilot "$1" "$2" "$run"; then
            echo "  the pilot of $run failed:"
            tail -3 "$2/wine/output"
        fi
    done
    stop_server "$2/wine/prefix"
    check_banners "$runs" "$2/wine/prefix/drive_c/windows/temp/trk_install.log" || return 1
    if [ -e "$1/wanted.json" ]; then
        check_records "$1/wanted.json" "$2"/wine/run*.json
    else
        "$compare" "$runs" "$2/rehearsed" "$2/wine" "$template/drive_c"
    fi
}

# The tests of the platform's calls, judged by Wine.
run_contract() { # RUN-FOLDER
    local status=0
    rm -rf "$1"
    mkdir -p "$1/d" "$1/wine"
    make_prefix "$1/wine/prefix" "$1/d"
    echo '{}' >"$1/wine/machine.json"
    # What Wine's shell can't name it deletes from the current folder, so that is an empty one.
    (cd "$1/d" && env -u LANG -u LC_ALL "WINEPREFIX=$1/wine/prefix" TRK_THREAD_LANGUAGE=1 \
        "TRK_MACHINE_FILE=$(windows_path "$1/wine/machine.json")" timeout "$hang_timeout" \
        wine "$windows/acceptance/contract/trk_contract.exe" "$(windows_path "$root/acceptance/differences.md")" \
        </dev/null 2>>"$1/wine/output") || status=$?
    # 1 is the tests' own verdict, and then they have told why.
    if [ "$status" -gt 1 ]; then
        echo "  the tests ended with $status, 124 at the time limit:"
        tail -3 "$1/wine/output"
    fi
    return "$status"
}

run_one() { # NAME RUN-FOLDER
    if [ "$1" = contract ]; then
        run_contract "$2"
    else
        run_scenario "$scenarios_folder/$1" "$2"
    fi
}

# Whoever makes a scenario's folder of claims runs it, so that several can work through one list.
readonly claims=$state/claims
claim() { mkdir "$claims/$1" 2>/dev/null; }

# Begun again among printers of its own: of the scenarios those that nobody has claimed, one after the other. What
# one has to say is told in one piece, as others tell theirs at the same time.
run_scenarios() {
    local name begin tenths result said
    current=''
    trap '[ -z "$current" ] || stop_server "$current/wine/prefix"' EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    if [ "$TRK_NETWORK" != namespaces ]; then
        say "network namespaces aren't permitted here, and Wine lists no loopback adapter"
        exit 1
    fi
    for name in "$@"; do
        claim "$name" || continue
        begin=$(date +%s%N)
        current=$state/runs/$name
        result=FAILED
        said=$claims/$name/said
        ! run_one "$name" "$current" >"$said" || result=passed
        stop_server "$current/wine/prefix"
        tenths=$((($(date +%s%N) - begin) / 100000000))
        printf '%s  %-24s %5.1f s\n' "$result" "$name" "${tenths}e-1" >>"$said"
        echo "$result" >"$claims/$name/result"
        cat "$said"
    done
}

# Ends the workers, which wait for what they have started: Wine first.
stop_workers() { # STATUS
    local prefix worker
    trap - INT TERM
    for prefix in "$state"/runs/*/wine/prefix; do
        stop_server "$prefix"
    done
    for worker in "${workers[@]}"; do
        kill -- "-$worker" 2>/dev/null || true
    done
    wait
    exit "$1"
}

# A scenario mostly waits, so that several are run at once, each worker in a network of its own.
start_workers() {
    local number
    workers=()
    trap 'stop_workers 130' INT
    trap 'stop_workers 143' TERM
    set -m # process groups of their own, which can be ended
    for ((number = 0; number < at_once && number < $#; number++)); do
        "$trk" network --printers samples/printers.json -- "$root/acceptance/run_wine.sh" --among-printers "$@" </dev/null \
            2> >(grep -v '^network: printer ' >&2) &
        workers+=($!)
    done
    set +m
    wait "${workers[@]}" || true
}

count_results() {
    local name passed=0 failed=0 result
    for name in "$@"; do
        result=$(cat "$claims/$name/result" 2>/dev/null || echo 'not run')
        if [ "$result" = passed ]; then
            passed=$((passed + 1))
        else
            failed=$((failed + 1))
            [ "$result" = FAILED ] || echo "$result: $name"
        fi
    done
    echo "$SECONDS s"
    echo "$passed passed, $failed failed"
    [ "$failed" -eq 0 ]
}

if [ "${1-}" = --among-printers ]; then
    shift
    run_scenarios "$@"
    exit
fi
make_template
scenarios=("$@")
if [ $# -eq 0 ]; then
    scenarios=(contract)
    for folder in "$scenarios_folder"/*/; do
        scenarios+=("$(basename "$folder")")
    done
fi
rm -rf "$claims"
mkdir -p "$claims"
start_workers "${scenarios[@]}"
count_results "${scenarios[@]}"
