"""Runs the harnesses, and says what became of every promise; scripts/prove calls it.

A promise is kept when no trial of it fails, and only if the harness finds out what does not keep it: its wrong variant
is run first. Each row has a seed, with which the same choices are made again.
"""

import argparse
import collections
import dataclasses
import datetime
import json
import os
import pathlib
import platform
import random
import shutil
import subprocess
import sys
import tempfile
import time

from promises import PROMISES, Mounts, Promise, User

HERE = pathlib.Path(__file__).resolve().parent
REPOSITORY = HERE.parents[1]
PROGRAM = REPOSITORY / "build" / "release" / "bin" / "OrvaneProof"
RESULTS = HERE / "RESULTS.md"
# A harness that takes as long as that hangs.
LONGEST = 3 * 60 * 60
COLUMNS = ["promise", "", "tried", "failed", "at 95 %", "the wrong variant", "time", "seed", "noted"]


class Unusable(Exception):
    """The harness did not do what it was asked to do."""


@dataclasses.dataclass(frozen=True)
class Outcome:
    trials: int
    failures: int
    unit: str
    figure: str
    note: str
    skipped: str


def command(promise: Promise, rounds: int, seed: int, is_wrong: bool) -> list[str]:
    name, *options = promise.harness.split()
    task = [*options, "--rounds", str(rounds), "--seed", str(seed), *(["--wrong"] if is_wrong else [])]
    as_user = ["--as-user"] if promise.user is User.NOBODY else []
    if not name.endswith(".py"):
        return [str(PROGRAM), name, *as_user, *task]
    script = ["/usr/bin/python3", "-B", str(HERE / name), *task]
    return script if promise.mounts is Mounts.MACHINE else [str(PROGRAM), *as_user, "--run", *script]


def run(of: list[str]) -> Outcome:
    # Private mounts take the place of the folder for temporary files, in which this repository may lie.
    with tempfile.TemporaryDirectory(prefix="orvane-prove-") as folder:
        os.chmod(folder, 0o755)
        try:
            ended = subprocess.run(of, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   text=True, errors="replace", timeout=LONGEST, check=False,
                                   env=os.environ | {"TMPDIR": folder})
        except subprocess.TimeoutExpired as hung:
            raise Unusable(f"{' '.join(of)}\nhas not ended") from hung
    lines = ended.stdout.splitlines()
    try:
        outcome = Outcome(**json.loads(lines[-1]))
    except (IndexError, ValueError, TypeError):
        outcome = None
    if outcome and outcome.failures and "--wrong" not in of:
        print("\n".join(lines[:-1]), file=sys.stderr)
    if ended.returncode != 0 or outcome is None:
        raise Unusable(f"{' '.join(of)}\nended with {ended.returncode} and said\n{ended.stdout}")
    return outcome


def bound(trials: int) -> str:
    """Of no failure in so many trials: with what is as likely as that, one time in twenty shows none."""
    return f"below 3/{trials:,}" if trials > 3 else ""


def clock(seconds: float) -> str:
    return f"{int(seconds) // 60}:{int(seconds) % 60:02}"


@dataclasses.dataclass(frozen=True)
class Row:
    promise: Promise
    seed: int
    cells: list[str]
    is_kept: bool
    was_tried: bool = True


def not_tried(promise: Promise, seed: int, reason: str) -> Row:
    return Row(promise, seed, ["not here", "", "", "", "", "", reason], is_kept=True, was_tried=False)


def prove(promise: Promise, rounds: int, seed: int) -> Row:
    if promise.user is User.ROOT and os.geteuid() != 0:
        return not_tried(promise, seed, "needs root")
    began = time.monotonic()
    try:
        wrong = run(command(promise, promise.wrong, seed, is_wrong=True))
        if wrong.skipped:
            return not_tried(promise, seed, wrong.skipped)
        is_found_out = wrong.failures > 0
        outcome = run(command(promise, rounds, seed, is_wrong=False))
    except Unusable as problem:
        print(f"prove: {promise.name}: {problem}", file=sys.stderr)
        return Row(promise, seed, ["", "", "", "", clock(time.monotonic() - began), str(seed), "ended early"], False)
    if outcome.skipped:
        return not_tried(promise, seed, outcome.skipped)
    is_kept = is_found_out and outcome.failures == 0 and outcome.trials > 0
    if not is_found_out:
        print(f"prove: {promise.name}: nothing was found in {wrong.trials} {wrong.unit} of what breaks the promise, so "
              "the rest proves nothing", file=sys.stderr)
    if not is_kept:
        print(f"prove: {promise.name} is BROKEN; again: scripts/prove {promise.name} --rounds {rounds} --seed {seed}",
              file=sys.stderr)
    cells = [
        outcome.figure or f"{outcome.trials:,} {outcome.unit}",
        f"{outcome.failures:,}",
        bound(outcome.trials) if outcome.failures == 0 and outcome.trials > 0 and not outcome.figure else "",
        f"found out, {wrong.trials:,} tried" if is_found_out else f"NOT FOUND OUT, {wrong.trials:,} tried",
        clock(time.monotonic() - began),
        str(seed),
        outcome.note,
    ]
    return Row(promise, seed, cells, is_kept)


