"""scripts/prove says that a promise is kept only when nothing broke it and what breaks it was found out."""

import argparse
import contextlib
import io
import json
import pathlib
import sys
import tempfile
import unittest
import unittest.mock

PROJECT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / "tests" / "proof"))
import prove  # noqa: E402
from promises import PROMISES, Promise, User  # noqa: E402

OUTCOME = {"trials": 100, "failures": 0, "unit": "rounds", "figure": "", "note": "", "skipped": ""}


class Prove(unittest.TestCase):
    def row(self, right: dict, wrong: dict, status: int = 0, user: User = User.ANY) -> prove.Row:
        """What becomes of a promise whose harness says so, and so of its wrong variant."""

        def command(promise: Promise, rounds: int, seed: int, is_wrong: bool) -> list[str]:
            said = json.dumps(OUTCOME | (wrong if is_wrong else right))
            return ["/bin/sh", "-c", f"echo 'anything'; echo '{said}'; exit {0 if is_wrong else status}"]

        self.said = io.StringIO()
        with unittest.mock.patch.object(prove, "command", command), contextlib.redirect_stderr(self.said):
            return prove.prove(Promise("name", "text", "Harness", 10, 20, 5, user), 10, 7)

    def test_a_promise_that_nothing_broke_is_kept_and_says_how_sure_that_is(self):
        row = self.row({}, {"failures": 1, "trials": 3})
        self.assertTrue(row.is_kept)
        self.assertIn("below 3/100", row.cells)
        self.assertIn("found out, 3 tried", row.cells)

    def test_a_failure_breaks_it_and_says_how_to_repeat_it(self):
        row = self.row({"failures": 1}, {"failures": 1})
        self.assertFalse(row.is_kept)
        self.assertIn("scripts/prove name --rounds 10 --seed 7", self.said.getvalue())
        self.assertNotIn("below", " ".join(row.cells))

    def test_a_harness_that_would_notice_nothing_proves_nothing(self):
        row = self.row({}, {})
        self.assertFalse(row.is_kept)
        self.assertIn("NOT FOUND OUT", " ".join(row.cells))

    def test_a_harness_that_ends_early_proves_nothing(self):
        self.assertFalse(self.row({}, {"failures": 1}, status=1).is_kept)
        self.assertIn("anything", self.said.getvalue())

    def test_a_harness_that_tried_nothing_proves_nothing(self):
        self.assertFalse(self.row({"trials": 0}, {"failures": 1}).is_kept)

    def test_what_cannot_be_tried_is_named(self):
        row = self.row({}, {"skipped": "no disk"})
        self.assertFalse(row.was_tried)
        self.assertIn("no disk", row.cells)
        with unittest.mock.patch.object(prove.os, "geteuid", lambda: 65534):
            self.assertIn("needs root", self.row({}, {"failures": 1}, user=User.ROOT).cells)

    def test_what_is_measured_anew_leaves_the_other_rows_and_what_is_further_its_own(self):
        with tempfile.TemporaryDirectory() as folder:
            results = pathlib.Path(folder) / "RESULTS.md"
            first, second = PROMISES[0], PROMISES[1]
            with unittest.mock.patch.object(prove, "RESULTS", results):
                for promise, cell, is_further in [(second, "one", False), (first, "two", False), (second, "three", False),
                                                  (first, "four", True), (first, "five", True)]:  # fmt: skip
                    prove.write(prove.Row(promise, 1, [cell] * 7, is_kept=True), is_further)
            rows = [each for each in results.read_text().splitlines() if each.startswith("| `")]
            self.assertEqual([row.split("|")[3].strip() for row in rows], ["two", "four", "five", "three"])

    def test_what_is_named_is_tried_at_least_once(self):
        seldom = Promise("seldom", "text", "harness.py", 0, 20, 5)
        for named, is_full, rounds, tried in [([], False, None, 0), (["seldom"], False, None, 1),
                                              (["seldom"], False, 7, 7), ([], True, None, 20)]:  # fmt: skip
            asked = argparse.Namespace(promises=named, full=is_full, rounds=rounds)
            self.assertEqual(prove.command(seldom, prove.rounds_of(seldom, asked), 1, False)[-3], str(tried))

    def test_every_harness_is_there(self):
        for promise in PROMISES:
            name = promise.harness.split()[0]
            with self.subTest(name=name):
                self.assertTrue((PROJECT / "tests" / "proof" / (name if name.endswith(".py") else name + ".cpp")).exists())
        self.assertEqual(len({promise.name for promise in PROMISES}), len(PROMISES))


if __name__ == "__main__":
    unittest.main()
