"""Tests in random order on a machine that has no time for them: two hogs a core, and the disk when nobody else wants it.

Rounds are tests, drawn at random; as many as there are make one run of all.
"""

import contextlib
import os
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree
from collections.abc import Iterator

import harness

sys.path.insert(0, str(harness.REPOSITORY / "tests"))
import run as tests  # noqa: E402

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


def failed(program: pathlib.Path, names: list[str], seed: int, place: tests.Place) -> tuple[int, list[str]]:
    """How many of them were not skipped, and those that failed; why, it prints."""
    report = place.scratch / "report.xml"
    report.unlink(missing_ok=True)
    command = ["ionice", "-c", "3", program, f"--gtest_filter={':'.join(names)}", "--gtest_shuffle", "--gtest_brief=1",
               f"--gtest_random_seed={seed}", f"--gtest_output=xml:{report}"]  # fmt: skip
    with tempfile.TemporaryFile() as output:
        with contextlib.suppress(subprocess.TimeoutExpired):
            subprocess.run(command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT, timeout=LONGEST,
                           check=False, cwd=place.scratch, env=place.environment)  # fmt: skip
        output.seek(0)
        said = output.read().decode(errors="replace")
    if not report.exists():
        print(said, flush=True)
        return len(names), [f"one of {program.name} ended it"]
    cases = list(xml.etree.ElementTree.parse(report).iter("testcase"))
    skipped = sum(case.find("skipped") is not None or case.get("status") != "run" for case in cases)
    wrong = [f"{case.get('classname')}.{case.get('name')}" for case in cases if case.find("failure") is not None]
    if wrong:
        print(said, flush=True)
    return len(cases) - skipped, wrong


def run(task: harness.Task) -> harness.Outcome:
    if task.is_wrong:
        with hogs():
            for trial in range(1, task.rounds + 1):
                if subprocess.run([sys.executable, "-c", LUCK], check=False).returncode != 0:
                    return harness.Outcome(trial, 1, "tests")
        return harness.Outcome(task.rounds, 0, "tests")
    subprocess.run([harness.REPOSITORY / "scripts" / "build", "release"], check=True, stdout=subprocess.DEVNULL)
    chance = task.random()
    trials, failures = 0, []
    # Where scripts/test runs them as well, so that what fails here has no other reason than the time.
    with tests.place(tests.Pass("release", False, "C"), tests.make_locale()) as place, hogs():
        every = [(program, name) for program in sorted(place.programs.glob("Orvane*Tests")) for name in tests.tests_of(program)]
        rounds = task.rounds
        while rounds > 0:
            drawn = chance.sample(every, min(rounds, len(every)))
            rounds -= len(drawn)
            for program in sorted(sorted({program for program, _ in drawn}), key=lambda _: chance.random()):
                names = [name for each, name in drawn if each == program]
                ran, wrong = failed(program, names, chance.randrange(1, 99_999), place)
                trials += ran
                failures += wrong
    return harness.Outcome(trials, len(failures), "tests", note=", ".join(failures[:5]), figure=f"{trials:,} of {len(every):,} tests")


if __name__ == "__main__":
    harness.main(run)
