"""How the cost of trk grows with its work: the processor seconds of each subject and of its half, and their ratio,
which is 2 where the cost is linear."""
import json
import shutil
import tempfile
from pathlib import Path

from table import MEMORY, SAMPLES, run

RATIO_GOAL = 2.4
SECONDS_GOAL = 2.0


def write_machine(folder, **parts):
    machine = json.loads((SAMPLES / "machines/two_printers.json").read_text())
    machine.update(parts)
    file = folder / "machine.json"
    file.write_text(json.dumps(machine, indent=1))
    return file


def copy_medium(folder):
    return Path(shutil.copytree(SAMPLES / "medium", folder / "medium"))


def install(trk, folder, medium, good=(0,), **parts):
    machine = write_machine(folder, **parts)
    script = SAMPLES / "install.actions"
    return run([trk, "rehearse", "--quiet", "--machine", machine, "--script", script, medium], good)[0]


def profile_files(trk, folder, count):
    medium = copy_medium(folder)
    for number in range(count):
        (medium / "profiles" / f"profile_{number}.tkp").write_bytes(b"x")
    return install(trk, folder, medium)


def removed_queues(trk, folder, count):
    install(trk, folder, SAMPLES / "medium")
    file = folder / "machine.json"
    machine = json.loads(file.read_text())
    spooler = machine["spooler"]
    queue = next(q for q in spooler["queues"] if q["port"].startswith("TRK_"))
    port = next(p for p in spooler["ports"] if p["name"] == queue["port"])
    for number in range(count - 1):
        name = f"TRK_10.1.{number // 250}.{number % 250}"
        spooler["queues"].append({**queue, "name": f"Queue {number}", "port": name})
        spooler["ports"].append({**port, "name": name})
    file.write_text(json.dumps(machine))
    return run([trk, "remove", "--quiet", "--machine", file])[0]


def inf_models(trk, folder, count):
    medium = copy_medium(folder)
    inf = medium / "Drivers/lbl.inf"
    line = '"Label 100 Driver" = Label_100_Series, usbprint\\label100, label100\n'
    more = "".join(f'"Model {n}" = Label_100_Series, usbprint\\m{n}\n' for n in range(count))
    inf.write_text(inf.read_text().replace(line, line + more))
    return install(trk, folder, medium)


def inf_sections(trk, folder, kilobytes):
    medium = copy_medium(folder)
    more = "".join(f"\n[Section_{n}]\nkey={n}\n" for n in range(kilobytes * 1024 // 24))
    with open(medium / "Drivers/lbl.inf", "a") as inf:
        inf.write(more)
    return install(trk, folder, medium)


def machine_queues(trk, folder, count):
    install(trk, folder, SAMPLES / "medium")
    file = folder / "machine.json"
    machine = json.loads(file.read_text())
    queue = {"port": "FILE:", "driver": "Generic / Text Only"}
    machine["spooler"]["queues"] += [{**queue, "name": f"Queue {number}"} for number in range(count)]
    shutil.rmtree(folder / "machine.json.drive-c")
    return install(trk, folder, SAMPLES / "medium", spooler=machine["spooler"])


def registry(trk, folder, kilobytes):
    keys = {f"SOFTWARE\\Key {n}": {"Value": {"type": "sz", "value": "x" * 20}} for n in range(kilobytes * 1024 // 110)}
    return install(trk, folder, SAMPLES / "medium", registry=keys)


def drive_files(trk, folder, count):
    drive = folder / "machine.json.drive-c" / "Users" / "Admin" / "Documents"
    drive.mkdir(parents=True)
    for number in range(count):
        (drive / f"{number % 100}").mkdir(exist_ok=True)
        (drive / f"{number % 100}" / f"{number}.txt").write_bytes(b"x")
    return install(trk, folder, SAMPLES / "medium")


SUBJECTS = {
    "10,000 profile files": (profile_files, 10000),
    "320 queues removed": (removed_queues, 320),
    "4,000 models in the INF": (inf_models, 4000),
    "1 MB of INF sections": (inf_sections, 1024),
    "20,000 queues of the machine": (machine_queues, 20000),
    "1 MB of registry": (registry, 1024),
    "10,000 files on drive C": (drive_files, 10000),
}


def measure(trk, subject, size):
    """The least of three runs."""
    seconds = []
    for _ in range(3):
        with tempfile.TemporaryDirectory(dir=MEMORY) as folder:
            seconds.append(subject(trk, Path(folder), size))
    return min(seconds)


def growth(table, build, _):
    trk = build / "rehearsal/trk"
    for name, (subject, size) in SUBJECTS.items():
        half, whole = (measure(trk, subject, size // part) for part in (2, 1))
        table.row(f"growth, against the half: {name}, s", whole, RATIO_GOAL, half, ".3f", whole < SECONDS_GOAL)
