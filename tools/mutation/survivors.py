"""What tests/proof/survivors.md explains of the mutants that no test notices."""

import collections
import dataclasses
import enum
import re

from mutation.building import REPOSITORY
from mutation.trying import Verdict
from mutation.weaving import Mutant

EXPLANATIONS = REPOSITORY / "tests" / "proof" / "survivors.md"
ENTRY = re.compile(r"^- `(?P<line>.*)`, (?P<what>[^:]+): (?P<kind>equivalent|harmless): ")


class Kind(enum.Enum):
    # Nobody could tell it from the program.
    EQUIVALENT = "equivalent"
    # One could, but it breaks no promise.
    HARMLESS = "harmless"


def explanations() -> dict[tuple[str, str, str], Kind]:
    """By the mutants' keys."""
    file, known = "", {}
    for text in EXPLANATIONS.read_text(encoding="utf-8").splitlines():
        if text.startswith("## "):
            file = text.removeprefix("## ")
        elif entry := ENTRY.match(text):
            known[file, entry["line"], entry["what"]] = Kind(entry["kind"])
        elif text.startswith("- "):
            raise SystemExit(f"mutate: {EXPLANATIONS}: this is no explanation: {text}")
    return known


@dataclasses.dataclass
class Tally:
    """What became of those that were tried."""

    known: dict[tuple[str, str, str], Kind]
    # Those that are no program.
    sterile: int = 0
    verdicts: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    kinds: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    unexplained: list[Mutant] = dataclasses.field(default_factory=list)

    def add(self, mutant: Mutant, verdict: Verdict) -> None:
        self.verdicts[verdict] += 1
        if verdict in (Verdict.KILLED, Verdict.HUNG):
            return
        if mutant.key in self.known:
            self.kinds[self.known[mutant.key]] += 1
        else:
            self.unexplained.append(mutant)

    @property
    def tried(self) -> int:
        return self.verdicts.total()

    @property
    def noticed(self) -> int:
        return self.verdicts[Verdict.KILLED] + self.verdicts[Verdict.HUNG]

    def rate(self) -> float:
        """Of those that can be noticed, in percent."""
        return 100 * self.noticed / max(1, self.tried - self.kinds[Kind.EQUIVALENT])

    def text(self) -> str:
        return (
            f"{self.noticed} of {self.tried} noticed, {self.verdicts[Verdict.HUNG]} of them as tests do not end ({100 * self.noticed / max(1, self.tried):.1f} %; "
            f"{self.rate():.1f} % of those that change anything), {self.kinds[Kind.EQUIVALENT]} equivalent, "
            f"{self.kinds[Kind.HARMLESS]} harmless, {len(self.unexplained)} unexplained; {self.sterile} more are not tried"
        )
