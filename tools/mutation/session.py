"""From the sources to what became of each mutant."""

import json

from mutation import building, trying
from mutation.survivors import Tally, explanations
from mutation.weaving import Mutant


def source_of(mutant: Mutant) -> str:
    return (building.REPOSITORY / mutant.file).read_text(encoding="utf-8")


def try_mutants(mutants: list[Mutant], jobs: int, is_asleep: bool = False) -> Tally:
    """Builds what these are tested by, and tries them. Asleep, each has its tests, but nothing is changed."""
    building.prepare_place()
    programs = sorted({program for mutant in mutants for program in building.programs_of(mutant.file)})
    in_build = {mutant.number for of_file in building.build(programs, jobs).values() for mutant in of_file}
    reached = trying.reached_by(programs)
    tally = Tally(explanations(), sterile=sum(mutant.number not in in_build for mutant in mutants))
    told = []
    for mutant, verdict, by in trying.judge([each for each in mutants if each.number in in_build], reached, jobs, is_asleep):
        tally.add(mutant, verdict)
        told.append({"key": mutant.key, "number": mutant.number, "verdict": verdict.value, "by": by})
        (building.FOLDER / "verdicts.json").write_text(json.dumps(told, indent=1), encoding="utf-8")
    return tally
