"""What the tests of the real window share: the program, the screen that it is run on, and a small disk to show."""

import os
import pathlib
import plistlib
import shutil
import sys
import tempfile
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = (pathlib.Path(os.environ.get("ORVANE_BINARY_DIR", REPOSITORY / "build/release/bin")) / "orvane").resolve()
# Where pictures are kept for people to look at.
PICTURES = pathlib.Path(kept) if (kept := os.environ.get("ORVANE_PICTURES")) else None

sys.path.insert(0, str(REPOSITORY / "tools"))
from window.screen import Display, Screen, enter_session  # found by the line above

# One for all: a process has one accessibility bus for as long as it runs.
screen = Screen()
needs_administrator = unittest.skipUnless(os.geteuid() == 0, "only root gets an administrator's rights without a person")
needs_mounts = unittest.skipUnless(os.geteuid() == 0, "nothing can be mounted here")


class WindowTest(unittest.TestCase):
    """A folder of its own for each test, and programs that end with it."""

    @classmethod
    def setUpClass(cls):
        cls.enterClassContext(screen)

    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="orvane-window-"))
        self.addCleanup(shutil.rmtree, self.scratch, ignore_errors=True)
        # The desktop's own settings are the test's.
        os.environ["XDG_CONFIG_HOME"] = str(self.scratch / "config")
        self.addCleanup(os.environ.pop, "XDG_CONFIG_HOME")
        (self.scratch / "config").mkdir()

    def run_program(self, program: pathlib.Path, *arguments: str, on: Display = screen):
        from window.program import Program  # needs the session that is there by now

        return self.enterContext(Program(on, program, *arguments))

    def set_desktop(self, *settings: str) -> None:
        """Writes what a GTK desktop is set to, such as "gtk-enable-animations=0"."""
        file = self.scratch / "config/gtk-4.0/settings.ini"
        file.parent.mkdir(exist_ok=True)
        file.write_text("\n".join(["[Settings]", *settings, ""]))

    def make_disk(self, name: str, *homes: str) -> pathlib.Path:
        """A Mac disk with one application, Amberfold, and these people's homes."""
        disk = self.scratch / name
        application = disk / "Applications/Amberfold.app/Contents"
        application.mkdir(parents=True)
        information = {"CFBundleName": "Amberfold", "CFBundleIdentifier": "org.example.amberfold"}
        (application / "Info.plist").write_bytes(plistlib.dumps(information))
        (disk / "Library").mkdir()
        for home in ("Shared", *homes):
            (disk / "Users" / home / "Library").mkdir(parents=True)
        return disk


def main() -> None:
    enter_session()
    unittest.main(warnings="ignore")
