#!/bin/bash
# make wine32: the real 32-bit program under Wine, held against the rehearsal as in run_wine.sh, on both its roads:
#
#   install    on a 32-bit system it installs by itself
#   relaunch   on a 64-bit system it hands over to trk_setup64.exe beside it, which installs, and waits for its end
#
#   acceptance/run_wine32.sh [SCENARIO]...    for the road install; none: all, and `contract`, as in run_wine.sh
#
# A 64-bit Debian has no Wine for 32-bit programs, so Wine for both kinds lies in an i386 root of its own, which
# debootstrap makes once, from the mirror that this machine's apt uses. It needs root's rights, and a kernel that runs
# i386 programs. Everything lies in build/wine32.
set -euo pipefail
cd "$(dirname "$0")/.."

readonly root=$PWD
readonly state=$root/build/wine32
readonly base=$state/root # the i386 root
readonly recipe='i386: ca-certificates wine wine32; amd64: wine64'
readonly fetch_timeout=1200 # seconds, for each of the steps that load packages

say() { echo "wine32: $*" >&2; }

fail() {
    say "$@"
    exit 1
}

in_base() { timeout "$fetch_timeout" chroot "$@" </dev/null >>"$state/root.log" 2>&1; }

bootstrap() { # FOLDER SUITE MIRROR
    timeout "$fetch_timeout" debootstrap --arch=i386 --variant=minbase --include=ca-certificates,wine,wine32 \
        "$2" "$1" "$3" </dev/null >>"$state/root.log" 2>&1 || return 1
    in_base "$1" dpkg --add-architecture amd64 && in_base "$1" apt-get update &&
        in_base "$1" env DEBIAN_FRONTEND=noninteractive apt-get install --yes --no-install-recommends wine64:amd64 &&
        in_base "$1" apt-get clean
}

# Made aside and then put in place, so that one that was interrupted isn't taken for a ready one.
make_root() {
    local fresh=$base.new mirror suite
    [ "$(cat "$base/made-for" 2>/dev/null)" != "$recipe" ] || return 0
    read -r mirror suite < <(cmake/find_mirror.sh) || fail "there is nowhere to load the root from"
    say "making an i386 root with Wine, about 2 GB, from $mirror"
    rm -rf --one-file-system "$base" "$fresh"
    : >"$state/root.log"
    if ! bootstrap "$fresh" "$suite" "$mirror"; then
        tail -n 5 "$state/root.log" "$fresh/debootstrap/debootstrap.log" 2>/dev/null >&2 || true
        [ ! -x "$fresh/bin/true" ] || chroot "$fresh" /bin/true || say "this kernel runs no i386 programs"
        fail "the i386 root couldn't be made; all of its making is in $state/root.log"
    fi
    echo "$recipe" >"$fresh/made-for"
    mv "$fresh" "$base"
}

# The root gets this machine's devices and, under its own path, this project.
mount_root() {
    mount -t proc proc "$base/proc"
    mount --rbind /dev "$base/dev"
    mount -t tmpfs tmpfs "$base/tmp"
    mkdir -p "$base$root"
    mount --bind "$root" "$base$root"
}

# Wine's commands, as those of the root; found before this machine's own.
make_commands() {
    local name
    mkdir -p "$state/bin"
    for name in wine wineboot winecfg wineserver; do
        printf '#!/bin/sh\nexec chroot "%s" /usr/bin/%s "$@"\n' "$base" "$name" >"$state/bin/$name"
        chmod +x "$state/bin/$name"
    done
    PATH=$state/bin:$PATH
}

run_road() { # ROAD BITS VARIABLE=VALUE... -- SCENARIO...
    local -a environment=("TRK_WINE_STATE=$state/$1" "TRK_BANNER_BITS=$2")
    rm -rf "${state:?}/$1/runs"
    shift 2
    while [ "$1" != -- ]; do
        environment+=("$1")
        shift
    done
    shift
    env "${environment[@]}" acceptance/run_wine.sh "$@"
}

# The relaunch stands before everything else in the program, so that few scenarios tell all of it.
run_roads() {
    local failed=0 started=$SECONDS
    local -a program=("TRK_PROGRAM=$root/build/windows-i686/src/trk_setup.exe")
    local -a scenarios=("$@")
    if [ $# -eq 0 ]; then
        scenarios=("$root"/acceptance/scenarios/*)
        scenarios=(contract "${scenarios[@]##*/}")
    fi
    echo "the 32-bit program on a 32-bit system"
    run_road install 32 TRK_WINE_ARCH=win32 "TRK_WINDOWS_BUILD=$root/build/windows-i686" "${program[@]}" \
        -- "${scenarios[@]}" || failed=1
    echo "the 32-bit program on a 64-bit system"
    run_road relaunch 64 "TRK_SIBLING=$root/build/windows-x86_64/src/trk_setup64.exe" "${program[@]}" \
        -- network_install second_run usb_road no_inf || failed=1
    echo "the 32-bit program on a 64-bit system, without its sibling"
    run_road relaunch none "TRK_SCENARIOS=$root/acceptance/relaunch" "${program[@]}" -- no_sibling || failed=1
    echo "$((SECONDS - started)) s for all"
    return "$failed"
}

# All that is begun here lives in namespaces for processes and mounts, so that it ends with this script, even when that
# is interrupted while a package is set up.
run_inside() {
    local inside
    unshare "${own[@]}" --kill-child -- "$BASH" "$root/acceptance/run_wine32.sh" --inside "$@" &
    inside=$!
    # shellcheck disable=SC2064
    trap "kill -KILL $inside; exit 130" INT
    # shellcheck disable=SC2064
    trap "kill -KILL $inside; exit 143" TERM
    wait "$inside"
}

if [ "${1-}" = --inside ]; then
    shift
    mkdir -p "$state"
    make_root
    mount_root
    make_commands
    run_roads "$@"
    exit
fi
own=(--mount --pid --fork --mount-proc)
[ "$(id -u)" -eq 0 ] || fail "needs root's rights, for debootstrap and chroot"
unshare "${own[@]}" -- true 2>/dev/null || fail "namespaces for mounts and processes aren't permitted here"
run_inside "$@"
