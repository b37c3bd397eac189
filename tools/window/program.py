"""The running window as a screen reader has it: things with a role and a name that can be pressed and read."""

from __future__ import annotations

import subprocess
import time
from collections.abc import Callable, Iterator
from pathlib import Path

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from window.picture import Picture  # noqa: E402
from window.screen import DEADLINE, Display  # noqa: E402

PRESS = ("press", "toggle", "click")
# Otherwise what takes longer than 0.8 s to answer, as everything may where the machine is busy, does not answer.
Atspi.set_timeout(round(DEADLINE * 1000), round(DEADLINE * 1000))


class NotThere(AssertionError):
    """What was waited for did not come."""


class Thing:
    """Something on the screen. It may go at any time; then what is asked of it is false or empty."""

    def __init__(self, accessible: Atspi.Accessible):
        self._accessible = accessible

    def _ask(self, question: Callable[[Atspi.Accessible], object], otherwise: object) -> object:
        try:
            return question(self._accessible)
        except GLib.Error:
            return otherwise

    @property
    def role(self) -> str:
        return str(self._ask(lambda it: it.get_role_name(), ""))

    @property
    def name(self) -> str:
        return str(self._ask(lambda it: it.get_name() or "", ""))

    @property
    def description(self) -> str:
        return str(self._ask(lambda it: it.get_description() or "", ""))

    def has(self, state: Atspi.StateType) -> bool:
        return bool(self._ask(lambda it: it.get_state_set().contains(state), False))

    @property
    def is_showing(self) -> bool:
        return self.has(Atspi.StateType.SHOWING)

    @property
    def is_checked(self) -> bool:
        return self.has(Atspi.StateType.CHECKED)

    @property
    def is_selected(self) -> bool:
        return self.has(Atspi.StateType.SELECTED)

    @property
    def has_keyboard(self) -> bool:
        return self.has(Atspi.StateType.FOCUSED)

    @property
    def is_dimmed(self) -> bool:
        return "dimmed" in self.description

    def children(self) -> list[Thing]:
        count = self._ask(lambda it: it.get_child_count(), 0)
        below = [self._ask(lambda it, i=i: it.get_child_at_index(i), None) for i in range(count)]
        return [Thing(child) for child in below if child]

    def below(self) -> Iterator[Thing]:
        for child in self.children():
            yield child
            yield from child.below()

    def press(self) -> None:
        for i in range(self._accessible.get_n_actions()):
            if self._accessible.get_action_name(i).lower() in PRESS:
                self._accessible.do_action(i)
                return
        raise NotThere(f"{self} cannot be pressed")

    def take_keyboard(self) -> None:
        for i in range(self._accessible.get_n_actions()):
            if self._accessible.get_action_name(i) == "SetFocus":
                self._accessible.do_action(i)

    def __str__(self) -> str:
        return f"{self.role} “{self.name}”"


