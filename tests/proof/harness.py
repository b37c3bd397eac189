"""What a harness in Python is called with, and what it says. It writes only into the folder for temporary files, which
is empty and in memory, unless its promise says otherwise.

    import harness

    def run(task: harness.Task) -> harness.Outcome:
        ...

    if __name__ == "__main__":
        harness.main(run)
"""

import argparse
import dataclasses
import json
import pathlib
import random
from collections.abc import Callable

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
# What is proven is the build that ships.
PROGRAMS = REPOSITORY / "build" / "release" / "bin"


@dataclasses.dataclass(frozen=True)
class Task:
    # How often it tries to break the promise. The wrong variant ends with its first failure.
    rounds: int
    # The same seed makes the same choices.
    seed: int
    # Tries it on something that does not keep the promise, which has to be found out.
    is_wrong: bool
    options: list[str]

    def random(self) -> random.Random:
        return random.Random(self.seed)


@dataclasses.dataclass(frozen=True)
class Outcome:
    # Only what could have failed.
    trials: int
    failures: int
    unit: str = "rounds"
    # What was measured, where that is no count of failures: "1.31 × rm".
    figure: str = ""
    note: str = ""
    # Why it cannot be tried here; empty where it can.
    skipped: str = ""


def main(run: Callable[[Task], Outcome]) -> None:
    """The outcome is the last line of standard output. Whatever is thrown is a failure."""
    parser = argparse.ArgumentParser()
    parser.add_argument("options", nargs="*")
    parser.add_argument("--rounds", type=int, required=True)
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("--wrong", action="store_true")
    asked = parser.parse_args()
    outcome = run(Task(asked.rounds, asked.seed, asked.wrong, asked.options))
    print(json.dumps(dataclasses.asdict(outcome)), flush=True)
