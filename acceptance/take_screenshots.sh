#!/bin/bash
# make screenshots: the real 64-bit program's dialogs under Wine, in every language, as docs/pictures/*.png.
#
#   acceptance/take_screenshots.sh [LANGUAGE]...     none: all of them
#
# VISITS in the environment names the wanted visits; without it all are made.
# A visit is a folder of acceptance/pictures/visits with the steps that the photographer takes (see
# acceptance/pictures/main.cpp), and where it needs them machine.json and `setting`, which has lines of these words:
#   without PATH   takes a file off the medium
#   network_only   the medium's printers have no USB
#   port_taken     another process has the port that printers answer to
#   file PATH      puts a file on drive C, in the way of a folder
#   program NAME   one of ours that shows a window, with the setup program's path
#
# Everything lies in build/screenshots. The display is one of its own, too. A text that its control cuts and controls
# that overlap are told, and make the run fail; the pictures are taken all the same.
set -euo pipefail
cd "$(dirname "$0")/.."

readonly root=$PWD
readonly state=${TRK_SCREENSHOTS_STATE:-$root/build/screenshots}
readonly trk=$root/build/linux/rehearsal/trk
readonly windows=${TRK_WINDOWS_BUILD:-$root/build/windows-x86_64}
readonly pictures=${TRK_PICTURES:-$root/docs/pictures}
readonly template=$state/template
readonly wine_fonts=/usr/share/wine/fonts
readonly east_asian_font=/usr/share/fonts/truetype/wqy/wqy-microhei.ttc
readonly visit_timeout=150 # seconds; what the photographer gives a visit
readonly hang_timeout=180  # what a visit may take when the photographer itself hangs
readonly names=(en_us en_gb de es fr ja zh)
readonly -A locales=([en_us]=en_US [en_gb]=en_GB [de]=de_DE [es]=es_ES [fr]=fr_FR [ja]=ja_JP [zh]=zh_CN)

unset DISPLAY WAYLAND_DISPLAY

say() { echo "screenshots: $*" >&2; }

# shellcheck source=acceptance/wine_prefix.sh
. "$root/acceptance/wine_prefix.sh"

# Wine takes whatever other fonts a machine has for titles, and draws boxes where those have no letter.
name_fonts() {
    mkdir -p "$state"
    printf '<fontconfig><dir>%s</dir><cachedir>%s</cachedir></fontconfig>\n' "${east_asian_font%/*}" "$state/fontcache" \
        >"$state/fonts.conf"
    export FONTCONFIG_FILE=$state/fonts.conf
}

registry() { # KEY NAME VALUE
    WINEPREFIX=$template timeout "$make_timeout" wine reg add "$1" /v "$2" /d "$3" /f >>"$state/template.log" 2>&1
}

# The prefix gets fonts, a display, and a caret that stands still, so that two runs give the same pictures. Wine has
# no bold font of its own then and makes one, which looks better than the one left out. The dialogs' font is the one
# of Windows; Wine's own choice is wider.
dress_template() {
    local font
    [ ! -e "$template/dressed" ] || return 0
    for font in "$wine_fonts"/* "$east_asian_font"; do
        [ "${font##*/}" = tahomabd.ttf ] || cp "$font" "$template/drive_c/windows/Fonts/"
    done
    registry 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontSubstitutes' 'MS Shell Dlg' 'MS Sans Serif'
    registry 'HKCU\Control Panel\Desktop' CursorBlinkRate -1
    registry 'HKCU\Software\Wine\X11 Driver' Managed N
    registry 'HKCU\Software\Wine\Drivers' Graphics x11
    WINEPREFIX=$template timeout "$make_timeout" wineserver -w
    touch "$template/dressed"
}

# Where the code pages have changed since the last start Wine sets the dialogs' font anew. It may for Japanese and
# Chinese, whose fonts are others, and is to leave ours alone for the rest.
name_code_pages() { # PREFIX LOCALE
    local pages=1252,850
    case $2 in
    ja_JP | zh_CN) return ;;
    en_US) pages=1252,437 ;;
    esac
    sed -i "s/^\"Codepages\"=.*/\"Codepages\"=\"$pages\"/" "$1/user.reg"
}

start_display() {
    local number
    exec {display_output}< <(exec Xvfb -displayfd 1 -screen 0 1920x1200x24 -nolisten tcp -noreset 2>/dev/null)
    display_process=$!
    read -r -t 20 number <&"$display_output"
    export DISPLAY=:$number
}

read_setting() { # VISIT-FOLDER
    network_only='' port_taken='' blocking_file='' program='' without=()
    local word rest
    [ -e "$1/setting" ] || return 0
    while read -r word rest; do
        case $word in
        without) without+=("$rest") ;;
        network_only) network_only=1 ;;
        port_taken) port_taken=1 ;;
        file) blocking_file=$rest ;;
        program) program=$rest ;;
        *)
            say "$1/setting: unknown word $word"
            return 1
            ;;
        esac
    done <"$1/setting"
}

