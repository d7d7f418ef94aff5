#!/bin/bash
# Pages of a medium, a log and printers that have markup in every field. hostile_pages.sh TRK FOLDER
set -euo pipefail
cd "$(dirname "$0")/../.."
readonly trk=$1
readonly folder=$2
readonly evil='<script>pwned=1<\/script><img src=x onerror=pwned=1>"'"'"'>'
work=$(mktemp -d)
readonly work
trap 'rm -rf "$work"' EXIT
mkdir -p "$folder"
quietly() { "$trk" "$@" >"$work/output" 2>&1 || [ $? -eq 1 ] || { cat "$work/output"; exit 1; }; }

medium="$work/<img src=x onerror=pwned=1>"
cp -r samples/medium "$medium"
touch "$medium/Drivers/<img src=x onerror=pwned=1>.inf"
sed -i "s/100\.0/$evil/; s/Label 100x75/<b>$evil/" "$medium/wrenchbay/media.inf"
sed -i "s/\(Label 100 Driver\)/\1 <svg onload=pwned=1>/; s/^Class=/Class = $evil/" "$medium/Drivers/lbl.inf"
sed -i "s/=/=$evil/" "$medium/wrenchbay/settings.inf"
for terms in "$medium"/licenses/*; do
    { printf '\xff\xfe'; printf '%s' "${evil/\\/}" | iconv -f utf-8 -t utf-16le; } >"$terms"
done
answer='(printer-name=<script>pwned=1</script><img src=x onerror=pwned=1>),(id=MDL:Label_100_Series;)'
cat >"$work/<b>machine.json" <<END
{ "spooler": { "queues": [ { "name": "<script>pwned=1</script>", "port": "LPT1:", "driver": "Generic / Text Only" } ] },
  "adapters": [ { "description": "<script>pwned=1</script>", "addresses": ["10.0.0.2"], "network": "scripted",
    "searches": [ [ { "from": "10.0.0.7", "text": "$answer" } ] ] } ] }
END
printf '%s\n' 'press Network' 'select 0' 'press "Install Printer"' 'tick 1011' 'press OK' \
    'expect box "<script>pwned=1</script>"' >"$work/<b>script"
run() { quietly rehearse --machine "$work/<b>machine.json" --script "$work/<b>script" --html "$1" "$2"; }
run "$folder/hostile-install.html" "$medium"
cp samples/medium/Drivers/lbl.inf "$medium/Drivers/lbl.inf"
rm "$medium/Drivers/<img"*
run "$folder/hostile-printer.html" "$medium"
quietly check --html "$folder/hostile-check.html" "$medium"
"$trk" matrix --format json --only '*/x64/7/D/usb/CopyFileW' samples/medium |
    sed 's/"\(medium\|driver\|language\|system\|road\|fault\|verdict\|box\)": "/&<script>pwned=1<\/script><img src=x>/; s/^    "/&<svg onload=pwned=1>/' \
        >"$work/matrix.json"
quietly matrix --merge "$work/matrix.json" --html "$folder/hostile-matrix.html"
log="$work/<b>log"
{
    cat "$work/<b>machine.json.drive-c/Windows/Temp/trk_install.log"
    echo '<script>pwned=1</script><img src=x onerror=pwned=1>'
} >"$log"
quietly log --html "$folder/hostile-log.html" "$log"
