"""What the pages show of a terminal is what the programs say there.

A block that begins with ```console is typed, page by page, into one shell in a folder in which `mac` is the sample volume
and `backups` holds three copies of it; `…` stands for any text, on a line of its own for any lines. Other blocks are not run.

    transcripts_test.py --write     puts what is said now into the pages, in the place of what they show
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS = pathlib.Path(os.environ.get("ORVANE_BINARY_DIR", REPOSITORY / "build/release/bin")).resolve()
PAGES = sorted([REPOSITORY / "README.md", *(REPOSITORY / "docs").glob("*.md")])
BLOCK = re.compile(r"^```console\n(.*?)^```$", re.MULTILINE | re.DOTALL)
STOP = "that was all of it"


def steps(block: str) -> list[tuple[str, str]]:
    """The commands of a block, each with what it says. A command goes on in lines that begin with `> `."""
    found: list[list[str]] = []
    for line in block.splitlines():
        if line.startswith("$ "):
            found.append([line[2:], ""])
        elif line.startswith("> ") and not found[-1][1]:
            found[-1][0] += "\n" + line[2:]
        else:
            found[-1][1] += line + "\n"
    return [(command, said) for command, said in found]


def fits(shown: str, said: str) -> bool:
    def pattern(line: str) -> str:
        return "(?:.*\n)*" if line == "…" else ".*".join(map(re.escape, line.split("…"))) + "\n"

    return re.fullmatch("".join(map(pattern, shown.splitlines())), said) is not None


class Shell:
    """A shell in a folder of its own, whose commands are run one after the other."""

    def __init__(self, folder: pathlib.Path):
        # Where the programs may be run from a folder that others cannot enter, and by their names.
        environment = {
            "PATH": f"{PROGRAMS}:{os.environ['PATH']}",
            "HOME": str(folder),
            "LC_ALL": "C.UTF-8",
            "TZ": "UTC",
        }
        self.process = subprocess.Popen(
            ["bash", "--norc"],
            cwd=folder,
            env=environment,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
        )

    def run(self, command: str) -> str:
        # The command reads nothing of what comes after it.
        self.process.stdin.write(f"{{\n{command}\n}} </dev/null\necho '{STOP}'\n")
        self.process.stdin.flush()
        said = ""
        for line in self.process.stdout:
            if line == STOP + "\n":
                return said
            if line.endswith(STOP + "\n"):
                return said + line.removesuffix(STOP + "\n") + "\n"
            said += line
        raise AssertionError(f"the shell has ended at: {command}")

    def end(self) -> None:
        self.process.stdin.close()
        self.process.stdout.close()
        self.process.wait()


class TranscriptsTest(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="orvane-pages-"))
        self.addCleanup(shutil.rmtree, self.scratch)

    def begin(self, page: pathlib.Path) -> Shell:
        folder = self.scratch / page.stem
        folder.mkdir()
        (folder / ".parallel").mkdir()
        # Else it asks every user to cite it, once.
        (folder / ".parallel" / "will-cite").touch()
        tool = REPOSITORY / "tools" / "make-sample-volume"
        subprocess.run([sys.executable, "-B", tool, folder / "mac"], check=True, capture_output=True)
        if "backups" in page.read_text(encoding="utf-8"):
            (folder / "backups").mkdir()
            for number in (1, 2, 3):
                shutil.copytree(folder / "mac", folder / "backups" / f"mac-0{number}", symlinks=True)
        return Shell(folder)

    def test_the_pages_show_what_is_said(self):
        number = 0
        for page in PAGES:
            blocks = BLOCK.findall(page.read_text(encoding="utf-8"))
            if not blocks:
                continue
            shell = self.begin(page)
            self.addCleanup(shell.end)
            for block in blocks:
                for command, shown in steps(block):
                    number += 1
                    said = shell.run(command)
                    with self.subTest(page=page.name, command=command):
                        self.assertTrue(fits(shown, said), f"the page shows:\n{shown}\nbut it says:\n{said}")
        self.assertGreater(number, 15)

    def test_something_else_would_be_noticed(self):
        self.assertTrue(fits("one\n…\nfour\n", "one\ntwo\nthree\nfour\n"))
        self.assertTrue(fits("…\n", "one\n"))
        self.assertTrue(fits("o…e\n", "one\n"))
        self.assertFalse(fits("o…e\n", "one\ntwo\n"))
        for shown in ("one\n", "one\ntwo\nthree\nfour\nfive\n", "ones\n…\nfour\n", "one\n…\nfive\n"):
            self.assertFalse(fits(shown, "one\ntwo\nthree\nfour\n"), shown)

    def test_the_readme_says_how_fast_it_is_as_it_was_measured(self):
        results = (REPOSITORY / "benchmarks" / "RESULTS.md").read_text(encoding="utf-8")
        rows = re.findall(r"^\| (?:warm|cold) .*\|$", (REPOSITORY / "README.md").read_text(encoding="utf-8"), re.MULTILINE)
        self.assertEqual(len(rows), 2)
        for row in rows:
            self.assertIn("\n" + row, results)

    def test_every_link_of_a_page_leads_somewhere(self):
        for page in [*PAGES, *REPOSITORY.glob("*.md")]:
            text = re.sub(r"```.*?```", "", page.read_text(encoding="utf-8"), flags=re.DOTALL)
            for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", text):
                with self.subTest(page=page.name, target=target):
                    self.assertTrue((page.parent / target).exists())


def write(page: pathlib.Path, shell: Shell) -> None:
    """A part of what is said that the page leaves out stays left out."""

    def renewed(block: re.Match) -> str:
        text = ""
        for command, shown in steps(block[1]):
            said = shell.run(command)
            text += "$ " + command.replace("\n", "\n> ") + "\n" + (shown if fits(shown, said) else said)
        return f"```console\n{text}```"

    page.write_text(BLOCK.sub(renewed, page.read_text(encoding="utf-8")), encoding="utf-8")


if __name__ == "__main__":
    if sys.argv[1:] == ["--write"]:
        test = TranscriptsTest()
        test.setUp()
        try:
            for each in PAGES:
                if BLOCK.search(each.read_text(encoding="utf-8")):
                    session = test.begin(each)
                    write(each, session)
                    session.end()
        finally:
            test.doCleanups()
        sys.exit()
    unittest.main()
