#!/usr/bin/python3
"""Measures the window on a plan of many launch items beside the same window on plans of few, in one run.

    benchmarks/large_plan.py [--items N] [--full N] [--few N] [--rounds R] [--program PROGRAM]

Each round starts the window on either volume, waits for the plan, opens the review, and reads from the system how much
memory the program holds then. The table gives medians.
"""

from __future__ import annotations

import argparse
import plistlib
import re
import statistics
import sys
import tempfile
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "tools"))
from window.screen import Screen, enter_session  # noqa: E402


def make_volume(root: Path, items: int) -> Path:
    """A Mac volume with one application that so many launch agents start."""
    contents = root / "Applications/Manifold.app/Contents"
    contents.mkdir(parents=True)
    information = {"CFBundleName": "Manifold", "CFBundleIdentifier": "org.example.manifold"}
    (contents / "Info.plist").write_bytes(plistlib.dumps(information))
    agents = root / "Users/sample/Library/LaunchAgents"
    agents.mkdir(parents=True)
    for i in range(items):
        label = f"org.example.manifold.agent{i:05}"
        agent = {"Label": label, "Program": "/Applications/Manifold.app/Contents/MacOS/Manifold"}
        (agents / f"{label}.plist").write_bytes(plistlib.dumps(agent))
    return root


def memory(process: int) -> float:
    """What the process alone holds and has written, in MB: no pages of libraries, which others may share."""
    lines = Path(f"/proc/{process}/smaps_rollup").read_text()
    return sum(int(size) for size in re.findall(r"^Private_Dirty: +(\d+) kB", lines, re.MULTILINE)) / 1024


def measure(screen: Screen, program: Path, volume: Path, items: int) -> dict[str, float]:
    from window.program import Program  # needs the screen that is there by now

    with Program(screen, program, "--root", str(volume), "--home", "/Users/sample") as window:
        window.thing("label", f"Related Items: {items + 1}")
        with_plan = memory(window.process.pid)
        began = time.perf_counter()
        window.press("push button", "Review Uninstall…")
        window.thing("push button", "Move Selected to Trash")
        opened = time.perf_counter() - began
        return {"plan": with_plan, "review": memory(window.process.pid), "seconds": opened}


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--items", type=int, default=2000)
    parser.add_argument("--few", type=int, default=20)
    parser.add_argument("--full", type=int, default=40)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--program", type=Path, default=HERE.parent / "build/release/bin/orvane")
    arguments = parser.parse_args()
    if not arguments.program.exists():
        parser.error(f"there is no {arguments.program}: build it first")
    enter_session()
    with tempfile.TemporaryDirectory(prefix="orvane-large-plan-") as scratch:
        sizes = (arguments.few, arguments.full, arguments.items)
        volumes = {size: make_volume(Path(scratch) / str(size), size) for size in sizes}
        found = {size: [] for size in sizes}
        # One screen for all: this process can look at no other accessibility bus than its first.
        with Screen() as screen:
            for _ in range(arguments.rounds):
                for size in sizes:
                    found[size].append(measure(screen, arguments.program, volumes[size], size))
    few, full, many = (
        {key: statistics.median(run[key] for run in found[size]) for key in found[size][0]} for size in sizes
    )
    rows = [
        f"`benchmarks/large_plan.py --items {sizes[2]} --full {sizes[1]} --few {sizes[0]} --rounds {arguments.rounds}`: one"
        f" application with so many launch items, of which {sizes[1]} fill what the lists keep at hand around what is in"
        " sight; memory that the program alone holds, medians. The time is that until a screen reader has found the"
        " sheet's button among all the rows that there are.",
        "",
        f"| | {sizes[0]} items | {sizes[1]} items | {sizes[2]} items | {sizes[2]} and not {sizes[0]} | and not {sizes[1]} |",
        "|---|---|---|---|---|---|",
    ]
    for title, key in (("with the plan", "plan"), ("with the review open", "review")):
        rows.append(
            f"| {title} | {few[key]:.1f} MB | {full[key]:.1f} MB | {many[key]:.1f} MB"
            f" | {many[key] - few[key]:+.1f} MB | {many[key] - full[key]:+.1f} MB |"
        )
    times = [run["seconds"] for run in (few, full, many)]
    rows.append(
        "| the review opens in | "
        + " | ".join(f"{time * 1000:.0f} ms" for time in times)
        + f" | × {times[2] / times[0]:.2f} | × {times[2] / times[1]:.2f} |"
    )
    print("\n".join(rows))
    return 0


if __name__ == "__main__":
    sys.exit(main())
