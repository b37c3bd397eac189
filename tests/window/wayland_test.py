"""The real window on a Wayland desktop, beside the one on an X11 display: what is within the frame is the same, pixel by pixel."""

from window_case import PICTURES, PROGRAM, WindowTest, main, screen
from window.screen import Display, WaylandDisplay

wayland = WaylandDisplay()


class WaylandTest(WindowTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.enterClassContext(wayland)
        for display in (screen, wayland):
            display.take_pointer_away()

    def open(self, on: Display):
        # Each has a disk of its own, which looks like the other one's.
        disk = self.make_disk(f"disk{on.display}", "sample")
        (disk / "Users/sample/Library/Caches/org.example.amberfold").mkdir(parents=True)
        root = ["--root", str(disk), "--home", "/Users/sample"]
        window = self.run_program(PROGRAM, *root, "--appearance", self.appearance, on=on)
        window.thing("label", "Related Items: 2")
        return window

    def expect_looks_as_on_x11(self, appearance: str):
        # What fades in may stay lighter by one of 255 shades, according to when its last step came.
        self.set_desktop("gtk-enable-animations=0")
        self.appearance = appearance
        self.on_x11 = self.open(screen)
        self.on_wayland = self.open(wayland)
        both = (self.on_x11, self.on_wayland)

        self.expect_same("main")
        for window in both:
            window.press("push button", "Review Uninstall…")
            window.wait_for_keyboard("check box")
        self.expect_same("review")
        for window in both:
            window.press("push button", "Delete Permanently")
            window.wait_for_keyboard("push button", "Cancel")
        self.expect_same("confirm")
        for window in both:
            window.things("push button", "Cancel")[-1].press()
            window.wait_until_gone("label", "Delete Selected Items Permanently?")
            window.press("push button", "Cancel")
            window.wait_until_gone("push button", "Move Selected to Trash")
            window.press("push button", "About Orvane")
            window.thing("push button", "Copy email address")
        self.expect_same("about", title="About Orvane")

    def expect_same(self, state: str, title: str = "Orvane"):
        # Wayland gives the keyboard to the newest window.
        self.on_x11.give_keyboard(title)
        name = f"{state}-{self.appearance}"
        expected = seen = None

        def is_same() -> bool:
            nonlocal expected, seen
            expected, seen = self.on_x11.look(title), wayland.look()
            return seen.shows(expected)

        try:
            self.on_wayland.wait_for(is_same, f"{name} as on X11 (the pictures are where ORVANE_PICTURES says)")
        finally:
            if PICTURES and seen:
                expected.save(PICTURES / f"{name}-x11.png")
                seen.save(PICTURES / f"{name}-wayland.png")

    def test_looks_as_on_x11_in_light(self):
        self.expect_looks_as_on_x11("light")

    def test_looks_as_on_x11_in_dark(self):
        self.expect_looks_as_on_x11("dark")


if __name__ == "__main__":
    main()
