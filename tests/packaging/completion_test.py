"""The completions in real shells on a terminal: what the Tab key makes of a beginning is what the program is then given."""

import os
import pathlib
import plistlib
import pty
import select
import shlex
import shutil
import subprocess
import tempfile
import time
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = pathlib.Path(os.environ.get("ORVANE_BINARY_DIR", REPOSITORY / "build/release/bin")).resolve() / "orvane-cli"
COMPLETIONS = REPOSITORY / "packaging" / "completions"
DEADLINE = 60

# Each begins with two letters of its own; what follows is there to mislead a shell.
NAMES = [
    "Qa Slate",
    "Qb's Tool",
    'Qc says "Hi"',
    "Qd $HOME `touch escaped` $(touch escaped)",
    "Qe; touch escaped & echo | cat > escaped",
    "Qf: The Sequel",
    "Qg\\n back\\slash",
    "Qh * [a-z] ? {x,y}",
    "Qi Ünïcode 日本",
    "Qj # (no comment) <x> !!",
    "Qk=~equal",
]
LINE_BREAK = "Ql two\nlines"

SHELLS = {
    "bash": (["bash", "--norc", "--noprofile", "-i"], f"source {COMPLETIONS / 'orvane-cli.bash'}; PS1='READY''> '"),
    "zsh": (
        ["zsh", "-f", "-i"],
        f"fpath=({COMPLETIONS} $fpath); autoload -U compinit; compinit -D -u; unsetopt banghist; PS1='READY''> '",
    ),
    "fish": (
        ["fish", "--no-config", "--private", "-i"],
        f"source {COMPLETIONS / 'orvane-cli.fish'}; function fish_prompt; echo -n READY'> '; end",
    ),
}


class Shell:
    """A shell on a terminal of its own, in which `orvane-cli` is the real one for completions and else tells its arguments."""

    def __init__(self, name: str, scratch: pathlib.Path):
        command, setup = SHELLS[name]
        self.told = scratch / "told"
        (scratch / "bin").mkdir()
        (scratch / "here").mkdir()
        stand_in = scratch / "bin" / "orvane-cli"
        stand_in.write_text(
            '#!/bin/sh\nfor word; do :; done\n'
            f'if [ "$word" = complete ]; then exec {shlex.quote(str(PROGRAM))} "$@"; fi\n'
            f'printf "%s\\0" "$@" >{shlex.quote(str(self.told))}\necho T"OL"D\n'
        )
        stand_in.chmod(0o755)
        self.here = scratch / "here"
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(self.here)
            environment = {
                "PATH": f"{scratch / 'bin'}:{os.environ['PATH']}",
                "HOME": str(scratch),
                "TERM": "xterm",
                "LC_ALL": "C.UTF-8",
                "XDG_CONFIG_HOME": str(scratch),
                "XDG_DATA_HOME": str(scratch),
            }
            os.execvpe(command[0], command, environment)
        # Wide, so that no line is broken.
        subprocess.run(["stty", "cols", "900", "rows", "50"], stdin=self.terminal, check=True)
        self.said = b""
        self.type(setup + "\n")
        self.wait_for(b"READY> ")

    def type(self, text: str) -> None:
        os.write(self.terminal, text.encode())

    def wait_for(self, text: bytes) -> None:
        deadline = time.monotonic() + DEADLINE
        while text not in self.said:
            if not select.select([self.terminal], [], [], max(0.0, deadline - time.monotonic()))[0]:
                raise AssertionError(f"no {text!r} in {self.said!r}")
            try:
                self.said += os.read(self.terminal, 65536)
            except OSError as error:
                raise AssertionError(f"the shell has ended: {self.said!r}") from error

    def arguments(self, line: str) -> list[str]:
        """What the program is given when this line is typed, completed and entered."""
        self.told.unlink(missing_ok=True)
        self.said = b""
        self.type(line + "\t\n")
        self.wait_for(b"TOLD")
        self.wait_for(b"READY> ")
        return self.told.read_bytes().decode().split("\0")[:-1]

    def end(self) -> None:
        os.close(self.terminal)
        os.waitpid(self.process, 0)


