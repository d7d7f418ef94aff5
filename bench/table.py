"""What the benches share: running a process and counting what it costs, and the table of the figures."""
import os
import statistics
import subprocess
import sys
import tempfile
import time
from collections import Counter
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SAMPLES = ROOT / "samples"
MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None  # no disk's moods in the figures


def run(command, good=(0,), folder=None):
    """The processor seconds and the seconds of a process, which has to end in a status of `good`."""
    command = [str(word) for word in command]
    start = time.monotonic()
    child = subprocess.Popen(command, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    seconds = time.monotonic() - start
    child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode not in good:
        sys.exit(f"bench: status {child.returncode} of: {' '.join(command)}")
    return usage.ru_utime + usage.ru_stime, seconds


def pairs(ours, peer, times=7):
    """The medians of what two routines give, called in turn."""
    figures = [(ours(), peer()) for _ in range(times)]
    return tuple(statistics.median(figure) for figure in zip(*figures))


def median(routine, times=7):
    return statistics.median(routine() for _ in range(times))


class Table:
    """Prints a row as soon as it is known."""

    def __init__(self):
        self.met = True
        self.print_row("subject", "ours", "peer", "ratio", "goal", "met")

    @staticmethod
    def print_row(subject, ours, peer, ratio, goal, met):
        print(f"{subject:58} {ours:>12} {peer:>12} {ratio:>6} {goal:>10}  {met}", flush=True)

    def row(self, subject, ours, goal, peer=None, form=",.0f", good=True):
        """The goal is one for the ratio where there is a peer, else for the figure. `good` is what else the row asks."""
        ratio = None if peer is None else ours / peer
        met = good and (ours if ratio is None else ratio) <= goal
        self.met = self.met and met
        self.print_row(subject, format(ours, form), "" if peer is None else format(peer, form),
                       "" if ratio is None else f"{ratio:.2f}", f"{goal:,}", "yes" if met else "no")


class Instructions:
    """What callgrind counts of a process: instructions in all, those of src/ with the C library's that it calls, and
    how often each function is called."""

    ALLOCATORS = ("malloc", "calloc", "realloc", "memalign", "aligned_alloc", "posix_memalign")

    def __init__(self):
        self.total = self.program = 0
        self.calls = Counter()

    def measure(self, command, good=(0,), folder=None):
        with tempfile.TemporaryDirectory() as place:
            file = Path(place) / "callgrind"
            run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={file}", *command], good, folder)
            with open(file) as lines:
                self.read(lines)
        return self

    def read(self, lines):
        names = {}  # of files and of functions; a name stands at its number's first use alone
        in_program = calls = False
        current = callee_file = callee = ""
        for line in lines:
            key, _, value = line.rstrip("\n").partition("=")
            if key in ("fl", "fi", "fe", "cfi", "cfl", "fn", "cfn"):
                number, _, name = value.partition(" ")
                kind = "fn" if key.endswith("fn") else "fl"
                value = names.setdefault((kind, number), name)
            if key in ("fl", "fi", "fe"):
                current = callee_file = value
                if key == "fl":
                    own = value
            elif key == "fn":
                in_program = own.startswith(f"{ROOT}/src/")
            elif key in ("cfi", "cfl"):
                callee_file = value
            elif key == "cfn":
                callee = value.partition("(")[0]
            elif key == "calls":
                calls = True
                self.calls[callee] += int(value.split()[0])
            elif line[0] in "0123456789+-*":
                self.count(int(line.split()[-1]), calls, in_program, callee_file)
                if calls:
                    calls, callee_file = False, current

    def count(self, cost, is_call, in_program, callee_file):
        if not is_call:
            self.total += cost
        if in_program and (not is_call or not callee_file.startswith(f"{ROOT}/")):
            self.program += cost


    def calls_of(self, *names):
        return sum(self.calls[name] for name in names)

    def allocations(self):
        return round(self.calls_of(*self.ALLOCATORS), 2)  # without the journal's growth now and then


def each(command, times=1000):
    """The counts of one turn, by the difference between `times` and twice as many. The number comes last."""
    once, twice = Instructions(), Instructions()
    for counts, number in ((once, times), (twice, 2 * times)):
        with tempfile.TemporaryDirectory(dir=MEMORY) as folder:  # what a run leaves would cost the next one
            counts.measure([*command, number], folder=folder)
    twice.calls.subtract(once.calls)
    once.total = (twice.total - once.total) / times
    once.program = (twice.program - once.program) / times
    once.calls = Counter({name: count / times for name, count in twice.calls.items()})
    return once
