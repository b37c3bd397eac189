"""Does the whole job in a real window on a virtual display, as a screen reader's user does it, and then looks at the disk."""

import hashlib
import json
import os
import pathlib
import stat
import subprocess
import sys
from collections.abc import Iterable

from window_case import PROGRAM, REPOSITORY, WindowTest, main, needs_administrator
from window.prompt import WaitingPrompt

HOME = "Users/sample"
TRASH = f"{HOME}/.Trash"
CATALOG = f"{HOME}/Library/Application Support/Orvane/applications.json"

AMBERFOLD = {
    "Application": "/Applications/Amberfold.app",
    "Preferences": f"/{HOME}/Library/Preferences/org.example.amberfold.plist",
    "Logs": f"/{HOME}/Library/Logs/Amberfold",
    "Daemon": "/Library/LaunchDaemons/com.example.helper-tool.plist",
}
CARTOVANE = [
    "/Applications/Cartovane.app",
    f"/{HOME}/Library/Caches/com.example.cartovane",
    f"/{HOME}/Library/Preferences/com.example.cartovane.plist",
    f"/{HOME}/Library/Application Support/Cartovane",
    "/Library/LaunchDaemons/com.example.cartovane.tiles.plist",
    f"/{HOME}/Library/Group Containers/TEAMID.com.example.cartovane",
]
FERNGLASS = [
    "/Applications/Fernglass.app",
    f"/{HOME}/Library/Preferences/org.example.fernglass.plist",
    f"/{HOME}/Library/Containers/org.example.fernglass",
]


def contents(path: pathlib.Path) -> str:
    """What a file, a link or a folder with all that is in it holds."""
    status = path.lstat()
    if stat.S_ISLNK(status.st_mode):
        return "link " + os.readlink(path)
    if stat.S_ISREG(status.st_mode):
        return hashlib.sha256(path.read_bytes()).hexdigest()
    if stat.S_ISDIR(status.st_mode):
        return json.dumps({os.fsdecode(entry.name): contents(entry) for entry in sorted(path.iterdir())})
    return f"mode {status.st_mode:o}"


def everything(volume: pathlib.Path) -> dict[str, tuple[int, int, str]]:
    """Every path of the volume with its inode, its mode and, but for folders, its contents."""
    found = {}
    for folder, folders, files in os.walk(volume):
        for name in folders + files:
            path = pathlib.Path(folder, name)
            status = path.lstat()
            held = "" if stat.S_ISDIR(status.st_mode) else contents(path)
            found["/" + str(path.relative_to(volume))] = (status.st_ino, status.st_mode, held)
    return found


def is_within(path: str, folders: Iterable[str]) -> bool:
    return any(path == folder or path.startswith(folder + "/") for folder in folders)


