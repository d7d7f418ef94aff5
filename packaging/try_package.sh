#!/bin/bash
# Installs trk's package in a clean Debian root, made by debootstrap from apt's own mirror, and uses it there as a
# user who has nothing of this project. As root; everything lies in build/packaging/root.
set -euo pipefail
cd "$(dirname "$0")/.."
readonly work=$PWD/build/packaging
readonly base=$work/root package=$PWD/dist
[ "$(id -u)" -eq 0 ] || { echo "try-package: needs root's rights" >&2; exit 2; }

read -r mirror suite < <(cmake/find_mirror.sh)
if [ ! -e "$base.tar" ]; then
    rm -rf --one-file-system "$base"
    mkdir -p "$work"
    debootstrap --variant=minbase "$suite" "$base" "$mirror" </dev/null >"$work/root.log" 2>&1 ||
        { tail -n 5 "$work/root.log" >&2; exit 1; }
    tar -C "$base" -cf "$base.tar" .
fi
# A fresh copy each time: what an earlier try installed would hide a missing dependency.
rm -rf --one-file-system "$base"
mkdir -p "$base"
tar -C "$base" -xf "$base.tar"
cp "$package"/trk_*.deb "$base/trk.deb"

run() { chroot "$base" /bin/sh -ec "$1" </dev/null; }
run 'apt-get install --yes --no-install-recommends /trk.deb' >"$work/install.log" 2>&1 ||
    { tail -n 5 "$work/install.log" >&2; exit 1; }
run 'trk --version'
run 'cd /root && cp /usr/share/trk/samples/machines/two_printers.json machine.json &&
    trk rehearse --quiet --machine machine.json --script /usr/share/trk/samples/install.actions \
        /usr/share/trk/samples/medium && test -s machine.json'
# A minimal root leaves manual pages and documents out of what it installs, so the package itself is asked.
dpkg-deb --contents dist/trk_*.deb >"$work/contents.log"
for wanted in man1/trk.1.gz man1/trk-rehearse.1.gz completions/trk doc/trk/README.md samples/medium/; do
    grep -q "$wanted" "$work/contents.log" || { echo "try-package: $wanted isn't in the package" >&2; exit 1; }
done
run 'apt-get purge --yes trk' >"$work/install.log" 2>&1
run 'test ! -e /usr/bin/trk && test ! -e /usr/share/trk'
echo "try-package: installed, used and removed in a clean $suite"