class Completion:
    shell = ""

    @classmethod
    def setUpClass(cls):
        if not shutil.which(cls.shell):
            raise AssertionError(f"{cls.shell} is missing; scripts/setup scripts/packages-check.txt installs it")
        cls.scratch = pathlib.Path(tempfile.mkdtemp(prefix="orvane-completion-"))
        cls.addClassCleanup(shutil.rmtree, cls.scratch)
        cls.volume = cls.scratch / "the Mac's disk"
        (cls.volume / "Users/sample/Library").mkdir(parents=True)
        for number, name in enumerate([*NAMES, LINE_BREAK, "Qm twice", "Qm twice", "-Qn", "/Qo"]):
            contents = cls.volume / f"Applications/{number}.app/Contents"
            contents.mkdir(parents=True)
            with (contents / "Info.plist").open("wb") as file:
                plistlib.dump({"CFBundleDisplayName": name, "CFBundleIdentifier": f"org.example.a{number}"}, file)
        cls.terminal = Shell(cls.shell, cls.scratch)
        cls.addClassCleanup(cls.terminal.end)

    def complete(self, words: str) -> list[str]:
        """The arguments after the volume's."""
        given = self.terminal.arguments(f"orvane-cli --root {shlex.quote(str(self.volume))} {words}")
        self.assertEqual(given[:2], ["--root", str(self.volume)])
        self.assertEqual(os.listdir(self.terminal.here), [], "a name was run")
        return given[2:]

    def test_names_reach_the_program_as_they_are(self):
        for name in [*NAMES, LINE_BREAK]:
            with self.subTest(name=name):
                self.assertEqual(self.complete(f"plan {name[:2]}"), ["plan", name])

    def test_a_name_goes_on_where_it_was_begun(self):
        for begun, name in [
            ("Qa\\ S", "Qa Slate"),
            ("'Qa S", "Qa Slate"),
            ('"Qa S', "Qa Slate"),
            ("Qb\\'s", "Qb's Tool"),
            ("Qf:", "Qf: The Sequel"),
            ("Qf:\\ Th", "Qf: The Sequel"),
            ("'Qf: Th", "Qf: The Sequel"),
            ("'Qb", "Qb's Tool"),
            ('"Qc', 'Qc says "Hi"'),
            ('"Qd', "Qd $HOME `touch escaped` $(touch escaped)"),
            ('"Qj', "Qj # (no comment) <x> !!"),
            ("Qk=", "Qk=~equal"),
        ]:
            with self.subTest(begun=begun):
                # An open quote is closed where the shell does not do it.
                self.assertEqual(self.complete(f"remove {begun}"), ["remove", name])

    def test_what_no_name_can_say_is_a_path(self):
        self.assertEqual(self.complete("plan /Applications/12"), ["plan", "/Applications/12.app"])
        self.assertEqual(self.complete("plan /Applications/15"), ["plan", "/Applications/15.app"])

    def test_options_follow_their_command(self):
        self.assertEqual(self.complete("remove --perm"), ["remove", "--permanently"])
        self.assertEqual(self.complete("list --resc"), ["list", "--rescan"])
        self.assertEqual(self.complete("plan --w"), ["plan", "--why"])
        self.assertEqual(self.complete("pl"), ["plan"])
        self.assertEqual(self.complete("dis"), ["disks"])

    def test_completing_writes_nothing_to_the_disk(self):
        self.complete("plan Qa")
        self.assertEqual(os.listdir(self.volume / "Users/sample/Library"), [])


class BashCompletion(Completion, unittest.TestCase):
    shell = "bash"


class ZshCompletion(Completion, unittest.TestCase):
    shell = "zsh"


class FishCompletion(Completion, unittest.TestCase):
    shell = "fish"


if __name__ == "__main__":
    unittest.main()
