# Wine prefixes of our own, for the scripts that run the real program; sourced by them. They set
#   root, state   the project's folder, and the one that takes the prefixes
#   template      the prefix that all others are made of
#   windows       the build that holds the spooler's library
# and have say(), which tells the user something.
# shellcheck shell=bash disable=SC2154

readonly make_timeout=180 # seconds, for a prefix on a busy machine

export WINEARCH=${TRK_WINE_ARCH:-win64} WINEDEBUG=-all
export WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe=d;winedbg.exe=d;winspool.drv=n,b'

# Ends the prefix's server and with it every program in it.
stop_server() { WINEPREFIX=$1 timeout 20 wineserver -k 2>/dev/null || true; }

# A prefix of this Wine version, without a display driver. It is made aside and then put in place, so that one
# that was interrupted isn't taken for a ready one.
make_template() {
    local version fresh=$template.new
    version=$(wine --version)
    [ "$(cat "$template/version" 2>/dev/null)" != "$version" ] || return 0
    say "making a prefix for $version"
    rm -rf "$template" "$fresh"
    mkdir -p "$state"
    WINEPREFIX=$fresh timeout "$make_timeout" wineboot -i >"$state/template.log" 2>&1
    WINEPREFIX=$fresh timeout "$make_timeout" wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f \
        >>"$state/template.log" 2>&1
    WINEPREFIX=$fresh timeout "$make_timeout" winecfg -v win10 >>"$state/template.log" 2>&1
    WINEPREFIX=$fresh timeout "$make_timeout" wineserver -w
    rm -f "$fresh/drive_c/windows/system32/winspool.drv"
    mkdir -p "$fresh/drive_c/windows/system32/DriverStore/FileRepository"
    echo "$version" >"$fresh/version"
    mv "$fresh" "$template"
}

# The locales that are asked for; most machines have but one or two. Made aside and put in place, as others may be
# asking for the same one.
make_locale() {
    local made=$state/locales/$1.UTF-8 fresh
    [ ! -d "$made" ] || return 0
    mkdir -p "$state/locales"
    fresh=$(mktemp -d "$state/locales/new.XXXXXX")
    localedef -i "$1" -f UTF-8 "$fresh/made" || return 1
    mv -T "$fresh/made" "$made" 2>/dev/null || [ -d "$made" ]
    rm -rf "$fresh"
}

# A prefix made of the template. Wine's own files are links to the template's, as they are large and nobody writes
# them; all else is copied.
make_prefix() { # PREFIX MEDIUM-PARENT
    local prefix=$1 folder
    mkdir -p "$prefix/drive_c" "$prefix/dosdevices"
    cp -a "$template"/*.reg "$template/.update-timestamp" "$prefix/"
    for folder in "$template"/drive_c/*; do
        [ "${folder##*/}" = windows ] || cp -a "$folder" "$prefix/drive_c/"
    done
    cp -rs "$template/drive_c/windows" "$prefix/drive_c/"
    ln -s "$windows/acceptance/winspool/winspool.drv" "$prefix/drive_c/windows/system32/winspool.drv"
    ln -s ../drive_c "$prefix/dosdevices/c:"
    ln -s "$2" "$prefix/dosdevices/d:"
    ln -s / "$prefix/dosdevices/z:"
}

# The sample medium with the programs, and without the files that the array `without` names.
lay_medium() { # MEDIUM PROGRAM...
    local medium=$1 path
    shift
    cp -r "$root/samples/medium" "$medium"
    cp "$@" "$medium/"
    for path in "${without[@]}"; do
        rm "$medium/$path"
    done
}

windows_path() { # a path of this machine, as a program in the prefix sees it
    local path=Z:$1
    echo "${path//\//\\}"
}
