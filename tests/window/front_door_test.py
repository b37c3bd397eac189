"""The window without options, on a machine on which Mac disks are mounted: none, one, several, and what is dropped."""

import pathlib
import shlex

from window_case import PICTURES, PROGRAM, WindowTest, main, needs_mounts


class FrontDoorTest(WindowTest):
    def open(self, *mounts: str, appearance: str = "light"):
        """The program where these commands have mounted something, which nobody else sees."""
        command = "; ".join(["set -e", *mounts, f"exec {shlex.quote(str(PROGRAM))} --appearance {appearance}"])
        unshare = pathlib.Path("/usr/bin/unshare")
        self.window = self.run_program(unshare, "--mount", "--propagation", "private", "sh", "-c", command)
        return self.window

    def picture(self, name: str):
        if PICTURES:
            self.window.take_picture(PICTURES / f"{name}.png")

    @staticmethod
    def bound(disk: pathlib.Path, options: str = "") -> str:
        place = shlex.quote(str(disk))
        again = f"; mount -o remount,bind,{options} {place}" if options else ""
        return f"mount --bind {place} {place}{again}"

    def texts(self) -> list[str]:
        return [thing.name for thing in self.window.things("label")]

    @needs_mounts
    def test_the_only_disk_is_opened_at_once(self):
        self.open(self.bound(self.make_disk("Macintosh HD", "sample")))
        self.window.row("Amberfold")
        self.assertFalse(self.window.find("heading", "Open a Mac Disk"))
        self.assertFalse(self.window.things("alert"))

    @needs_mounts
    def test_several_homes_are_offered_by_name_and_opened_from_the_keyboard(self):
        disk = self.make_disk("Macintosh HD", "anna", "ben")
        window = self.open(self.bound(disk))
        window.thing("heading", "Open a Mac Disk")
        rows = [row.name for row in window.thing("list", "Mac disks").children()]
        self.assertEqual(len(rows), 2)
        self.assertTrue(rows[0].startswith("anna on Macintosh HD, "), rows)
        self.assertIn(str(disk), rows[0])
        self.assertTrue(rows[1].startswith("ben on Macintosh HD, "), rows)
        window.wait_for(lambda: window.thing("list", "Mac disks").children()[0].has_keyboard, "keyboard at the first row")
        self.picture("disks-light")
        window.type_keys("Down", "Return")
        window.row("Amberfold")
        saved = disk / "Users/ben/Library/Application Support/Orvane/applications.json"
        # Rows are shown before they are saved.
        window.wait_for(saved.exists, "saved list")
        self.assertFalse((disk / "Users/anna/Library/Application Support").exists())

    @needs_mounts
    def test_another_disk_can_be_opened_and_the_first_one_again(self):
        one, two = self.make_disk("One", "anna"), self.make_disk("Two", "ben")
        window = self.open(self.bound(one), self.bound(two, "ro"), appearance="dark")
        window.thing("heading", "Open a Mac Disk")
        self.picture("disks-dark")
        window.thing("list", "Mac disks").children()[1].press()
        window.row("Amberfold")
        notice = window.things("alert")[0].name
        self.assertIn("read-only", notice)
        self.picture("read-only-dark")
        window.type_keys("ctrl+o")
        window.thing("heading", "Open a Mac Disk")
        window.thing("push button", "Cancel").press()
        window.row("Amberfold")
        self.assertEqual(window.things("alert")[0].name, notice)
        window.type_keys("ctrl+o")
        window.thing("heading", "Open a Mac Disk")
        window.thing("list", "Mac disks").children()[0].press()
        window.row("Amberfold")
        window.wait_for(lambda: not window.things("alert"), "end of the notice")
        window.type_keys("ctrl+q")
        self.assertEqual(window.process.wait(timeout=60), 0)

    @needs_mounts
    def test_without_a_disk_a_folder_can_be_chosen(self):
        window = self.open()
        window.thing("heading", "Open a Mac Disk")
        window.wait_for(lambda: any("No Mac disk is mounted" in text for text in self.texts()), "explanation")
        window.wait_for_keyboard("push button", "Choose Folder…")
        self.picture("no-disks-light")
        window.type_keys("Return")
        window.wait_for(
            lambda: window.find("dialog", "Choose a Mac Disk") or len(window.root.children()) > 1 or window.things("dialog"),
            "dialog for a folder",
        )
        self.picture("chooser-light")


if __name__ == "__main__":
    main()