make_medium() { # MEDIUM
    lay_medium "$1" "$windows/src/trk_setup64.exe"
    [ -z "$network_only" ] || sed -i 's/usbprint\\label100, //' "$1/Drivers/lbl.inf"
}

make_machine() { # VISIT-FOLDER FILE
    local own=$1/machine.json
    [ -e "$own" ] || own=/dev/null
    jq -s '.[0] * (.[1] // {})' "$root/acceptance/machine.json" "$own" >"$2"
}

# Another process with the printers' port, for as long as the visit takes.
take_port() {
    exec {port_output}< <(exec "$trk" printer --address "$TRK_PROGRAM_ADDRESS" --model none --name none)
    port_process=$!
    read -r -t 20 <&"$port_output"
}

release_port() {
    [ -z "$port_process" ] || kill "$port_process" 2>/dev/null || true
    port_process=''
}

photograph() { # VISIT-FOLDER RUN-FOLDER LOCALE
    local command='D:\medium\trk_setup64.exe'
    [ -z "$program" ] || command="$(windows_path "$windows/acceptance/pictures/$program") $command"
    env -u LANG "WINEPREFIX=$2/prefix" "LOCPATH=$state/locales" "LC_ALL=$3.UTF-8" \
        "TRK_MACHINE_FILE=$(windows_path "$2/machine.json")" timeout "$hang_timeout" \
        wine "$windows/acceptance/pictures/trk_photographer.exe" "$visit_timeout" 'D:\medium' \
        "$(windows_path "$1/steps")" "$(windows_path "$2/pictures")" "$command" </dev/null 2>>"$2/output"
}

# The language's name goes into the pictures' names. Few colours are enough for dialogs.
keep_pictures() { # RUN-FOLDER LANGUAGE
    local file
    for file in "$1"/pictures/*.bmp; do
        convert "$file" +dither -colors 128 -strip -define png:exclude-chunks=all \
            -define png:compression-level=9 "png:$pictures/$(basename "$file" .bmp)_$2.png"
    done
}

visit() { # VISIT LANGUAGE
    local folder=$root/acceptance/pictures/visits/$1 status=0
    current=$state/runs/$2/$1
    rm -rf "$current"
    mkdir -p "$current/d" "$current/pictures"
    read_setting "$folder"
    make_medium "$current/d/medium"
    make_machine "$folder" "$current/machine.json"
    make_prefix "$current/prefix" "$current/d"
    name_code_pages "$current/prefix" "${locales[$2]}"
    [ -z "$blocking_file" ] || touch "$current/prefix/drive_c/$blocking_file"
    [ -z "$port_taken" ] || take_port
    photograph "$folder" "$current" "${locales[$2]}" >"$current/faults" || status=$?
    release_port
    stop_server "$current/prefix"
    [ "$status" -eq 0 ] || {
        say "$1, $2:"
        cat "$current/faults" "$current/output" >&2
    }
    keep_pictures "$current" "$2"
    return "$status"
}

# What is wanted and has texts of its own in the language: a list's rows and the message without a table are taken
# once, and the remover's texts are missing in one of them.
wanted() { # VISIT LANGUAGE
    [[ -z "${VISITS-}" || " $VISITS " == *" $1 "* ]] || return 1
    case $1 in
    many_printers | no_driver) [ "$2" = en_us ] ;;
    remover) [ "$2" != en_us ] ;;
    *) true ;;
    esac
}

# Begun again among the printers.
take_pictures() {
    local language folder name failed=0
    current='' port_process='' display_process=''
    trap 'release_port; [ -z "$current" ] || stop_server "$current/prefix"; kill "$display_process"' EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    if [ "$TRK_NETWORK" != namespaces ]; then
        say "network namespaces aren't permitted here, and Wine lists no loopback adapter"
        exit 1
    fi
    start_display
    mkdir -p "$pictures"
    for language in "$@"; do
        make_locale "${locales[$language]}"
        for folder in acceptance/pictures/visits/*/; do
            name=$(basename "$folder")
            wanted "$name" "$language" || continue
            visit "$name" "$language" || failed=$((failed + 1))
        done
        echo "$language taken"
    done
    echo "$failed visits failed"
    [ "$failed" -eq 0 ]
}

if [ "${1-}" = --among-printers ]; then
    shift
    take_pictures "$@"
    exit
fi
name_fonts
make_template
dress_template
languages=("$@")
[ $# -gt 0 ] || languages=("${names[@]}")
exec "$trk" network --printers samples/printers.json -- "$root/acceptance/take_screenshots.sh" --among-printers "${languages[@]}" \
    2> >(grep --line-buffered -v '^network: printer ' >&2)