class WholeJobTest(WindowTest):
    def setUp(self):
        super().setUp()
        self.volume = self.scratch / "volume"
        tool = REPOSITORY / "tools" / "make-sample-volume"
        subprocess.run([sys.executable, "-B", tool, self.volume], check=True, capture_output=True)
        self.prompt = WaitingPrompt(PROGRAM, self.scratch / "program")
        self.before = everything(self.volume)

    def open(self):
        self.window = self.run_program(self.prompt.program, "--root", str(self.volume), "--appearance", "light")
        return self.window

    def on_disk(self, path: str) -> pathlib.Path:
        return self.volume / path.lstrip("/")

    def is_there(self, path: str) -> bool:
        return os.path.lexists(self.on_disk(path))

    def saved_paths(self) -> list[str]:
        return [entry["url"] for entry in json.loads(self.on_disk(CATALOG).read_text(encoding="utf-8"))]

    def saves(self, name: str) -> bool:
        return any(url.endswith(f"/{name}.app/") or url.endswith(f"/{name}.app") for url in self.saved_paths())

    def names(self, role: str) -> list[str]:
        return [thing.name for thing in self.window.things(role)]

    def toggle(self, path: str):
        return next(toggle for toggle in self.window.things("check box") if toggle.name.endswith(f", {path}"))

    def review(self, application: str) -> list:
        """Opens the sheet, and gives the paths that it lists. All are ticked."""
        self.window.select(application)
        self.window.press("push button", "Review Uninstall…")
        self.window.thing("dialog", f"Uninstall {application}?")
        self.window.thing("push button", "Deselect All")
        toggles = [thing for thing in self.window.root.below() if thing.role == "check box"]
        self.assertTrue(all(toggle.is_checked for toggle in toggles))
        return [toggle.name.split(", ", 1)[1] for toggle in toggles]

    def acknowledge(self, message: str):
        self.window.thing("label", "Uninstall Result")
        self.assertIn(message, self.names("label"))
        self.window.press("push button", "Done")
        self.window.wait_until_gone("push button", "Move Selected to Trash")

    def is_saving(self) -> bool:
        """A list that is being saved stands beside the one that it replaces."""
        return any(self.on_disk(CATALOG).parent.glob(".orvane-save-*"))

    def assert_only_these_are_gone(self, gone: Iterable[str]):
        """Nothing but these, with all that is in them, has left its place; nothing else has changed or come."""
        if self.window.process.poll() is None:
            self.window.wait_for(lambda: not self.is_saving(), "end of the save")
        after = everything(self.volume)
        own = ["/" + CATALOG, f"/{TRASH}"]
        for path, what in self.before.items():
            if is_within(path, gone):
                self.assertNotIn(path, after)
            elif not is_within(path, own):
                self.assertEqual(after.get(path), what, path)
        come = [path for path in after if path not in self.before and not is_within(path, own)]
        self.assertEqual(come, [])

    @needs_administrator
    def test_removes_what_was_asked_and_nothing_else(self):
        running = subprocess.Popen([self.on_disk("/Applications/Amberfold.app/Contents/MacOS/Amberfold")])
        self.addCleanup(running.kill)
        self.assertTrue(self.saves("Lanternfish"))
        window = self.open()

        # The saved list is there at once; the entry whose bundle has gone leaves by itself.
        window.row("Amberfold")
        window.wait_for(lambda: not window.find_row("Lanternfish"), "end of the missing entry's row")
        window.wait_for(lambda: not self.saves("Lanternfish"), "end of the missing entry in the saved list")

        # Searching.
        window.thing("text", "Search applications").take_keyboard()
        window.type_text("fern")
        window.wait_for(lambda: "1 applications" in self.names("label"), "one application that matches")
        window.type_text("zzz")
        window.thing("heading", "No Results for “fernzzz”")
        self.assertIn("Check the spelling or try a new search.", self.names("label"))
        window.type_keys("Escape")
        window.wait_for(lambda: "38 applications" in self.names("label"), "the full list")

        # What the system protects.
        window.select("Countinghouse")
        window.wait_for(lambda: window.find("alert", "Protected by macOS"), "notice")
        self.assertTrue(window.thing("push button", "Review Uninstall…").is_dimmed)
        window.thing("push button", "Review Uninstall…").press()
        self.assertFalse(window.things("dialog"))

        # To the Trash, but for two items; one of the others needs an administrator.
        listed = self.review("Amberfold")
        self.assertEqual(len(listed), 14)
        self.assertIn("Related Items: 14", self.names("label"))
        self.assertIn("Active Services: 1", self.names("label"))
        kept = [AMBERFOLD["Preferences"], AMBERFOLD["Logs"]]
        for path in kept:
            self.toggle(path).press()
        window.thing("push button", "Select All")
        self.assertIsNone(running.poll())
        window.press("push button", "Move Selected to Trash")
        window.thing("label", "Moving to Trash…")
        self.assertTrue(window.thing("push button", "Cancel").is_dimmed)
        self.assertTrue(self.is_there(AMBERFOLD["Daemon"]))
        self.prompt.answer()
        self.acknowledge("Moved 12 item(s) to Trash.")

        # The list notices: the row says so, and is gone some seconds later, in the file, too.
        window.thing("list item", "Amberfold, Not installed")
        window.wait_for(lambda: not window.find_row("Amberfold"), "end of the removed application's row")
        window.wait_for(lambda: not self.saves("Amberfold"), "end of the removed application in the saved list")

        moved = [path for path in listed if path not in kept]
        self.assert_only_these_are_gone(moved)
        self.assertLess(running.wait(timeout=30), 0, "the running application was asked to quit")
        after = everything(self.volume)
        in_trash = {after[f"/{TRASH}/{name}"][0] for name in os.listdir(self.on_disk(TRASH))}
        self.assertEqual({self.before[path][0] for path in moved} - in_trash, set())

        # For good, after a question; first with second thoughts.
        listed = self.review("Fernglass")
        self.assertEqual(sorted(listed), sorted(FERNGLASS))
        window.press("push button", "Delete Permanently")
        window.thing("label", "Delete Selected Items Permanently?")
        self.assertIn(
            "This will immediately delete 3 selected item(s). They will not be moved to Trash and cannot be recovered.",
            self.names("label"),
        )
        window.wait_for_keyboard("push button", "Cancel")
        window.type_keys("Escape")
        window.wait_until_gone("label", "Delete Selected Items Permanently?")
        self.assert_only_these_are_gone(moved)
        window.press("push button", "Delete Permanently")
        window.thing("label", "Delete Selected Items Permanently?")
        trash = sorted(os.listdir(self.on_disk(TRASH)))
        window.things("push button", "Delete Permanently")[-1].press()
        self.acknowledge("Deleted 3 item(s) permanently.")
        self.assert_only_these_are_gone(moved + FERNGLASS)
        self.assertEqual(sorted(os.listdir(self.on_disk(TRASH))), trash)

        # About, and the end.
        window.press("push button", "About Orvane")
        window.press("push button", "Copy email address")
        window.thing("push button", "Email address copied")
        window.thing("push button", "Copy email address")
        window.type_keys("Escape", title="About Orvane")
        window.wait_until_gone("frame", "About Orvane")
        window.type_keys("ctrl+q")
        self.assertEqual(window.process.wait(timeout=60), 0)

    def test_removes_from_the_keyboard_alone(self):
        window = self.open()
        window.row("Fernglass")
        window.type_keys("ctrl+f")
        window.type_text("fernglass")
        window.wait_for(lambda: "1 applications" in self.names("label"), "one application that matches")
        window.type_keys("Down", "Down")
        window.thing("heading", "Fernglass")
        for _ in range(30):
            if window.thing("push button", "Review Uninstall…").has_keyboard:
                break
            window.type_keys("Tab")
        window.type_keys("space")
        window.thing("push button", "Move Selected to Trash")
        window.thing("push button", "Deselect All")
        window.wait_for_keyboard("check box", "Application, /Applications/Fernglass.app")
        window.type_keys("Return")
        window.thing("label", "Moved 3 item(s) to Trash.")
        window.wait_for_keyboard("push button", "Done")
        window.type_keys("Return")
        window.wait_until_gone("push button", "Move Selected to Trash")
        self.assert_only_these_are_gone(FERNGLASS)
        self.assertEqual(len(os.listdir(self.on_disk(TRASH))), 3)

    def test_a_held_return_opens_the_review_and_removes_nothing(self):
        window = self.open()
        window.select("Fernglass")
        window.thing("push button", "Review Uninstall…").take_keyboard()
        window.wait_for_keyboard("push button", "Review Uninstall…")
        window.hold_key("Return", 1.5)
        window.thing("dialog", "Uninstall Fernglass?")
        self.assertTrue(window.thing("push button", "Move Selected to Trash").is_showing)
        self.assertFalse(window.find("label", "Uninstall Result"))
        self.assert_only_these_are_gone([])

    @needs_administrator
    def test_a_window_closed_while_a_removal_runs_loses_nothing(self):
        window = self.open()
        listed = self.review("Cartovane")
        self.assertEqual(sorted(listed), sorted(CARTOVANE))
        window.press("push button", "Move Selected to Trash")
        window.thing("label", "Moving to Trash…")
        window.type_keys("ctrl+q")
        self.prompt.answer()
        self.assertEqual(window.process.wait(timeout=60), 0)
        self.assert_only_these_are_gone(CARTOVANE)
        self.assertEqual(len(os.listdir(self.on_disk(TRASH))), len(CARTOVANE))


if __name__ == "__main__":
    main()
