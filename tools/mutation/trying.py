"""Whether a test notices a change: only those tests run that reach it, the quickest first, and where they can do no harm.

The first run changes nothing, and tells which test reaches what (Reached.cpp).
"""

import concurrent.futures
import dataclasses
import enum
import hashlib
import json
import os
import re
import subprocess
from collections.abc import Iterator

from mutation.building import BUILD, FOLDER, REPOSITORY, run
from mutation.weaving import Mutant

# A program of tests that takes as long as that hangs, in seconds; and one that runs some of them: as long, and so many times
# what they take.
LONGEST = 1_200
HANGING, SLOWER = 15, 4
# The tests that run first take this long together, in milliseconds; and so many are named to a program at once.
QUICK = 1_500
MOST = 1_000

MANIFEST = BUILD / "install_manifest_elevation.txt"
# In read-only mounts and an empty /tmp already. A device that is not there cannot be opened, and what is without bounds ends.
APART = """
mount -o remount,size=2g /tmp
mount -t tmpfs -o mode=755 tmpfs /dev
for node in 'null 3' 'zero 5' 'full 7' 'random 8' 'urandom 9'; do mknod -m 666 "/dev/${node% *}" c 1 "${node#* }"; done
mknod -m 666 /dev/tty c 5 0
mkdir /dev/pts /dev/shm
mount -t devpts -o newinstance,ptmxmode=0666,mode=620 devpts /dev/pts
ln -s pts/ptmx /dev/ptmx
ln -s /proc/self/fd /dev/fd
mount -t tmpfs -o mode=1777,size=256m tmpfs /dev/shm
mount -t tmpfs -o mode=755,size=256m tmpfs /run
mount -t proc -o ro proc /proc
ip link set lo up 2>/dev/null || true
mkdir -m 1777 /tmp/home
# CMake writes beside what it installs down what it has installed.
touch /tmp/manifest
mount --bind /tmp/manifest "$1"
shift
cd /tmp
ulimit -v 8388608
exec "$@"
"""


class Verdict(enum.Enum):
    KILLED = "noticed"
    HUNG = "noticed: the tests do not end"
    SURVIVED = "not noticed"
    UNREACHED = "reached by no test"


@dataclasses.dataclass(frozen=True)
class Test:
    program: str
    name: str
    milliseconds: int


def run_apart(program: str, number: int, timeout: float, tests: list[Test] | None = None) -> subprocess.CompletedProcess | None:
    """A program of tests as that mutant, in a place of its own; nothing if it does not end."""
    only = [] if tests is None else ["--gtest_fail_fast", "--gtest_filter=" + ":".join(test.name for test in tests)]
    command = ["setpriv", "--pdeathsig", "KILL", "unshare", "--net", "--pid", "--ipc", "--uts", "--fork", "--kill-child", "--",
               REPOSITORY / "build" / "release" / "bin" / "OrvaneProof", "--run", "/bin/sh", "-e", "-c", APART, "sh", MANIFEST,
               BUILD / "bin" / program, "--gtest_brief=1", *only]  # fmt: skip
    MANIFEST.touch()
    environment = {"PATH": os.environ["PATH"], "HOME": "/tmp/home", "TMPDIR": "/tmp", "LC_ALL": "C",
                   "QT_QPA_PLATFORM": "offscreen", "ORVANE_MUTANT": str(number)}  # fmt: skip
    if tests is None:
        environment["ORVANE_REACHED"] = "1"
    try:
        ended = run(command, timeout=timeout, env=environment)
    except subprocess.TimeoutExpired:
        return None
    if "[==========]" not in ended.stdout and "mount" in ended.stdout:
        raise SystemExit(f"mutate: there is no place apart here\n{ended.stdout}")
    return ended


