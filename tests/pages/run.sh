#!/bin/bash
# make pages-test: the sample's pages and hostile ones in a real browser, which no network reaches. run.sh TRK
set -euo pipefail
cd "$(dirname "$0")/../.."
readonly trk=$1
readonly folder=$PWD/build/pages
readonly library=build/pages-browser
if ! cmp -s tests/pages/package-lock.json "$library/installed"; then
    mkdir -p "$library"
    cp tests/pages/package.json tests/pages/package-lock.json "$library/"
    npm ci --prefix "$library" --ignore-scripts --no-audit --no-fund --loglevel=error >/dev/null
    cp tests/pages/package-lock.json "$library/installed"
fi
tests/pages/hostile_pages.sh "$trk" "$folder"
NODE_PATH=$library/node_modules node tests/pages/browser_test.js "$folder"/*.html
