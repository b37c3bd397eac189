"""Builds and runs the suites, and says what became of every test; scripts/test calls it.

    tests/run.py SECONDS PRESET...  these builds, each as two users and in two locales that take turns
    tests/run.py SECONDS all        what CI runs: the release build and both sanitizers, every user in every locale once

SECONDS is what setting up has taken.
"""

import collections
import contextlib
import dataclasses
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import xml.etree.ElementTree
from collections.abc import Iterator

REPOSITORY = pathlib.Path(__file__).resolve().parents[1]
NOBODY = 65534
CORES = os.cpu_count() or 1
GERMAN = "de_DE.UTF-8"
# A run that takes as long as that hangs.
LONGEST = 900
# What takes longest begins first and is shared out, so that no core waits for another at the end.
LONG_SUITES = ["OrvanePlatformTests", "OrvaneServicesTests", "OrvaneViewsTests", "OrvaneElevationTests"]
# The thread sanitizer mistakes a thread of a forked child for one that the parent has had. Where both have some, each test
# has a process of its own.
FORKING_TESTS = {
    "OrvanePlatformTests": ["SharedWork"],
    "OrvaneServicesTests": ["AppRemovalServiceTest", "ApplicationCatalog", "RemovalTruth"],
    "OrvaneElevationTests": ["RootPartFailures"],
}
# They wait for most of their time, and run beside the others.
WINDOW_TESTS = ["window/whole_job_test.py", "window/front_door_test.py", "window/look_test.py", "window/wayland_test.py"]
TOOL_TESTS = [
    "tools/make_sample_volume_test.py",
    "tools/drawings_test.py",
    "tools/map_test.py",
    "tools/prove_test.py",
    "tools/mac_declarations_test.py",
    "tools/mutate_test.py",
]


@dataclasses.dataclass(frozen=True)
class Pass:
    """All suites of one build, as one user, in one locale."""

    preset: str
    is_nobody: bool
    locale: str
    is_shuffled: bool = False

    @property
    def user(self) -> str:
        return "nobody" if self.is_nobody else "root" if os.geteuid() == 0 else "user"

    def __str__(self) -> str:
        return f"{self.preset}, {self.user}, {self.locale}"


@dataclasses.dataclass
class Tally:
    passed: int = 0
    failed: int = 0
    # The kind of build, the user and the reason; and how many tests.
    skipped: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    lock: threading.Lock = dataclasses.field(default_factory=threading.Lock)

    def add(self, passed: int, failed: int, skipped: list[tuple[str, str, str]]) -> None:
        with self.lock:
            self.passed += passed
            self.failed += failed
            self.skipped.update(skipped)


@dataclasses.dataclass
class Place:
    """Where a pass finds what it runs, and where it may write."""

    programs: pathlib.Path
    environment: dict[str, str]
    scratch: pathlib.Path


phases: list[tuple[str, float]] = []
tally = Tally()


@contextlib.contextmanager
def phase(name: str) -> Iterator[None]:
    began = time.monotonic()
    try:
        yield
    finally:
        phases.append((name, time.monotonic() - began))


def make_locale() -> pathlib.Path:
    """A German locale of our own: machines have none unless somebody has made one."""
    folder = REPOSITORY / "build" / "locale"
    if not (folder / GERMAN).is_dir():
        folder.mkdir(parents=True, exist_ok=True)
        subprocess.run(["localedef", "-i", "de_DE", "-f", "UTF-8", folder / GERMAN], check=True)
    spoken = subprocess.run(
        ["locale", "decimal_point"],
        env=dict(os.environ, LOCPATH=str(folder), LC_ALL=GERMAN),
        check=True,
        capture_output=True,
        text=True,
    ).stdout
    if spoken != ",\n":
        raise SystemExit(f"test: the locale in {folder} is not German")
    return folder