def line(cells: list[str]) -> str:
    return "| " + " | ".join(cells) + " |"


def line_of(row: Row, *more: str) -> str:
    return line([f"`{row.promise.name}`", row.promise.text, *row.cells, *more])


def heading(*more: str) -> list[str]:
    columns = [*COLUMNS, *more]
    return [line(columns), line(["---"] * len(columns))]


def commit() -> str:
    if not shutil.which("git"):
        return "an unknown commit"

    def git(*arguments: str) -> str:
        return subprocess.run(["git", "-C", REPOSITORY, *arguments], capture_output=True, text=True, check=False).stdout

    changes = git("status", "--porcelain", "--", "src", "tests", "cmake", "CMakeLists.txt").splitlines()
    changed = any(not each.endswith("tests/proof/RESULTS.md") for each in changes)
    return git("rev-parse", "--short", "HEAD").strip() + (" and changes" if changed else "")


def machine() -> str:
    system = platform.freedesktop_os_release()["PRETTY_NAME"]
    return f"{system}, Linux {platform.release().split('-')[0]}, {platform.machine()}, {os.cpu_count()} cores"


def write(row: Row, is_further: bool) -> None:
    """Puts the row in the place of those of the same promise, or below them; the others stay as they were measured."""
    lines = collections.defaultdict(list)
    if RESULTS.exists():
        for each in RESULTS.read_text(encoding="utf-8").splitlines():
            if each.startswith("| `"):
                lines[each.split("`")[1]].append(each)
    if not is_further:
        lines[row.promise.name].clear()
    measured = f"{datetime.datetime.now(datetime.timezone.utc):%Y-%m-%d}, {commit()}"
    lines[row.promise.name].append(line_of(row, measured, machine()))
    known = [each for promise in PROMISES for each in lines[promise.name]]
    text = [
        "# What was tried in full",
        "",
        "`scripts/prove --full` writes this page; docs/proof.md says how to read it. The numbers are those of what ran.",
        "",
        *heading("measured", "on"),
        *known,
        "",
    ]
    RESULTS.write_text("\n".join(text), encoding="utf-8")


def chosen(names: list[str]) -> list[Promise]:
    unknown = set(names) - {promise.name for promise in PROMISES}
    if unknown:
        print(f"prove: there is no promise “{sorted(unknown)[0]}”; scripts/prove --list", file=sys.stderr)
        sys.exit(2)
    return [promise for promise in PROMISES if not names or promise.name in names]


def rounds_of(promise: Promise, asked: argparse.Namespace) -> int:
    """What is named is tried, at least once."""
    if asked.rounds:
        return asked.rounds
    return promise.full if asked.full else promise.quick or int(bool(asked.promises))


def main() -> int:
    parser = argparse.ArgumentParser(prog="scripts/prove")
    parser.add_argument("promises", nargs="*", metavar="PROMISE")
    parser.add_argument("--full", action="store_true", help="the full figures, which go to tests/proof/RESULTS.md")
    parser.add_argument("--further", action="store_true", help="with --full: besides what was tried before, of which the page has a row each")
    parser.add_argument("--list", action="store_true", help="the promises, and how often each is tried")
    parser.add_argument("--rounds", type=int, help="instead of the promise's own")
    parser.add_argument("--seed", type=int, help="instead of one by chance")
    asked = parser.parse_args()
    promises = chosen(asked.promises)
    if asked.list:
        for promise in promises:
            print(f"{promise.name:24} {promise.quick:>9,} quick {promise.full:>11,} full   {promise.text}")
        return 0
    rows = []
    print("\n".join(heading()), flush=True)
    for promise in promises:
        rounds = rounds_of(promise, asked)
        if not rounds:
            continue
        seed = random.randrange(1_000_000_000) if asked.seed is None else asked.seed
        rows.append(prove(promise, rounds, seed))
        print(line_of(rows[-1]), flush=True)
        if asked.full:
            write(rows[-1], asked.further)
    kept = sum(row.is_kept and row.was_tried for row in rows)
    broken = sum(not row.is_kept for row in rows)
    print(f"\n{kept} promises kept, {broken} broken, {len(rows) - kept - broken} not tried here")
    return 1 if broken or not kept else 0


if __name__ == "__main__":
    sys.exit(main())
