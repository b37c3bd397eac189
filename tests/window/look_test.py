"""How the real window looks on a virtual display, and what it tells the desktop of itself."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = pathlib.Path(os.environ.get("ORVANE_BINARY_DIR", REPOSITORY / "build/release/bin")) / "orvane"

sys.path.insert(0, str(REPOSITORY / "tools"))
from window.portal import StandInPortal  # found by the line above
from window.screen import Screen, enter_session

LIGHT = (255, 255, 255)
DARK = (0x1E, 0x1E, 0x1E)

screen = Screen()


def setUpModule():
    # One for all: a process has one accessibility bus for as long as it runs.
    unittest.enterModuleContext(screen)


class LookTest(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="orvane-look-"))
        self.addCleanup(shutil.rmtree, self.scratch, ignore_errors=True)
        (self.scratch / "volume/Users/sample").mkdir(parents=True)
        (self.scratch / "volume/Applications").mkdir()
        # The desktop's own settings are the test's.
        (self.scratch / "config").mkdir()
        os.environ["XDG_CONFIG_HOME"] = str(self.scratch / "config")
        self.addCleanup(os.environ.pop, "XDG_CONFIG_HOME")

    def open(self, *arguments: str):
        from window.program import Program  # needs the session that is there by now

        root = ["--root", str(self.scratch / "volume"), "--home", "/Users/sample"]
        self.window = self.enterContext(Program(screen, PROGRAM, *root, *arguments))
        self.window.thing("heading", "Select an Application")
        return self.window

    def ground(self) -> tuple[int, int, int]:
        """What the pane is painted with, in the middle of its lower part."""
        return screen.pixel(self.window.window("Orvane"), 700, 750)

    def wait_for_ground(self, color: tuple[int, int, int]):
        self.window.wait_for(lambda: self.ground() == color, f"window in {color}")

    def properties(self, *names: str) -> str:
        command = ["xprop", "-id", self.window.window("Orvane"), *names]
        return subprocess.run(command, env=screen.environment(), check=True, capture_output=True, text=True).stdout

    def test_is_as_the_option_says(self):
        for appearance, color in (("light", LIGHT), ("dark", DARK)):
            with self.subTest(appearance):
                self.open("--appearance", appearance)
                self.wait_for_ground(color)
                self.window.__exit__()

    def test_follows_the_portal_but_for_the_option(self):
        with StandInPortal() as portal:
            portal.set("org.freedesktop.appearance", "color-scheme", 1)
            self.open("--appearance", "light")
            portal.wait_until_asked()
            self.wait_for_ground(LIGHT)
            self.window.__exit__()
            self.open()
            self.wait_for_ground(DARK)
            portal.set("org.freedesktop.appearance", "color-scheme", 2)
            self.wait_for_ground(LIGHT)
            portal.set("org.freedesktop.appearance", "color-scheme", 1)
            self.wait_for_ground(DARK)

    def test_follows_gtks_settings(self):
        self.open()
        self.wait_for_ground(LIGHT)
        settings = self.scratch / "config/gtk-4.0/settings.ini"
        settings.parent.mkdir(parents=True)
        settings.write_text("[Settings]\ngtk-application-prefer-dark-theme=1\n")
        self.wait_for_ground(DARK)

    def test_tells_the_desktop_what_it_is_and_leaves_it_its_place(self):
        self.open()
        said = self.properties("WM_CLASS", "WM_NORMAL_HINTS", "_NET_WM_ICON", "_NET_WM_WINDOW_TYPE")
        self.assertIn('"Orvane"', said)
        self.assertIn("Icon (", said)
        self.assertIn("_NET_WM_WINDOW_TYPE_NORMAL", said)
        self.assertIn("program specified minimum size: 980 by", said)
        self.assertNotIn("user specified location", said)
        self.assertNotIn("program specified location", said)


if __name__ == "__main__":
    enter_session()
    unittest.main(warnings="ignore")
