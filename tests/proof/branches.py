"""Counts the branches that the tests take, both ways, in the code that must not go wrong.

Rounds mean nothing: all tests of that code run once. The mistake: only those of the property lists do.
"""

import json
import os
import pathlib
import subprocess
import sys

import harness

sys.path.insert(0, str(harness.REPOSITORY / "tests"))
import run as tests  # noqa: E402

BUILD = harness.REPOSITORY / "build" / "coverage"
SOURCES = harness.REPOSITORY / "src"
# What CMakePresets.json tells the programs. It is outside of all that tests cover with mounts of their own.
COUNTERS = pathlib.Path("/var/tmp/orvane-counters")
# In percent.
LEAST = 90
AREAS = {
    "deletion": [
        "Platform/Posix/DirectoryStack.*", "Platform/Posix/PosixFileManager.*", "Platform/Posix/SharedWork.h",
        "Platform/Posix/TreeRemoval.*", "Platform/Posix/TreeWalk.*", "Platform/Posix/Volume.*", "Platform/Linux/MountTable.*",
        "Platform/Places.*", "Platform/ProtectedLocations.*", "Services/AppRemovalService.*", "Services/LinkedPath.*",
        "Services/RemovalPlanner.*", "Services/RemovalRefusals.*",
    ],
    "Trash": ["Platform/Posix/Ownership.*", "Platform/Posix/TemporaryName.*", "Platform/Posix/Trash.*", "Platform/Linux/TrashFolder.*"],
    "save": ["Formats/CatalogCoding.*", "Formats/DoubleText.*", "Platform/Posix/AtomicFile.*", "Services/ApplicationCatalog.*"],
    "property lists": ["Formats/*PropertyList*"],
    "elevation": [
        "Platform/PrivilegedScript.*", "Platform/Linux/PlannedPlace.*", "Platform/Linux/PolkitRunner.*",
        "Platform/Linux/RemovalOrder.*", "Platform/Linux/RootOwned.*", "Platform/Linux/SealedMemory.*",
        "Platform/Posix/SignalDeferral.*", "Programs/Elevation/*.*", "Programs/Elevation/*/*.*",
        "Services/PrivilegedRemovalService.*",
    ],
}  # fmt: skip


def build() -> list[pathlib.Path]:
    suites = ["OrvaneFormatsTests", "OrvanePlatformTests", "OrvaneServicesTests", "OrvaneElevationTests"]
    subprocess.run([harness.REPOSITORY / "scripts" / "build", "coverage", *suites], check=True, stdout=sys.stderr)
    return sorted((BUILD / "bin").iterdir())


def start_counting(programs: list[pathlib.Path]) -> None:
    """Every program gets its counters, which whoever runs it may change."""
    COUNTERS.mkdir(mode=0o1777, exist_ok=True)
    COUNTERS.chmod(0o1777)
    for old in COUNTERS.iterdir():
        old.unlink()
    for program in programs:
        subprocess.run([program, "--gtest_list_tests"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    for counters in COUNTERS.iterdir():
        counters.chmod(0o666)


def run_tests(is_wrong: bool) -> bool:
    os.environ["ORVANE_COUNTERS"] = str(COUNTERS)
    if is_wrong:
        only = [BUILD / "bin" / "OrvaneFormatsTests", "--gtest_brief=1", "--gtest_filter=*PropertyList*"]
        return subprocess.run(only, stdout=sys.stderr, check=False).returncode == 0
    tests.test("coverage", [tests.Pass("coverage", False, "C")], tests.make_locale(), is_first=False)
    return tests.tally.failed == 0


def counted(programs: list[pathlib.Path]) -> dict[str, tuple[int, int]]:
    """Each source's branches, and how many were taken. A condition is two: one where it holds, and one where it does not."""
    merged = BUILD / "counters"
    subprocess.run(["llvm-profdata-16", "merge", "-sparse", "-o", merged, *COUNTERS.iterdir()], check=True)
    objects = [f"-object={program}" for program in programs[1:]]
    told = subprocess.run(["llvm-cov-16", "export", "-summary-only", f"-instr-profile={merged}", programs[0], *objects],
                          check=True, capture_output=True).stdout  # fmt: skip
    files = {pathlib.Path(each["filename"]): each["summary"]["branches"] for each in json.loads(told)["data"][0]["files"]}
    return {str(path.relative_to(SOURCES)): (branches["count"], branches["covered"])
            for path, branches in files.items() if path.is_relative_to(SOURCES)}  # fmt: skip


def sources_of(area: str, branches: dict[str, tuple[int, int]]) -> list[str]:
    """Each pattern has to find some: what nothing is told of has not been counted."""
    found = {pattern: [name for name in branches if pathlib.PurePath(name).match(pattern)] for pattern in AREAS[area]}
    if missing := [pattern for pattern, names in found.items() if not names]:
        raise SystemExit(f"branches: of {area}, nothing was counted in {SOURCES}/{missing[0]}")
    return sorted({name for names in found.values() for name in names})


def percent(count: int, taken: int) -> str:
    return f"{100 * taken / count:.1f} %" if count else ""


def run(task: harness.Task) -> harness.Outcome:
    programs = build()
    start_counting(programs)
    passed = run_tests(task.is_wrong)
    branches = counted(programs)
    print("| source | branches | taken | |\n| --- | ---: | ---: | ---: |")
    totals = {}
    for area in AREAS:
        sources = sources_of(area, branches)
        for name in sources:
            if branches[name][0]:
                print(f"| `{name}` | {branches[name][0]:,} | {branches[name][1]:,} | {percent(*branches[name])} |")
        totals[area] = tuple(sum(column) for column in zip(*(branches[name] for name in sources)))
        print(f"| **{area}** | {totals[area][0]:,} | {totals[area][1]:,} | **{percent(*totals[area])}** |")
    count, taken = (sum(column) for column in zip(*totals.values()))
    print(f"| **all of these** | {count:,} | {taken:,} | **{percent(count, taken)}** |", flush=True)
    low = [area for area, (all_of, those) in totals.items() if 100 * those < LEAST * all_of]
    note = ", ".join(f"{area} {percent(*total)}" for area, total in totals.items())
    return harness.Outcome(1, len(low) + (not passed), "runs", figure=f"{percent(count, taken)} of {count:,} branches", note=note)


if __name__ == "__main__":
    harness.main(run)
