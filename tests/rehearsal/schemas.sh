#!/bin/sh
# schemas.sh TRK SOURCE: what trk writes as JSON, and the machine files that it reads, are what their schemas in
# docs/schema say, by a validator of Debian's; and the schemas refuse what they don't say.
set -eu
trk=$1
source=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# Of a good and of a bad medium: a place with line and column, one of a file as a whole, and a warning.
cp -r "$source/samples/medium" medium
cp -r medium broken
printf '[media]\r\n"A","1","2",0\r\n' >broken/wrenchbay/media.inf
printf 'x' >broken/Drivers/lbl.cat
rm broken/licenses/license_FRA.txt
"$trk" check --format json medium >findings.good.json || test $? -eq 1
! "$trk" check --format json broken >findings.bad.json
for id in media-header catalogue-unreadable terms-missing; do
    grep -q "\"id\": \"$id\"" findings.bad.json || { echo "no $id among the findings"; exit 1; }
done

# Runs that end well, fail at a step, and can't follow their script; the machines before and after.
for name in two_printers faults no_adapter older_driver; do
    cp "$source/samples/machines/$name.json" "machine.$name.json"
    cp "machine.$name.json" after.json
    "$trk" rehearse --quiet --machine after.json --script "$source/samples/install.actions" \
        --report "report.$name.json" medium >said 2>&1 || test $? -eq 1
    mv after.json "machine.after_$name.json"
    cat after.json.drive-c/Windows/Temp/trk_install.log >>install.log
    rm -r after.json.drive-c
done
"$trk" profiles | while read -r name what; do "$trk" profiles "$name" medium >"machine.profile_$name.json"; done

"$trk" facts --json medium >facts.good.json
sed 's/^CopyFiles/Copied/' medium/Drivers/lbl.inf >broken/Drivers/lbl.inf
"$trk" facts --json broken >facts.bad.json 2>said || test $? -eq 1
"$trk" log --json --explain install.log >log.explained.json || test $? -eq 1
tail -c 700 install.log | head -c 500 | "$trk" log --json - >log.cut.json || test $? -eq 1

# With silent failures, and a part whose runs fail.
"$trk" matrix --format json --only 'de/x64/7/D/network/*Printer*' medium >matrix.faults.json
! "$trk" matrix --format json --shard 1/4 --only ja/x86/7 broken >matrix.shard.json
grep -q '"silent"' matrix.faults.json

# One process for all: the validator takes longer to start than to judge.
python3 -W ignore - "$source/docs/schema" <<'END'
import copy, glob, json, sys
import jsonschema

def validator_of(name):
    with open(f"{sys.argv[1]}/{name}.schema.json") as file:
        schema = json.load(file)
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)

kinds = ["findings", "machine", "report", "facts", "log", "matrix"]
validators = {kind: validator_of(kind) for kind in kinds}
failed = False

def complain(text):
    global failed
    failed = True
    print(text)

def judge(kind, name, value):
    for error in validators[kind].iter_errors(value):
        complain(f"{name}: {error.json_path}: {error.message}")

values = {}
for kind in kinds:
    for name in sorted(glob.glob(f"{kind}.*.json")):
        with open(name) as file:
            values[name] = json.load(file)
        judge(kind, name, values[name])
        if kind == "report":
            judge("machine", name + ": machine", values[name]["machine"])

# What is written must fill the schema: each list of objects that it describes has to have come up somewhere.
def refused(kind, name, *path, to):
    value = copy.deepcopy(values[name])
    place = value
    for key in path[:-1]:
        place = place[key]
    if path[-1] not in place and to is None:
        complain(f"{name}: has no {path}")
        return
    if to is None:
        del place[path[-1]]
    else:
        place[path[-1]] = to
    if validators[kind].is_valid(value):
        complain(f"{kind}: takes {path} = {to!r} of {name}")

for kind, name, path, to in [
    ("findings", "findings.bad.json", ("findings", 0, "severity"), "fatal"),
    ("findings", "findings.bad.json", ("findings", 0, "reason"), None),
    ("findings", "findings.bad.json", ("findings", 0, "line"), 0),
    ("machine", "machine.after_two_printers.json", ("spooler", "queues", 1, "driver"), None),
    ("machine", "machine.after_two_printers.json", ("spooler", "queues", 1, "colour"), "red"),
    ("machine", "machine.after_two_printers.json", ("adapters", 0, "network"), "wireless"),
    ("machine", "machine.faults.json", ("faults", 0, "nth"), 0),
    ("report", "report.two_printers.json", ("files", 0, "folder"), "yes"),
    ("report", "report.two_printers.json", ("shortcuts", 0, "target"), None),
    ("report", "report.two_printers.json", ("dialogs", 0, "controls", 0, "kind"), "slider"),
    ("report", "report.faults.json", ("failures", 0), 1797),
    ("report", "report.faults.json", ("boxes", 0, "text"), None),
    ("facts", "facts.good.json", ("models", 0, "environment"), "Windows"),
    ("facts", "facts.good.json", ("queue", "label_sizes"), -1),
    ("facts", "facts.bad.json", ("failures",), "one"),
    ("log", "log.explained.json", ("runs", 0, "printers", 0, "typed"), "no"),
    ("log", "log.explained.json", ("runs", 1, "failed_steps", 0, "error", "code"), -1),
    ("log", "log.explained.json", ("runs", 0, "lines", 0, "known"), None),
    ("log", "log.explained.json", ("runs", 0, "verdict"), "fine"),
    ("matrix", "matrix.faults.json", ("results", 0, "ending"), "fine"),
    ("matrix", "matrix.faults.json", ("results", 0, "stayed", 0), 1),
    ("matrix", "matrix.faults.json", ("results", 0, "again"), None),
    ("matrix", "matrix.faults.json", ("results", 0, "state"), "F"),
]:
    refused(kind, name, *path, to=to)
for kind in ["findings", "report", "facts", "log", "matrix"]:
    name = next(name for name in values if name.startswith(kind))
    refused(kind, name, "schema", to="other")
sys.exit(failed)
END
