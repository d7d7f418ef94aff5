#!/bin/sh
# Installs what is missing of a package list of this folder, debian-packages.txt or the one named, from Debian's
# packages. When nothing is missing it only asks the package database, so that a second run costs nothing and needs
# no network.
set -eu
list=$(dirname "$0")/${1:-debian-packages.txt}
wanted=$(sed -e 's/#.*//' "$list")

# Elsewhere than on Debian the packages have other names, and what is missing shows in the build.
if ! command -v dpkg-query >/dev/null; then
    echo "not a Debian system: see $list for what the build needs"
    exit 0
fi

missing=
for package in $wanted; do
    state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$state" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=
[ "$(id -u)" -eq 0 ] || as_root=sudo
log=$(mktemp)
trap 'rm -f "$log"' EXIT
install() {
    # A package may ask questions and start a pager; an unattended run has nobody to answer.
    # shellcheck disable=SC2086
    $as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install --yes --quiet --no-install-recommends $missing </dev/null >"$log" 2>&1
}

echo "installing:$missing"
# The package lists may be absent or old, so one more try follows an update.
if ! install; then
    if ! $as_root apt-get update --quiet >"$log" 2>&1 || ! install; then
        cat "$log"
        exit 1
    fi
fi
