#!/bin/bash
# make pages: the pages of the sample, of good runs in each language and of what is wrong with a spoilt copy of it.
# sample_pages.sh TRK FOLDER
set -euo pipefail
cd "$(dirname "$0")/../.."
readonly trk=$1
readonly folder=$2
work=$(mktemp -d)
readonly work
trap 'rm -rf "$work"' EXIT
mkdir -p "$folder"

# A run that fails is a good page all the same; anything else is wrong usage.
quietly() { "$trk" "$@" >"$work/output" 2>&1 || [ $? -eq 1 ] || { cat "$work/output"; exit 1; }; }

for language in english-us english-uk french german chinese spanish japanese; do
    quietly rehearse --profile "$language" --script samples/install.actions \
        --html "$folder/install-$language.html" samples/medium
    quietly rehearse --profile "$language" --script samples/specify_ip.actions \
        --html "$folder/address-$language.html" samples/medium
done

cp -r samples/medium "$work/spoilt"
sed -i 's/^Class=/Class = /' "$work/spoilt/Drivers/lbl.inf"
sed -i 's/100\.0/100,0/' "$work/spoilt/wrenchbay/media.inf"
rm "$work/spoilt/wrenchbay/wrenchbay.exe"
cp -r samples/medium "$work/without-terms"
rm "$work/without-terms/licenses/license_DEU.txt"
cp samples/machines/two_printers.json "$work/machine.json"
quietly rehearse --machine "$work/machine.json" --script samples/install.actions samples/medium
quietly rehearse --machine "$work/machine.json" --script samples/install.actions \
    --html "$folder/spoilt.html" "$work/spoilt"
quietly check --html "$folder/check.html" samples/medium
quietly check --html "$folder/check-spoilt.html" "$work/spoilt"
quietly matrix --faults some --only 'de/x64,ja/x86/vista' --html "$folder/matrix.html" samples/medium
quietly matrix --only 'fr/*/7,de/x86' --html "$folder/matrix-spoilt.html" "$work/without-terms"
quietly log --html "$folder/log.html" "$work/machine.json.drive-c/Windows/Temp/trk_install.log"
echo "pages of the sample: $folder"
