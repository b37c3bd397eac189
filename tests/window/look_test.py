"""How the real window looks on a virtual display, and what it tells the desktop of itself."""

import subprocess

from window_case import PROGRAM, WindowTest, main, screen
from window.portal import StandInPortal

LIGHT = (255, 255, 255)
DARK = (0x1E, 0x1E, 0x1E)


class LookTest(WindowTest):
    def setUp(self):
        super().setUp()
        (self.scratch / "volume/Users/sample").mkdir(parents=True)
        (self.scratch / "volume/Applications").mkdir()

    def open(self, *arguments: str):
        root = ["--root", str(self.scratch / "volume"), "--home", "/Users/sample"]
        self.window = self.run_program(PROGRAM, *root, *arguments)
        self.window.thing("heading", "Select an Application")
        return self.window

    def ground(self) -> tuple[int, int, int]:
        """What the pane is painted with, in the middle of its lower part."""
        return self.window.look().color(700, 750)

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
        self.set_desktop("gtk-application-prefer-dark-theme=1")
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
    main()
