"""Tests in random order on a machine that has no time for them: two hogs a core, and the disk when nobody else wants it.

Rounds are tests, drawn at random; as many as there are make one run of all.
"""

import contextlib
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree
from collections.abc import Iterator

import harness

# Those of a test that hangs. None of them takes a tenth of it on a machine that has time.
LONGEST = 1200
# What a test that trusts the clock does: it fails when it does not run just when it wants to.
LUCK = "import sys, time; began = time.monotonic(); time.sleep(0.001); sys.exit(time.monotonic() - began > 0.002)"


@contextlib.contextmanager
def hogs() -> Iterator[None]:
    busy = [subprocess.Popen([sys.executable, "-c", "while True: pass"]) for _ in range(2 * (os.cpu_count() or 1))]
    try:
        yield
    finally:
        for hog in busy:
            hog.kill()
            hog.wait()


def names(program: pathlib.Path) -> list[str]:
    suite, found = "", []
    for line in subprocess.run([program, "--gtest_list_tests"], check=True, capture_output=True, text=True).stdout.splitlines():
        name = line.split("#")[0].rstrip()
        if name.startswith("  "):
            found.append(suite + name.strip())
        elif re.fullmatch(r"[\w/]+\.", name):
            suite = name
    return found


def failed(program: pathlib.Path, tests: list[str], seed: int, scratch: pathlib.Path) -> tuple[int, list[str]]:
    """How many of them were not skipped, and those that failed."""
    report = scratch / "report.xml"
    report.unlink(missing_ok=True)
    with contextlib.suppress(subprocess.TimeoutExpired):
        subprocess.run(
            ["ionice", "-c", "3", program, f"--gtest_filter={':'.join(tests)}", "--gtest_shuffle",
             f"--gtest_random_seed={seed}", f"--gtest_output=xml:{report}"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=LONGEST, check=False,
            cwd=scratch, env=dict(os.environ, LC_ALL="C", QT_QPA_PLATFORM="offscreen"),
        )  # fmt: skip
    if not report.exists():
        return len(tests), [f"one of {program.name} ended it"]
    cases = list(xml.etree.ElementTree.parse(report).iter("testcase"))
    skipped = sum(case.find("skipped") is not None or case.get("status") != "run" for case in cases)
    return len(cases) - skipped, [f"{case.get('classname')}.{case.get('name')}" for case in cases
                                  if case.find("failure") is not None]  # fmt: skip


def run(task: harness.Task) -> harness.Outcome:
    if task.is_wrong:
        with hogs():
            for trial in range(1, task.rounds + 1):
                if subprocess.run([sys.executable, "-c", LUCK], check=False).returncode != 0:
                    return harness.Outcome(trial, 1, "tests")
        return harness.Outcome(task.rounds, 0, "tests")
    subprocess.run([harness.REPOSITORY / "scripts" / "build", "release"], check=True, stdout=subprocess.DEVNULL)
    chance = task.random()
    every = [(program, name) for program in sorted(harness.PROGRAMS.glob("Orvane*Tests")) for name in names(program)]
    trials, failures = 0, []
    with hogs(), tempfile.TemporaryDirectory(prefix="orvane-starved-") as scratch:
        rounds = task.rounds
        while rounds > 0:
            drawn = chance.sample(every, min(rounds, len(every)))
            rounds -= len(drawn)
            for program in sorted({program for program, _ in drawn}, key=lambda _: chance.random()):
                tests = [name for each, name in drawn if each == program]
                ran, wrong = failed(program, tests, chance.randrange(1, 99_999), pathlib.Path(scratch))
                trials += ran
                failures += wrong
    return harness.Outcome(trials, len(failures), "tests", note=", ".join(failures[:5]), figure=f"{trials:,} of {len(every):,} tests")


if __name__ == "__main__":
    harness.main(run)
