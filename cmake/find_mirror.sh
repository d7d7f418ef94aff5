#!/bin/sh
# The mirror and the suite of Debian's main archive, as this machine's apt has them, for debootstrap: "MIRROR SUITE".
# Fails with a message when apt knows none.
set -eu
find_mirror() {
    # shellcheck disable=SC2016
    apt-get indextargets --format '$(REPO_URI) $(CODENAME)' \
        'Created-By: Packages' 'Origin: Debian' 'Label: Debian' 'Component: main' | grep -m 1 '^https\?:'
}
# The package lists may be absent.
find_mirror && exit
timeout 1200 apt-get update --quiet >/dev/null 2>&1 || true
find_mirror || { echo "apt knows no mirror of Debian's main archive" >&2; exit 1; }