class Program:
    """The program, running on a screen. Leaving the `with` block ends it."""

    def __init__(self, screen: Display, program: Path, *arguments: str):
        self.screen = screen
        self.root: Thing | None = None
        self._command = [str(program), *arguments]

    def __enter__(self) -> Program:
        self.process = subprocess.Popen(self._command, env=self.screen.environment())
        try:
            self.root = Thing(self.wait_for(self._find_accessible, "program on the accessibility bus"))
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_: object) -> None:
        self.process.terminate()
        self.process.wait()

    def _find_accessible(self) -> Atspi.Accessible | None:
        desktop = Atspi.get_desktop(0)
        desktop.set_cache_mask(Atspi.Cache.NONE)
        for i in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(i)
            if child and child.get_process_id() == self.process.pid:
                # Without a main loop nothing would tell the cache of changes.
                child.set_cache_mask(Atspi.Cache.NONE)
                return child
        return None

    def wait_for(self, question: Callable[[], object], what: str, seconds: float = DEADLINE) -> object:
        """Asks until the answer is true, and gives it."""
        deadline = time.monotonic() + seconds
        while True:
            try:
                answer = question()
            except GLib.Error:
                answer = None
            if answer:
                return answer
            if self.process.poll() is not None:
                raise NotThere(f"the program has ended with {self.process.returncode} before there was {what}")
            if time.monotonic() > deadline:
                raise NotThere(f"there is no {what}; there is:\n" + "\n".join(self.outline()))
            time.sleep(0.05)

    def things(self, role: str, name: str | None = None) -> list[Thing]:
        """What shows, from first to last."""
        return [
            thing
            for thing in self.root.below()
            if thing.role == role and (name is None or thing.name == name) and thing.is_showing
        ]

    def row(self, application: str) -> Thing:
        """Waits for an application's row, which may be out of sight."""
        return self.wait_for(lambda: self.find_row(application), f"row of {application}")

    def find_row(self, application: str) -> Thing | None:
        applications = next(iter(self.things("list", "Applications")), None)
        rows = applications.children() if applications else []
        return next((row for row in rows if row.name.startswith(application + ", ")), None)

    def select(self, application: str, seconds: float = DEADLINE) -> None:
        """Presses an application's row, and waits for its plan."""

        def press_and_look() -> Thing | None:
            row = self.find_row(application)
            if row and not row.is_selected:
                row.press()
            return self.find("heading", application)

        self.wait_for(press_and_look, f"pane of {application}", seconds)
        self.wait_for(lambda: not self.find("label", "Related Items: …"), f"plan of {application}")

    def find(self, role: str, name: str) -> Thing | None:
        return next(iter(self.things(role, name)), None)

    def thing(self, role: str, name: str) -> Thing:
        """Waits until it shows."""
        return self.wait_for(lambda: self.find(role, name), f"{role} “{name}”")

    def wait_for_keyboard(self, role: str, name: str | None = None) -> None:
        """Waits until the keyboard is with it. A sheet or an alert takes no key before."""
        self.wait_for(lambda: any(it.has_keyboard for it in self.things(role, name)), f"keyboard at {role} “{name}”")

    def wait_until_gone(self, role: str, name: str) -> None:
        self.wait_for(lambda: not self.find(role, name), f"end of {role} “{name}”")

    def press(self, role: str, name: str) -> None:
        """Waits until it shows and is not dimmed, and presses it."""
        self.wait_for(lambda: not self.thing(role, name).is_dimmed, f"{role} “{name}” that can be pressed")
        self.thing(role, name).press()

    def window(self, title: str) -> str:
        """The X11 number of the window with exactly this title."""
        found = self.wait_for(
            lambda: self.screen.xdotool("search", "--onlyvisible", "--name", f"^{title}$").split(), f"window “{title}”"
        )
        return found[-1]

    def give_keyboard(self, title: str = "Orvane") -> None:
        self.screen.xdotool("windowfocus", "--sync", self.window(title))

    def type_keys(self, *keys: str, title: str = "Orvane") -> None:
        """Presses keys, named as X11 names them, in a window that gets the keyboard for it."""
        self.give_keyboard(title)
        self.screen.xdotool("key", "--delay", "30", *keys)

    def hold_key(self, key: str, seconds: float, title: str = "Orvane") -> None:
        """Presses a key and lets it go after a while, in which the display repeats it."""
        self.give_keyboard(title)
        self.screen.xdotool("keydown", key, "sleep", str(seconds), "keyup", key)

    def type_text(self, text: str, title: str = "Orvane") -> None:
        self.give_keyboard(title)
        self.screen.xdotool("type", "--delay", "30", text)

    def take_picture(self, path: Path, title: str = "Orvane") -> None:
        self.screen.take_pointer_away()
        self.look_when_still(title).save(path)

    def look(self, title: str = "Orvane") -> Picture:
        """What is seen of a window now."""
        return self.screen.look(self.window(title))

    def look_when_still(self, title: str = "Orvane") -> Picture:
        """Waits until two looks at the window show the same, or there have been so many that something turns in it."""
        looks = [self.look(title)]
        for _ in range(20):
            looks.append(self.look(title))
            if looks[-1] == looks[-2]:
                break
        return looks[-1]

    def outline(self) -> list[str]:
        return [f"  {thing}" for thing in self.root.below() if thing.is_showing] if self.root else ["  nothing"]
