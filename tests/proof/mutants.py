"""Lines of the program that are changed, one at a time, and what the tests notice of that (tools/mutate). In full, the same
mutants are tried every time, of all rooms; else some of these, of one room, so that one program of tests is built.
"""

import os
import sys

import harness

sys.path.insert(0, str(harness.REPOSITORY / "tools"))
from mutation import building, session, trying  # noqa: E402

# Tried in full: so many of all places, by that seed.
EVERY = 640
SEED = 1
# Of those that change anything, so many have to be noticed, in percent. Of a few, chance decides too much; what survives
# of these is printed for whoever reads it.
RATE = 95
RATE_OF_FEW = 80
# Otherwise those of one room, for which one program of tests is built.
ROOM = "src/Services/"


def run(task: harness.Task) -> harness.Outcome:
    if os.geteuid() != 0:
        return harness.Outcome(0, 0, skipped="only root can give a mutant a place apart")
    is_full = task.rounds >= EVERY
    chance = task.random()
    mutants = trying.chosen([each for of_file in building.all_mutants().values() for each in of_file], SEED, EVERY)
    if not is_full:
        mutants = [each for each in mutants if each.file.startswith(ROOM)]
        mutants = chance.sample(mutants, min(task.rounds, len(mutants)))
    tally = session.try_mutants(mutants, os.cpu_count() or 1, task.is_wrong)
    for mutant in tally.unexplained:
        print(mutant.diff(session.source_of(mutant)))
    # What changes nothing has to survive; who notices it would notice anything.
    if task.is_wrong:
        return harness.Outcome(tally.tried, 0 if tally.noticed else tally.tried, unit="mutants")
    is_too_low = tally.rate() < (RATE if is_full else RATE_OF_FEW)
    failures = is_too_low + (len(tally.unexplained) if is_full else 0)
    return harness.Outcome(tally.tried, failures, unit="mutants", note=tally.text())


if __name__ == "__main__":
    harness.main(run)
