#!/usr/bin/python3
"""Measures the window beside an empty one of Qt Quick's, in one run; scripts/benchmark calls it.

    benchmarks/main_window.py --applications N --files N --rounds R [--scratch DIR]

Says on each line what was measured, and the median.
"""

from __future__ import annotations

import argparse
import os
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "tools"))
sys.path.insert(0, str(HERE))
import volumes  # noqa: E402
from window.screen import Screen, enter_session  # noqa: E402

PROGRAMS = HERE.parent / "build/release/bin"
IDLE_SECONDS = 5


class Run:
    """A program with a probe in it, and what that says."""

    def __init__(self, screen: Screen, what: str, *command: object):
        environment = dict(screen.environment(), ORVANE_PROBE=what, ORVANE_STARTED=f"{time.monotonic():.9f}")
        # Nobody reads the window aloud here, neither of the two.
        environment.pop("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", None)
        self.process = subprocess.Popen([str(word) for word in command], env=environment, stdout=subprocess.PIPE, text=True)

    def said(self, until: str = "") -> dict[str, float]:
        found = {}
        for line in self.process.stdout:
            name, value = line.rsplit(" ", 1)
            found[name] = float(value)
            if name == until:
                return found
        if self.process.wait() != 0:
            sys.exit(f"{self.process.args[0]} failed ({self.process.returncode})")
        return found

    def wake_ups(self) -> int:
        """How often its threads have waited for something so far."""
        count = 0
        for thread in Path(f"/proc/{self.process.pid}/task").iterdir():
            lines = (thread / "status").read_text().splitlines()
            count += sum(int(line.split()[1]) for line in lines if line.startswith("voluntary_ctxt_switches"))
        return count


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--applications", type=int, default=10_000)
    parser.add_argument("--files", type=int, default=300_000)
    parser.add_argument("--rounds", type=int, default=10)
    parser.add_argument("--scratch", type=Path)
    options = parser.parse_args()
    enter_session()
    with tempfile.TemporaryDirectory(prefix="orvane-window-", dir=options.scratch) as scratch, Screen() as screen:
        volume = volumes.applications(Path(scratch) / "volume", [1] * options.applications)
        volumes.write_files(volume / "Applications/Sample00000.app/Contents/Resources/large", options.files)
        place = ("--root", volume, "--home", "/" + volumes.HOME)
        subprocess.run([PROGRAMS / "orvane-cli", *place, "list", "--rescan"], check=True, stdout=subprocess.DEVNULL)

        starts: list[dict[str, float]] = []
        empty: list[dict[str, float]] = []
        for _ in range(options.rounds + 1):
            starts.append(Run(screen, "start", PROGRAMS / "orvane-probed-window", *place).said())
            empty.append(Run(screen, "start", PROGRAMS / "orvane-empty-window").said())
        used = [Run(screen, "use", PROGRAMS / "orvane-probed-window", *place).said()
                for _ in range(min(3, options.rounds))]
        idle = Run(screen, "idle", PROGRAMS / "orvane-probed-window", *place)
        idle.said(until="idle")
        time.sleep(2)
        before = idle.wake_ups()
        time.sleep(IDLE_SECONDS)
        wake_ups = idle.wake_ups() - before
        idle.process.terminate()
        idle.process.wait()

    # The first one has filled the caches.
    def median(of: list[dict[str, float]], name: str, skipped: int = 0) -> float:
        return statistics.median(run[name] for run in of[skipped:])

    print("empty window, first frame", median(empty, "frame", 1))
    print("first frame", median(starts, "frame", 1))
    print("first list", median(starts, "list", 1))
    for name in ("memory", "own memory"):
        print("empty window,", name, median(empty, name, 1))
        print(name, median(starts, name, 1))
    print("keystroke", median(used, "keystroke"))
    print("longest keystroke", median(used, "longest keystroke"))
    print("plain ICU search", median(used, "icu"))
    print("held key", median(used, "held key"))
    print("longest held key", median(used, "longest held key"))
    print("memory after 1,000 selections", median(used, "memory after selections"))
    print("longest stall in a scan", median(used, "stall of processor"))
    print("longest stall in a scan, on the clock", median(used, "stall"))
    print("wake-ups in five idle seconds", wake_ups)


if __name__ == "__main__":
    main()
