"""The map in ARCHITECTURE.md and the answers in CONTRIBUTING.md name only what is there."""

import pathlib
import re
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = "\n".join(
    path.read_text() for path in sorted((PROJECT / "src").rglob("*")) if path.suffix in {".h", ".cpp", ".qml"}
)
TYPES = set(re.findall(r"\b(?:class|struct) (\w+)", SOURCES))
FUNCTIONS = set(re.findall(r"\b(\w+)\(", SOURCES))
DRAWINGS = re.findall(r"```\n(.*?)```", (PROJECT / "ARCHITECTURE.md").read_text(), re.DOTALL)
PATHS = re.compile(r"`((?:src|packaging|tests|tools|scripts)/[\w./-]*)`")


class Map(unittest.TestCase):
    def test_there_are_three_drawings(self):
        self.assertEqual(len(DRAWINGS), 3)

    def test_every_function_in_them_is_in_the_code(self):
        named = set(re.findall(r"\b([A-Z]\w+)::(\w+)\b", "".join(DRAWINGS)))
        self.assertGreater(len(named), 15)
        for owner, function in sorted(named):
            with self.subTest(name=f"{owner}::{function}"):
                self.assertIn(owner, TYPES)
                self.assertIn(function, FUNCTIONS)

    def test_every_free_function_in_them_is_in_the_code(self):
        free = set(re.findall(r"(?<![\w.:])([a-z]+[A-Z]\w+)\b(?!\.)", "".join(DRAWINGS)))
        self.assertGreater(len(free), 10)
        for function in sorted(free):
            with self.subTest(name=function):
                self.assertIn(function, FUNCTIONS)

    def test_every_place_that_is_named_is_there(self):
        for page in ["ARCHITECTURE.md", "CONTRIBUTING.md"]:
            for place in PATHS.findall((PROJECT / page).read_text()):
                with self.subTest(place=f"{page}: {place}"):
                    self.assertTrue((PROJECT / place).exists())


if __name__ == "__main__":
    unittest.main()