def passes(preset: str, is_everything: bool) -> list[Pass]:
    """Each build is tested as root and as nobody, or as whoever runs this, and in both locales.

    CI has each user in each locale once, and once in random order: no second time where the clock runs slowest.
    """
    pairs = [Pass(preset, False, "C"), Pass(preset, os.geteuid() == 0, GERMAN)]
    turned = [Pass(preset, False, GERMAN, is_shuffled=True), Pass(preset, os.geteuid() == 0, "C", is_shuffled=True)]
    if not is_everything:
        return pairs
    return {"release": pairs, "asan": turned, "tsan": pairs[:1]}[preset]


@contextlib.contextmanager
def place(of: Pass, locale: pathlib.Path) -> Iterator[Place]:
    """The programs are a copy where root is, and for nobody all else is, too: the repository may lie where others cannot
    go, and what root tests starts programs as somebody else."""
    binaries = REPOSITORY / "build" / of.preset / "bin"
    with tempfile.TemporaryDirectory(prefix="orvane-tests-") as name:
        folder = pathlib.Path(name)
        here = dict(os.environ, LC_ALL=of.locale, LOCPATH=str(locale))
        if of.user == "user":
            yield Place(binaries, here, folder)
            return
        shutil.copytree(binaries, folder / "bin")
        subprocess.run(["chmod", "-R", "a+rX", folder], check=True)
        scratch = folder / "tmp"
        scratch.mkdir()
        if of.user == "root":
            scratch.chmod(0o1777)
            # What covers the temporary folder in mounts of its own must not cover the programs.
            root = dict(here, TMPDIR=str(scratch), ORVANE_BINARY_DIR=str(folder / "bin"))
            yield Place(folder / "bin", root, scratch)
            return
        os.chown(scratch, NOBODY, NOBODY)
        shutil.copytree(locale, folder / "locale")
        for part in ("tests", "tools"):
            shutil.copytree(REPOSITORY / part, folder / part, symlinks=True)
        environment = {
            "PATH": os.environ["PATH"],
            "HOME": str(scratch),
            "TMPDIR": str(scratch),
            "LC_ALL": of.locale,
            "LOCPATH": str(folder / "locale"),
            "ORVANE_SOURCE_DIR": str(folder),
            "ORVANE_BINARY_DIR": str(folder / "bin"),
        }
        bundles = pathlib.Path(os.environ.get("ORVANE_REAL_BUNDLES") or REPOSITORY.parent / "shared" / "real-bundles")
        if bundles.is_dir():
            shutil.copytree(bundles, folder / "real-bundles", symlinks=True)
            environment["ORVANE_REAL_BUNDLES"] = str(folder / "real-bundles")
        subprocess.run(["chmod", "-R", "a+rX", folder / "tests", folder / "tools"], check=True)
        yield Place(folder / "bin", environment, scratch)


class Job:
    """One process, and how what it says is read."""

    def __init__(self, of: Pass, at: Place, command: list[str], environment: dict[str, str] | None = None):
        self.of = of
        self.at = at
        self.command = command
        self.environment = dict(at.environment, **(environment or {}))
        self.name = pathlib.Path(command[0]).name
        self.is_one_of_many = False

    def run(self) -> None:
        began = time.monotonic()
        with tempfile.TemporaryFile() as output:
            try:
                status = subprocess.run(
                    self.command,
                    stdin=subprocess.DEVNULL,
                    stdout=output,
                    stderr=subprocess.STDOUT,
                    env=self.environment,
                    cwd=self.at.scratch,
                    timeout=LONGEST,
                    check=False,
                    **({"user": NOBODY, "group": NOBODY, "extra_groups": []} if self.of.is_nobody else {}),
                ).returncode
            except subprocess.TimeoutExpired:
                status = -1
            output.seek(0)
            said = output.read().decode(errors="replace")
        passed, failed, reasons = self.read(said)
        if status != 0 and failed == 0:
            failed = 1
        tally.add(passed, failed, [(self.of.preset, self.of.user, reason) for reason in reasons])
        took = time.monotonic() - began
        with tally.lock:
            if failed:
                print(said)
                print(f"test: FAILED ({self.of}), status {status}: {' '.join(map(str, self.command))}")
            if failed or not self.is_one_of_many:
                print(f"test: {self.of}: {self.name}, {took:.0f} s: {passed} passed, {failed} failed", flush=True)

    def read(self, said: str) -> tuple[int, int, list[str]]:
        raise NotImplementedError


