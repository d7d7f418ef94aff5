#!/bin/sh
# Puts the two Windows programs and the library of each target into dist/ and tells their sizes.
set -eu
cd "$(dirname "$0")/.."
mkdir -p dist/i686 dist/x86_64
cp build/windows-i686/src/trk_setup.exe build/windows-x86_64/src/trk_setup64.exe dist/
cp build/windows-i686/src/libtrk.a dist/i686/
cp build/windows-x86_64/src/libtrk.a dist/x86_64/
for file in dist/trk_setup.exe dist/trk_setup64.exe dist/i686/libtrk.a dist/x86_64/libtrk.a; do
    printf '%8d bytes  %s\n' "$(stat -c %s $file)" $file
done
