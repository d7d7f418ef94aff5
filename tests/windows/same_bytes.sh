#!/bin/sh
# Builds the Windows programs a second time, from a copy of the sources in another folder and without the compiler
# cache, and compares them with those in dist/: same_bytes.sh SOURCE SCRATCH. What depends on the folder, on the time
# of day or on the order of the steps shows as a difference. Only what lies in dist/ is built.
set -eu
source=$1
copy=$2/another-folder
export CCACHE_DISABLE=1

rm -rf "$copy"
mkdir -p "$copy/tests"
cp -r "$source/CMakeLists.txt" "$source/CMakePresets.json" "$source/cmake" "$source/src" "$source/windows" \
    "$source/tools" "$copy/"
cp -r "$source/tests/windows" "$copy/tests/"
cd "$copy"
for preset in windows-i686 windows-x86_64; do
    cmake --preset $preset && cmake --build --preset $preset --parallel 2 --target trk_dist || exit 1
done >"$2/again.log" 2>&1 || { cat "$2/again.log"; exit 1; }
cmake/collect_dist.sh >/dev/null

# dist/ may hold more, such as packages.
cd dist
find . -type f | sort | while read -r file; do
    cmp "$file" "$source/dist/$file"
    echo "same bytes: $file"
done