def reached_by(programs: list[str]) -> dict[int, list[Test]]:
    """Which tests reach each number. What fails or is skipped with nothing changed tells nothing."""
    reached: dict[int, list[Test]] = {}
    for program in programs:
        digest = hashlib.sha256()
        # And what it starts.
        for binary in sorted((BUILD / "bin").iterdir()):
            if binary.is_file() and (binary.name == program or not binary.name.endswith("Tests")):
                digest.update(binary.read_bytes())
        known = FOLDER / f"{program}.{digest.hexdigest()[:16]}"
        if not known.exists():
            for old in FOLDER.glob(f"{program}.*"):
                old.unlink()
            ended = run_apart(program, 0, LONGEST)
            if ended is None or "[reached]" not in ended.stdout:
                raise SystemExit(f"mutate: {program} does not run\n{ended.stdout if ended else ''}")
            known.write_text(ended.stdout)
        for name, passed, time, numbers in re.findall(r"^\[reached\] (\S+) (\d) (\d+)((?: \d+)*)$", known.read_text(), re.M):
            if passed == "1":
                for number in numbers.split():
                    reached.setdefault(int(number), []).append(Test(program, name, int(time)))
            else:
                print(f"mutate: nothing is told by {program} {name}, which does not pass here")
    return reached


def tests_of(mutant: Mutant, reached: dict[int, list[Test]]) -> list[Test]:
    tests = reached.get(mutant.number, [])
    if not mutant.is_constant:
        return tests
    programs = {test.program for test in tests}
    return list({test for each in reached.values() for test in each if test.program in programs})


def waves(tests: list[Test]) -> Iterator[list[Test]]:
    """The quickest first; each wave is of one program, and takes longer than the ones before it."""
    waiting = sorted(tests, key=lambda test: test.milliseconds)
    budget = QUICK
    while waiting:
        total, count = 0, 0
        while count < min(len(waiting), MOST) and (count == 0 or total + waiting[count].milliseconds <= budget):
            total += waiting[count].milliseconds
            count += 1
        for program in dict.fromkeys(test.program for test in waiting[:count]):
            yield [test for test in waiting[:count] if test.program == program]
        waiting = waiting[count:]
        budget *= 4


def verdict(number: int, tests: list[Test]) -> tuple[Verdict, str]:
    """And the last lines of the program that noticed."""
    for wave in waves(tests):
        normal = sum(test.milliseconds for test in wave) / 1_000
        limit = HANGING + SLOWER * normal
        while (ended := run_apart(wave[0].program, number, limit, wave)) is None:
            # Unless the machine is too busy for anything.
            if run_apart(wave[0].program, 0, limit, wave) is not None:
                return Verdict.HUNG, wave[0].program
            limit *= 2
        if ended.returncode != 0:
            failed = re.findall(r"^\[  FAILED  \] (\S+\.\S+)", ended.stdout, re.M)
            return Verdict.KILLED, failed[0] if failed else f"{wave[0].program} ends with {ended.returncode}"
    return (Verdict.SURVIVED if tests else Verdict.UNREACHED), ""


def chosen(mutants: list[Mutant], seed: int, count: int) -> list[Mutant]:
    """By lot. Each has its own, so a source that changes brings no other lines into the choice than its own."""
    seen: dict[tuple, int] = {}

    def lot(mutant: Mutant) -> str:
        seen[mutant.key] = seen.get(mutant.key, 0) + 1
        return hashlib.sha256(json.dumps([seed, *mutant.key, seen[mutant.key]]).encode()).hexdigest()

    return sorted(mutants, key=lot)[:count]


def judge(mutants: list[Mutant], reached: dict[int, list[Test]], jobs: int, is_asleep: bool = False
          ) -> Iterator[tuple[Mutant, Verdict, str]]:  # fmt: skip
    """As they are told. Asleep, each has its tests, but none of them is changed."""
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        waiting = {pool.submit(verdict, 0 if is_asleep else each.number, tests_of(each, reached)): each for each in mutants}
        for done in concurrent.futures.as_completed(waiting):
            yield waiting[done], *done.result()