class GoogleTest(Job):
    """A program of GoogleTest's, or a part of it."""

    def __init__(self, of: Pass, at: Place, program: pathlib.Path, part: int = 0, parts: int = 1, only: str = "*"):
        self.report = at.scratch / f"{program.name}-{part}-{abs(hash(only))}.xml"
        command = [str(program), "--gtest_brief=1", f"--gtest_output=xml:{self.report}", f"--gtest_filter={only}"]
        if of.is_shuffled:
            command += ["--gtest_shuffle", f"--gtest_random_seed={random.randint(1, 99999)}"]
        super().__init__(of, at, command, {
            "GTEST_TOTAL_SHARDS": str(parts),
            "GTEST_SHARD_INDEX": str(part),
            # Children of tests start threads.
            "TSAN_OPTIONS": "die_after_fork=0",
        })
        if parts > 1:
            self.name += f" {part + 1}/{parts}"
        if "*" not in only:
            self.name += f" {only}"
            self.is_one_of_many = True

    def read(self, said: str) -> tuple[int, int, list[str]]:
        try:
            cases = list(xml.etree.ElementTree.parse(self.report).iter("testcase"))
        except (OSError, xml.etree.ElementTree.ParseError):
            return 0, 1, []
        failed = sum(case.find("failure") is not None for case in cases)
        reasons = []
        for case in cases:
            skip = case.find("skipped")
            if skip is not None:
                # After the place in the source.
                reasons.append(skip.get("message", "").strip().split("\n")[-1])
            elif case.get("status") != "run":
                reasons.append("disabled")
        return len(cases) - failed - len(reasons), failed, reasons


class ScriptTest(Job):
    """A script of Python's unittest."""

    def __init__(self, of: Pass, at: Place, script: str):
        # The system's own Python is the one that its packages extend.
        command = ["/usr/bin/python3", "-B", str(REPOSITORY / "tests" / script), "-v"]
        # Qt is built without the sanitizers: see tests/Views/SanitizersOfQt.cpp.
        super().__init__(of, at, command, {
            "ORVANE_BINARY_DIR": str(at.programs),
            "ORVANE_BUILD_DIR": str(REPOSITORY / "build" / of.preset),
            "ASAN_OPTIONS": "detect_leaks=0",
            "TSAN_OPTIONS": "ignore_noninstrumented_modules=1",
        })
        self.name = script

    def read(self, said: str) -> tuple[int, int, list[str]]:
        ran = re.findall(r"^Ran (\d+) tests?", said, re.MULTILINE)
        if not ran:
            return 0, 1, []
        failed = sum(int(count) for count in re.findall(r"(?:failures|errors)=(\d+)", said.rsplit("\nRan ", 1)[1]))
        reasons = re.findall(r"\.\.\. skipped ['\"](.*)['\"]$", said, re.MULTILINE)
        return max(0, int(ran[-1]) - failed - len(reasons)), failed, reasons


def tests_of(program: pathlib.Path) -> list[str]:
    listed = subprocess.run([program, "--gtest_list_tests"], check=True, capture_output=True, text=True).stdout
    names = []
    suite = ""
    for line in listed.splitlines():
        if line.startswith("  "):
            names.append(suite + line.split()[0])
        elif not line.startswith("Running main"):
            suite = line.split()[0]
    return names


