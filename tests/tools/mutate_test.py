"""What tools/mutate weaves into a source does, behind each number, what the change does that is written by hand; and nothing
without one."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / "tools"))
from mutation import building, survivors, trying, weaving  # noqa: E402
from mutation.trying import Verdict  # noqa: E402

SOURCE = """
int calls = 0;
bool counted(int value) { ++calls; return value != 0; }
int bounded(int value) {
    if (value < 0 || value > 10) return -1;
    if (!counted(value) && value <= 3) return 7;
    for (int step = 0; step < 3; ++step) {
        if (step == 1) continue;
        value = value + step;
    }
    if (value >= 6 && counted(value) && value != 9)
        calls = 100;
    else
        counted(value);
    return value - 2;
}
std::string text(const std::string& name) {
    std::string shown;
    const bool isNamed = true;
    if (isNamed == !name.empty()) shown = "<" + name + ">";
    return shown;
}
std::string told() {
    std::string all;
    for (int value = -2; value < 13; ++value) {
        calls = 0;
        const int result = bounded(value);
        all += std::to_string(result) + " " + std::to_string(calls) + ",";
    }
    return all + text("") + text("x");
}
"""
PRINTING = """
int main() {
    std::printf("%s\\n", plain::told().c_str());
    for (const int number : {0, NUMBERS}) {
        mutation::memory().number = number;
        std::printf("%s\\n", woven::told().c_str());
    }
    mutation::memory().number = 0;
BY_HAND
}
"""
# No program, when written by hand or woven in: texts cannot be taken from each other; and what would not end.
LEFT_OUT = {('if (isNamed == !name.empty()) shown = "<" + name + ">";', "+ becomes -"),
            ('if (isNamed == !name.empty()) shown = "<" + name + ">";', "+ becomes - (2)"),
            ('return all + text("") + text("x");', "+ becomes -"), ('return all + text("") + text("x");', "+ becomes - (2)"),
            ('all += std::to_string(result) + " " + std::to_string(calls) + ",";', "+ becomes -"),
            ('all += std::to_string(result) + " " + std::to_string(calls) + ",";', "+ becomes - (2)"),
            ('all += std::to_string(result) + " " + std::to_string(calls) + ",";', "+ becomes - (3)")}  # fmt: skip


class Weaving(unittest.TestCase):
    def test_each_number_does_what_is_written_by_hand(self):
        mutants = [each for each in weaving.mutants_of("source.cpp", SOURCE, 1) if each.key[1:] not in LEFT_OUT]
        self.assertGreater(len(mutants), 40)
        by_hand = [SOURCE[: each.begin] + each.instead + SOURCE[each.end :] for each in mutants]
        header = PROJECT / "tools" / "mutation" / "Mutation.h"
        woven = "\n".join(weaving.woven(SOURCE, mutants, "unused").splitlines()[2:])
        program = "\n".join(
            [
                f'#include "{header}"\n#include <cstdio>\n#include <string>',
                f"namespace plain {{{SOURCE}}}\nnamespace woven {{{woven}}}",
                *[f"namespace by_hand_{place} {{{text}}}" for place, text in enumerate(by_hand)],
                PRINTING.replace("NUMBERS", ", ".join(str(each.number) for each in mutants)).replace(
                    "BY_HAND",
                    "\n".join(f'std::printf("%s\\n", by_hand_{place}::told().c_str());' for place in range(len(by_hand))),
                ),
            ]
        )
        with tempfile.TemporaryDirectory() as folder:
            binary = pathlib.Path(folder) / "woven"
            subprocess.run(["c++", "-std=c++20", "-w", "-x", "c++", "-", "-o", binary], input=program, text=True, check=True)
            said = subprocess.run([binary], capture_output=True, text=True, check=True, timeout=60).stdout.splitlines()
        plain, asleep, *rest = said
        self.assertEqual(plain, asleep)
        behind_numbers, written = rest[: len(mutants)], rest[len(mutants) :]
        for mutant, woven_one, written_one in zip(mutants, behind_numbers, written, strict=True):
            with self.subTest(line=mutant.line, what=mutant.what):
                self.assertEqual(woven_one, written_one)
        # Most of them can be told from the program, or nothing would be compared.
        self.assertGreater(sum(one != plain for one in written), len(mutants) * 0.8)

    def test_no_line_moves(self):
        mutants = weaving.mutants_of("source.cpp", SOURCE, 1)
        self.assertEqual(SOURCE.count("\n"), weaving.woven(SOURCE, mutants, "header").count("\n") - 2)

    def test_what_is_no_decision_is_left_alone(self):
        for source in ["std::vector<int> v;\n", "bool operator==(const A&, const A&);\n", 'auto t = "a < b && !c";\n',
                       "// a < b\n", "Widget widget(parent);\n", "#if A && B\n"]:  # fmt: skip
            with self.subTest(source=source):
                self.assertEqual(weaving.mutants_of("source.cpp", source, 1), [])


class Choice(unittest.TestCase):
    def test_a_source_that_changes_brings_only_its_own_lines_into_the_choice(self):
        here = weaving.mutants_of("here.cpp", SOURCE, 1)
        before = weaving.mutants_of("there.cpp", SOURCE, 1_001)
        after = weaving.mutants_of("there.cpp", "bool other() { return true; }\n" + SOURCE, 1_001)
        chosen = {each.key for each in trying.chosen(here + before, 7, 20)}
        changed = {each.key for each in trying.chosen(here + after, 7, 20)}
        self.assertLessEqual(len(chosen - changed), 1)
        self.assertNotEqual(chosen, {each.key for each in trying.chosen(here + before, 8, 20)})

    def test_the_quickest_tests_run_first(self):
        tests = [trying.Test("A", f"slow{n}", 900) for n in range(3)] + [trying.Test("B", f"quick{n}", 1) for n in range(5)]
        self.assertEqual([test.name for test in next(trying.waves(tests))], [f"quick{n}" for n in range(5)])
        self.assertCountEqual([test for wave in trying.waves(tests) for test in wave], tests)

    def test_a_mutant_that_no_test_reaches_survives(self):
        self.assertEqual(trying.verdict(1, [])[0], Verdict.UNREACHED)


class Explanations(unittest.TestCase):
    def test_each_is_of_a_change_that_there_is(self):
        known = {mutant.key for of_file in building.all_mutants().values() for mutant in of_file}
        for key in survivors.explanations():
            with self.subTest(key=key):
                self.assertTrue(key in known, "nothing is changed so")

    def test_what_is_equivalent_is_left_out_of_the_rate_and_what_is_not_explained_is_named(self):
        mutants = weaving.mutants_of("source.cpp", SOURCE, 1)[:4]
        known = {mutants[1].key: survivors.Kind.EQUIVALENT, mutants[2].key: survivors.Kind.HARMLESS}
        verdicts = [Verdict.KILLED, Verdict.SURVIVED, Verdict.SURVIVED, Verdict.UNREACHED]
        tally = survivors.Tally(known)
        for mutant, verdict in zip(mutants, verdicts, strict=True):
            tally.add(mutant, verdict)
        self.assertEqual(tally.unexplained, [mutants[3]])
        self.assertAlmostEqual(tally.rate(), 100 / 3)


if __name__ == "__main__":
    unittest.main()
