"""The manual pages are well-formed, and know every command and option that the programs know; the completions, too."""

import os
import pathlib
import re
import subprocess
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS = pathlib.Path(os.environ.get("ORVANE_BINARY_DIR", REPOSITORY / "build/release/bin")).resolve()
PACKAGING = REPOSITORY / "packaging"


def said(*command: object) -> str:
    return subprocess.run(list(map(str, command)), check=True, capture_output=True, text=True).stdout


def help_of(program: str, *command: str) -> str:
    return said(PROGRAMS / program, *command, "--help")


def options(text: str) -> set[str]:
    return set(re.findall(r"^\s+(?:-\w,)?(--[\w-]+)", text, re.MULTILINE))


def commands(text: str) -> set[str]:
    return set(re.findall(r"^  (\w+)", text.partition("Subcommands:\n")[2], re.MULTILINE))


def page(program: str) -> pathlib.Path:
    return PACKAGING / "man" / f"{program}.1.in"


def section(text: str, command: str) -> str:
    """What the manual says of one command, without the font changes."""
    found = re.search(rf"^\.SS {command}\n(.*?)(?=^\.S[SH] )", text, re.MULTILINE | re.DOTALL)
    assert found, command
    return found[1]


def plain(text: str) -> str:
    return text.replace("\\-", "-")


class ManualTest(unittest.TestCase):
    def test_there_is_something_to_compare(self):
        self.assertLessEqual({"list", "plan", "remove"}, commands(help_of("orvane-cli")))
        self.assertIn("--permanently", options(help_of("orvane-cli", "remove")))
        self.assertIn("--appearance", options(help_of("orvane")))

    def test_the_manual_has_every_option_of_every_command_and_no_other(self):
        text = page("orvane-cli").read_text(encoding="utf-8")
        general = text[text.index(".SH OPTIONS") : text.index(".SH COMMANDS")]
        def listed(part: str) -> set[str]:
            return set(re.findall(r"^\.(?:B|BI|BR) (?:-h \", \" )?(--[\w-]+)", plain(part), re.MULTILINE))

        self.assertEqual(listed(general), options(help_of("orvane-cli")))
        for command in commands(help_of("orvane-cli")):
            with self.subTest(command=command):
                # Help is described once.
                self.assertEqual(
                    listed(section(text, command)) | {"--help"}, options(help_of("orvane-cli", command)) | {"--help"}
                )
        window = page("orvane").read_text(encoding="utf-8")
        part = window[window.index(".SH OPTIONS") : window.index(".SH KEYS")]
        self.assertEqual(listed(part), options(help_of("orvane")))

    def test_the_completions_have_every_command_and_option(self):
        for file in ["orvane-cli.bash", "_orvane-cli", "orvane-cli.fish"]:
            text = (PACKAGING / "completions" / file).read_text(encoding="utf-8")
            known = commands(help_of("orvane-cli"))
            wanted = options(help_of("orvane-cli")).union(*(options(help_of("orvane-cli", each)) for each in known))
            if "fish" in file:
                wanted = {f"-l {option[2:]}" for option in wanted}
            else:
                wanted |= options(help_of("orvane"))
            for word in sorted(wanted | known):
                with self.subTest(file=file, word=word):
                    self.assertRegex(text, rf"(?<![\w-]){re.escape(word)}(?![\w-])")

    def test_the_manual_is_well_formed(self):
        for program in ["orvane", "orvane-cli"]:
            with self.subTest(program=program):
                source = page(program).read_text(encoding="utf-8").replace("@PROJECT_VERSION@", "1")
                lint = subprocess.run(
                    ["mandoc", "-T", "lint", "-W", "warning"], input=source, capture_output=True, text=True, check=False
                )
                self.assertEqual((lint.returncode, lint.stdout), (0, ""))
                shown = subprocess.run(
                    ["man", "--warnings", "-l", "-"],
                    input=source,
                    capture_output=True,
                    text=True,
                    check=True,
                    env=dict(os.environ, LC_ALL="C.UTF-8", MANPAGER="cat", PAGER="cat"),
                )
                self.assertEqual(shown.stderr, "")
                self.assertIn("EXIT STATUS", shown.stdout)


if __name__ == "__main__":
    unittest.main()
