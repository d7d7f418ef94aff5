#!/bin/bash
# trk's Debian package, from what `make linux` built, into dist/.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --build --preset linux --target trk_manuals
rm -f build/linux/packaging/*.deb
if ! (cd build/linux && cpack --config CPackConfig.cmake) >build/linux/packaging.log 2>&1; then
    cat build/linux/packaging.log
    exit 1
fi
mkdir -p dist
cp build/linux/packaging/*.deb dist/
ls dist/*.deb
