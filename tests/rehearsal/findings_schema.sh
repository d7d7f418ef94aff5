#!/bin/sh
# findings_schema.sh TRK SOURCE: what `trk check --format json` writes for a good and for a bad medium is what its
# schema says, by a validator of Debian's; and the schema refuses what it doesn't say.
set -eu
trk=$1
schema=$2/docs/schema/findings.schema.json
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

validate() { python3 -W ignore -m jsonschema -i "$1" "$schema"; }

cp -r "$2/samples/medium" "$folder/medium"
"$trk" check --format json "$folder/medium" >"$folder/good.json" || test $? -eq 1
validate "$folder/good.json"

# A place with line and column, one of a file as a whole, and a warning.
printf '[media]\r\n"A","1","2",0\r\n' >"$folder/medium/wrenchbay/media.inf"
printf 'x' >"$folder/medium/Drivers/lbl.cat"
rm "$folder/medium/licenses/license_FRA.txt"
status=0
"$trk" check --format json "$folder/medium" >"$folder/bad.json" || status=$?
test "$status" -eq 1
validate "$folder/bad.json"
for id in media-header catalogue-unreadable terms-missing; do
    grep -q "\"id\": \"$id\"" "$folder/bad.json" || { echo "no $id among the findings"; exit 1; }
done

for change in 's/"severity": "error"/"severity": "fatal"/' 's/"reason"/"text"/' 's/"line": [0-9]*/"line": 0/' \
    's/"schema": "[^"]*"/"schema": "other"/'; do
    sed "$change" "$folder/bad.json" >"$folder/changed.json"
    if cmp -s "$folder/bad.json" "$folder/changed.json" || validate "$folder/changed.json" >"$folder/said" 2>&1; then
        echo "the schema takes $change"
        exit 1
    fi
done
