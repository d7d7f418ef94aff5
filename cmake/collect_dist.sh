#!/bin/sh
# Puts the two Windows programs, and for each target the library with the imports that it needs, into dist/ and
# tells the sizes.
set -eu
cd "$(dirname "$0")/.."
mkdir -p dist/i686 dist/x86_64
cp build/windows-i686/src/trk_setup.exe build/windows-x86_64/src/trk_setup64.exe dist/
for target in i686 x86_64; do
    cp build/windows-$target/src/libtrk.a build/windows-$target/windows/libtrk_imports.a dist/$target/
    # What only our own linking needs of the objects names the folder that they were built in.
    $target-w64-mingw32-objcopy -D -w -R '.gnu.lto_*' -R '.gnu.debuglto_*' dist/$target/libtrk.a
done
for file in dist/*.exe dist/*/*.a; do
    printf '%8d bytes  %s\n' "$(stat -c %s "$file")" "$file"
done
