#!/usr/bin/env python3
"""Prints what the program, the layer and trk cost, beside peers from Debian's packages.

speed.py BUILD [SUBJECT]...   with BUILD the folder of the bench preset. Ends in 1 when a figure misses its goal."""
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from growth import growth
from table import MEMORY, ROOT, SAMPLES, Instructions, Table, each, median, pairs, run

INF_FILES = 1000
INF_BYTES = 16384
DEPLOYED_FILES = 73  # the sample's thirteen, and profiles


def program_sizes(table, build, folder):
    for name, goal in (("trk_setup.exe", 80000), ("trk_setup64.exe", 88000)):
        table.row(f"{name}, bytes", (ROOT / "dist" / name).stat().st_size, goal)


def rehearsal(table, build, folder):
    def command():
        machine = shutil.copy(SAMPLES / "machines/two_printers.json", folder / "machine.json")
        shutil.rmtree(folder / "machine.json.drive-c", ignore_errors=True)
        return [build / "rehearsal/trk", "rehearse", "--quiet", "--machine", machine, "--script",
                SAMPLES / "install.actions", SAMPLES / "medium"]

    table.row("trk rehearse of the sample, processor ms", 1000 * median(lambda: run(command())[0]), 8, form=".1f")
    table.row("trk rehearse of the sample, instructions", Instructions().measure(command()).total, 15_000_000)


def silence(table, build, folder):
    command = [build / "bench/trk_bench", "search"]
    table.row("a silent second of the real socket: polls", traced(command, "poll,ppoll", folder), 1)
    spent = min(run(command, folder=folder)[1] for _ in range(7)) - 1  # when a wait ends is up to the scheduler
    table.row("a search of a silent network beside its second, ms", 1000 * spent, 5, form=".1f")


def traced(command, calls, folder):
    """How many of these system calls a process makes."""
    trace = folder / "trace"
    run(["strace", "-f", "-qq", "-e", f"trace={calls}", "-e", "signal=none", "-o", trace, *command], folder=folder)
    return len(trace.read_text().splitlines())


def slp_reply(table, build, folder):
    reply = each([build / "bench/trk_bench", "reply"])
    table.row("a printer's reply read, no log, program's part: instructions", reply.program, 800)
    table.row("a printer's reply read, no log: allocations", reply.allocations(), 0, form=".2f")


def log_line(table, build, folder):
    line = each([build / "bench/trk_bench", "line"])
    table.row("a log line, the program's part: instructions", line.program, 500)
    table.row("a log line: calls that write", line.calls_of("WriteFile", "FlushFileBuffers"), 2, form=".2f")
    table.row("a log line through the layer: instructions", line.total, 4000)
    table.row("a log line through the layer: allocations", line.allocations(), 2, form=".2f")


def make_infs(folder):
    """Drivers of another class, so that grep and the program read them to the end."""
    sample = (SAMPLES / "medium/Drivers/lbl.inf").read_bytes().replace(b"Class=Printer", b"Class=Net")
    text = (sample * (INF_BYTES // len(sample) + 1))[:INF_BYTES]
    infs = folder / "infs"
    infs.mkdir()
    for number in range(INF_FILES):
        (infs / f"oem{number}.inf").write_bytes(text)
    return infs


def inf_scan(table, build, folder):
    infs = make_infs(folder)
    ours = [build / "bench/trk_bench", "scan", infs]
    peer = ["grep", "-l", "Class=Printer", *sorted(infs.iterdir())]
    searched = Instructions().measure(peer, good=(1,)).total
    scan = Instructions().measure(ours, folder=folder)
    table.row("1,000 INF files, the program's part: instructions", scan.program, 0.5, searched)
    table.row("1,000 INF files through the layer: instructions", scan.total, 2.0, searched)
    seconds = pairs(lambda: run(ours, folder=folder)[0], lambda: run(peer, (1,))[0])
    table.row("1,000 INF files through the layer: processor ms", 1000 * seconds[0], 1.0, 1000 * seconds[1], ".1f")


def deployment(table, build, _):
    """On a real disk, since the peer of a flushed line is one that lies there."""
    bench = build / "bench/trk_bench"
    with tempfile.TemporaryDirectory(dir=build) as place:
        folder = Path(place)
        medium = Path(shutil.copytree(SAMPLES / "medium", folder / "medium"))
        for number in range(DEPLOYED_FILES - 13 - len(list((medium / "profiles").iterdir()))):
            (medium / "profiles" / f"more_{number}.tkp").write_bytes(b"x" * 1000)
        ours = [bench, "deploy", medium]
        lines = int(subprocess.run(ours, cwd=folder, check=True, capture_output=True).stdout)
        deployed = Path(shutil.move(folder / "drive_c/Program Files", folder / "deployed"))
        if sum(file.is_file() for file in deployed.rglob("*")) != DEPLOYED_FILES:
            sys.exit("bench: not the files that were to be deployed")

        def peer():
            shutil.rmtree(folder / "copy", ignore_errors=True)
            (folder / "log").unlink(missing_ok=True)
            return run(["cp", "-r", deployed, folder / "copy"])[1] + run([bench, "lines", folder / "log", lines])[1]

        seconds = pairs(lambda: run(ours, folder=folder)[1], peer, 15)
        table.row(f"{DEPLOYED_FILES} files deployed, {lines} lines; cp -r and the lines: ms", 1000 * seconds[0], 1.15,
                  1000 * seconds[1], ".1f")


SUBJECTS = {
    "size": program_sizes,
    "rehearsal": rehearsal,
    "silence": silence,
    "reply": slp_reply,
    "line": log_line,
    "scan": inf_scan,
    "deployment": deployment,
    "growth": growth,
}


def main():
    build = Path(sys.argv[1]).resolve()
    wanted = sys.argv[2:] or SUBJECTS
    table = Table()
    for name in wanted:
        with tempfile.TemporaryDirectory(dir=MEMORY) as folder:
            SUBJECTS[name](table, build, Path(folder))
    return 0 if table.met else 1


if __name__ == "__main__":
    sys.exit(main())