def jobs(of: Pass, at: Place, is_first: bool) -> tuple[list[Job], list[Job]]:
    """What fills the cores, longest first; and what waits."""
    programs = {path.name: path for path in sorted(at.programs.glob("Orvane*Tests"))}
    busy: list[Job] = []
    forking = FORKING_TESTS if of.preset == "tsan" else {}
    for name, suites in forking.items():
        alone = [test for test in tests_of(programs[name]) if test.split(".")[0] in suites]
        busy += [GoogleTest(of, at, programs[name], only=test) for test in alone]

    def shards(name: str, parts: int) -> list[Job]:
        others = "*-" + ":".join(f"{suite}.*" for suite in forking[name]) if name in forking else "*"
        return [GoogleTest(of, at, programs[name], part, parts, others) for part in range(parts)]

    for name in LONG_SUITES:
        if name in programs:
            busy += shards(name, CORES)
    for name in programs:
        if name not in LONG_SUITES:
            busy += shards(name, 1)
    waiting: list[Job] = []
    if not of.is_nobody:
        if (at.programs / "orvane").exists():
            waiting += [ScriptTest(of, at, script) for script in WINDOW_TESTS]
        if is_first:
            waiting += [ScriptTest(of, at, script) for script in TOOL_TESTS]
    return busy, waiting


def work(queue: collections.deque) -> None:
    while True:
        try:
            job = queue.popleft()
        except IndexError:
            return
        job.run()


def test(preset: str, of_all: list[Pass], locale: pathlib.Path, is_first: bool) -> None:
    with contextlib.ExitStack() as places:
        busy: list[Job] = []
        waiting: list[Job] = []
        for number, each in enumerate(of_all):
            more, slow = jobs(each, places.enter_context(place(each, locale)), is_first and number == 0)
            busy += more
            waiting += slow
        shared = collections.deque(busy)
        queues = [shared] * CORES + [collections.deque(waiting)]
        workers = [threading.Thread(target=work, args=[queue]) for queue in queues]
        for worker in workers:
            worker.start()
        for worker in workers:
            worker.join()


def allowed_skips() -> set[tuple[str, str]]:
    lines = (REPOSITORY / "tests" / "skips.txt").read_text(encoding="utf-8").splitlines()
    return {tuple(line.split(maxsplit=1)) for line in lines if line and not line.startswith("#")}


def report() -> int:
    allowed = allowed_skips()
    counts: collections.Counter = collections.Counter()
    forbidden = 0
    for (build, user, reason), count in tally.skipped.items():
        rights = "root" if user == "root" else "nobody"
        is_allowed = {(build, reason), (rights, reason)} & allowed
        if os.environ.get("CI") and not is_allowed:
            forbidden += count
            reason += " — NOT in tests/skips.txt, so this counts as failed"
        counts[user, reason] += count
    if counts:
        print("\nskipped:")
    for (user, reason), count in sorted(counts.items()):
        print(f"  {count:4}  as {user}: {reason}")
    print("\ntime:")
    for name, seconds in phases:
        print(f"  {int(seconds) // 60:2}:{int(seconds) % 60:02}  {name}")
    failed = tally.failed + forbidden
    print(f"\n{tally.passed} passed, {failed} failed, {sum(counts.values()) - forbidden} skipped")
    return 0 if failed == 0 and tally.passed > 0 else 1


def main(setup_seconds: str, *arguments: str) -> int:
    is_everything = list(arguments) == ["all"]
    presets = ["release", "asan", "tsan"] if is_everything else list(arguments) or ["release"]
    if unknown := [preset for preset in presets if preset not in ("dev", "release", "asan", "tsan")]:
        print(f"test: release, dev, asan, tsan or all, not {unknown[0]}", file=sys.stderr)
        return 2
    # What a shell starts in the background ignores these, and so would the tests, some of which send them.
    signal.signal(signal.SIGINT, signal.default_int_handler)
    signal.signal(signal.SIGQUIT, signal.SIG_DFL)
    phases.append(("setting up", float(setup_seconds)))
    locale = make_locale()
    for number, preset in enumerate(presets):
        with phase(f"building {preset}"):
            if subprocess.run([REPOSITORY / "scripts" / "build", preset], check=False).returncode != 0:
                tally.failed += 1
                break
        with phase(f"testing {preset}"):
            test(preset, passes(preset, is_everything), locale, is_first=number == 0)
    return report()


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
