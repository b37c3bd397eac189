"""One build of a copy of the project that holds all changes; what is no program with its change is left out of it."""

import fnmatch
import json
import pathlib
import re
import shutil
import subprocess

from mutation import weaving
from mutation.weaving import Mutant

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
FOLDER = REPOSITORY / "build" / "mutants"
TREE = FOLDER / "tree"
BUILD = FOLDER / "build"
HEADER = TREE / "tools" / "mutation" / "Mutation.h"
STERILE = FOLDER / "sterile.json"
# Which sources are changed, and the programs of tests that they concern: the first one that fits counts.
CONCERNS = [
    ("src/Services/*.cpp", ["OrvaneServicesTests"]),
    ("src/Platform/MacOS/*.cpp", []),
    ("src/Platform/*.cpp", ["OrvanePlatformTests", "OrvaneServicesTests", "OrvaneElevationTests"]),
    ("src/Programs/Elevation/*.cpp", ["OrvaneElevationTests"]),
    ("src/Views/*Model.cpp", ["OrvaneViewsTests"]),
]
# A file's numbers do not move when another file changes, so what was built stays so.
NUMBERS_OF_A_FILE = 1_000


def programs_of(file: str) -> list[str]:
    return next((programs for place, programs in CONCERNS if fnmatch.fnmatch(file, place)), [])


def files(pattern: str = "*") -> list[str]:
    """Those that are changed, below the repository."""
    every = sorted(str(path.relative_to(REPOSITORY)) for path in (REPOSITORY / "src").rglob("*.cpp"))
    return [file for file in every if programs_of(file) and fnmatch.fnmatch(file, pattern)]


def all_mutants() -> dict[str, list[Mutant]]:
    """By file."""
    found = {}
    for place, file in enumerate(files()):
        source = (REPOSITORY / file).read_text(encoding="utf-8")
        found[file] = weaving.mutants_of(file, source, 1 + place * NUMBERS_OF_A_FILE)
        if len(found[file]) > NUMBERS_OF_A_FILE:
            raise SystemExit(f"mutate: {file} has too many places for its numbers")
    return found


def run(command: list, **options) -> subprocess.CompletedProcess:
    return subprocess.run(
        command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
        check=False, **options,
    )  # fmt: skip


def write(path: pathlib.Path, text: str) -> None:
    """What has not changed keeps its date, so it is not built again."""
    if path.exists() and path.read_text(encoding="utf-8") == text:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8")


def copy(woven: dict[str, str]) -> None:
    """What git knows, as it lies here, but for these."""
    known = ["git", "-C", REPOSITORY, "ls-files", "-z", "--cached", "--others", "--exclude-standard"]
    listed = {file for file in run(known).stdout.split("\0") if file and (REPOSITORY / file).is_file()}
    for file in listed - woven.keys():
        origin, there = REPOSITORY / file, TREE / file
        if not there.exists() or there.read_bytes() != origin.read_bytes():
            there.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(origin, there)
    for file, text in woven.items():
        write(TREE / file, text)
    for program in {program for _, programs in CONCERNS for program in programs}:
        name = program.removeprefix("Orvane").removesuffix("Tests")
        folder = TREE / "tests" / name if (REPOSITORY / "tests" / name).is_dir() else TREE / "tests" / "Programs" / name
        write(folder / "Reached.cpp", (REPOSITORY / "tools" / "mutation" / "Reached.cpp").read_text(encoding="utf-8"))
    # What has gone here has gone there.
    for path in [*(TREE / "src").rglob("*"), *(TREE / "tests").rglob("*")]:
        if path.is_file() and path.name != "Reached.cpp" and str(path.relative_to(TREE)) not in listed:
            path.unlink()


def configure() -> None:
    # Fast, and as it ships but for what finds nothing here.
    options = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS=-w", "-DCMAKE_CXX_FLAGS_DEBUG=-O1",
               "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=8"]  # fmt: skip
    if shutil.which("ccache"):
        options.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
    if (BUILD / "build.ninja").exists():
        return
    configured = run(["cmake", "-G", "Ninja", "-S", TREE, "-B", BUILD, *options])
    if configured.returncode != 0:
        raise SystemExit(configured.stdout)


def blamed(said: str, mutants: dict[str, list[Mutant]]) -> set[int]:
    """The numbers of what the compiler complains about: the one that is nearest to that on the line, or those that reach over
    it. What has to be a constant can depend on no number."""
    blame: set[int] = set()
    places = re.findall(r"^\S*?/?(src/\S+?):(\d+):(\d+):(?: error:(.*)|   required from)", said, re.MULTILINE)
    for file, line, column, reason in places:
        if not mutants.get(file):
            continue
        text = (TREE / file).read_text(encoding="utf-8").splitlines()[int(line) + 1]
        numbers = {abs(found.start() + 1 - int(column)): int(found[1])
                   for found in re.finditer(r"mutation::(?:is\(|Sign{|Negation{)(\d+)", text)}  # fmt: skip
        if numbers:
            blame |= set(numbers.values()) if "const" in reason else {numbers[min(numbers)]}
            continue
        if named := re.search(r"‘(?:[^’]*::)?(\w+)’ is not (?:usable|captured)", reason):
            blame |= {mutant.number for mutant in mutants[file] if re.search(rf"constexpr .*\b{named[1]}\b", mutant.line)}
            continue
        source = (REPOSITORY / file).read_text(encoding="utf-8")
        blame |= {mutant.number for mutant in mutants[file]
                  if source.count("\n", 0, mutant.begin) < int(line) <= source.count("\n", 0, mutant.end) + 1}  # fmt: skip
    return blame


def build(programs: list[str], jobs: int) -> dict[str, list[Mutant]]:
    """Builds these with everything woven in, and returns what is in it. What the compiler does not take is written down, and
    is not tried again while its line stays as it is."""
    everything = all_mutants()
    sterile = {tuple(key) for key in json.loads(STERILE.read_text())} if STERILE.exists() else set()
    while True:
        mutants = {file: [each for each in of_file if each.key not in sterile] for file, of_file in everything.items()}
        copy({file: weaving.woven((REPOSITORY / file).read_text(encoding="utf-8"), of_file, str(HEADER))
              for file, of_file in mutants.items()})  # fmt: skip
        configure()
        built = run(["cmake", "--build", BUILD, "--parallel", str(jobs), "--target", *programs, "--", "-k", "0"])
        if built.returncode == 0:
            return mutants
        (FOLDER / "build.log").write_text(built.stdout)
        numbers = blamed(built.stdout, mutants)
        if not numbers:
            raise SystemExit(f"mutate: the copy does not build\n{built.stdout[-20_000:]}")
        sterile |= {each.key for of_file in mutants.values() for each in of_file if each.number in numbers}
        STERILE.write_text(json.dumps(sorted(sterile), indent=1))


def prepare_place() -> None:
    """What a trial runs in needs OrvaneProof, as it ships."""
    if run([REPOSITORY / "scripts" / "build", "release", "OrvaneProof"]).returncode != 0:
        raise SystemExit("mutate: the program does not build")
