#!/bin/sh
# Configures and builds CMake presets: build.sh JOBS PRESET... What configuring says is shown only when it fails.
set -eu
cd "$(dirname "$0")/.."
jobs=$1
shift
mkdir -p build
for preset in "$@"; do
    echo "building $preset"
    log=build/$preset-configure.log
    if ! cmake --preset "$preset" >"$log" 2>&1; then
        cat "$log"
        exit 1
    fi
    cmake/timed.sh "build-$preset" cmake --build --preset "$preset" --parallel "$jobs"
done
