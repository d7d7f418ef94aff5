#!/bin/bash
# The Windows programs as they are handed on: dist/trk_setup-VERSION.zip with the two programs, their SHA-256 sums and
# the bill of materials. The same programs give the same archive.
#   packaging/windows_zip.sh [FOLDER]    FOLDER: where the programs are and the archive goes; none: dist
set -euo pipefail
cd "$(dirname "$0")/.."
version=$(sed -n 's/^project(.*VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
programs=$(realpath "${1:-dist}")
readonly version programs library=@cyclonedx/cyclonedx-library@6.13.1
readonly work=$PWD/build/packaging name=trk_setup-$version
readonly archive=$programs/$name.zip

command -v npm >/dev/null || cmake/install_packages.sh debian-packages-node.txt

# The library and the validator that it asks for; kept for the next time.
if [ ! -d "$work/node/node_modules/@cyclonedx" ]; then
    mkdir -p "$work/node"
    (cd "$work/node" && npm install --no-save --omit=dev --no-audit --no-fund --ignore-scripts --loglevel=error \
        "$library" ajv@8 ajv-formats@3 ajv-formats-draft2019@1 >/dev/null)
fi

# What of the packages is in the programs: the C runtime's start and import libraries, and the compiler's helpers.
linked=()
for package in mingw-w64-i686-dev mingw-w64-x86-64-dev gcc-mingw-w64-i686-win32 gcc-mingw-w64-x86-64-win32; do
    linked+=("$package=$(dpkg-query -W -f='${Version}' "$package")")
done

rm -rf "${work:?}/$name"
mkdir -p "$work/$name"
cp "$programs"/trk_setup.exe "$programs"/trk_setup64.exe "$work/$name/"
(cd "$work/node" && node "$OLDPWD/packaging/bill_of_materials.mjs" "$version" "$work/$name" "${linked[@]}") \
    >"$work/$name/bom.json"
(cd "$work/$name" && sha256sum -- *.exe bom.json >SHA256SUMS)
# An archive keeps times; all get that of the commit, so that it is the same each time.
touch -d "@$(git log -1 --format=%ct 2>/dev/null || echo 1000000000)" "$work/$name"/* "$work/$name"
rm -f "$archive"
(cd "$work" && TZ=UTC zip -q -X -9 "$archive" "$name"/*)
echo "${archive#"$PWD/"}"
