"""Does jobs at random in a real window, as a screen reader's user does them (search, select, look at the review, tick, remove
for good or to the Trash, rescan, resize, quit in the middle), and then reads the disk. What is gone must be what was ticked
whenever it was said to go, and nothing else may have changed; and the program may have nothing to say on standard error.
Option "races": the same program under the thread sanitizer, which has much to say where two threads race.
"""

import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
from collections.abc import Callable

import harness

sys.path[:0] = [str(harness.REPOSITORY / "tools"), str(harness.REPOSITORY / "tests" / "window")]
from whole_job_test import CATALOG, HOME, TRASH, everything, is_within  # noqa: E402
from window.screen import Screen, enter_session  # noqa: E402

ACTIONS = 8
# In seconds. What has been asked to quit and has not by then hangs.
LONGEST_END = 60
# What the thread sanitizer is for.
RACE = """
#include <thread>
int count = 0;
void add() { for (int i = 0; i < 1000; ++i) ++count; }
int main() { std::thread other(add); add(); other.join(); }
"""
# Whose removal needs no administrator, who would have to be waited for.
APPLICATIONS = ["Fernglass", "Amberfold", "Cartovane"]


class Job:
    """One volume, and what a person has done to it."""

    def __init__(self, screen: Screen, chance: random.Random, scratch: pathlib.Path, orvane: pathlib.Path):
        self.screen, self.chance, self.scratch = screen, chance, scratch
        self.volume = scratch / "volume"
        tool = harness.REPOSITORY / "tools" / "make-sample-volume"
        subprocess.run([sys.executable, "-B", tool, self.volume], check=True, capture_output=True)
        self.said = scratch / "said"
        self.program = scratch / "program"
        # What it says is kept, and it is the process that was started.
        self.program.write_text(f'#!/bin/sh\nexec "{orvane}" "$@" 2>>"{self.said}"\n')
        self.program.chmod(0o755)
        self.before = everything(self.volume)
        self.gone: set[str] = set()
        self.done: list[str] = []

    def do(self) -> None:
        from window.program import Program

        actions: list[Callable] = [self.search, self.select, self.resize, self.rescan, self.look, self.remove, self.remove]
        remaining = ACTIONS
        while remaining > 0:
            with Program(self.screen, self.program, "--root", str(self.volume), "--home", f"/{HOME}") as self.window:
                self.window.row("Fernglass" if self.is_there("/Applications/Fernglass.app") else "Countinghouse")
                # The display has nobody else who gives a window the keyboard.
                self.window.type_keys("Shift_L")
                while remaining > 0:
                    remaining -= 1
                    action = self.chance.choice([*actions, self.quit] if remaining else [self.quit])
                    self.done.append(action.__name__)
                    action()
                    if self.window.process.poll() is not None:
                        break

    def is_there(self, path: str) -> bool:
        return os.path.lexists(self.volume / path.lstrip("/"))

    def application(self) -> str | None:
        left = [name for name in APPLICATIONS if self.is_there(f"/Applications/{name}.app")]
        return self.chance.choice(left) if left else None

    def search(self) -> None:
        self.window.thing("text", "Search applications").take_keyboard()
        self.window.type_text(self.chance.choice(["fern", "a", "zzz", "org.example", "e e"]))
        if self.chance.random() < 0.5:
            self.window.wait_for(lambda: self.window.things("label"), "something")
        self.window.type_keys("Escape")
        self.window.wait_for(lambda: self.window.find_row("Countinghouse"), "the full list")

    def select(self) -> None:
        self.window.select(self.application() or "Countinghouse")

    def resize(self) -> None:
        number = self.window.window("Orvane")
        # Not below what it allows: nobody keeps it from that here.
        size = [str(self.chance.randrange(*each)) for each in [(980, 1600), (680, 1000)]]
        self.window.screen.xdotool("windowsize", "--sync", number, *size)

    def rescan(self) -> None:
        self.window.press("push button", "Rescan applications")

    def quit(self) -> None:
        self.window.type_keys("ctrl+q")
        try:
            status = self.window.process.wait(timeout=LONGEST_END)
        except subprocess.TimeoutExpired:
            raise AssertionError("it does not quit; there is:\n" + "\n".join(self.window.outline())) from None
        if status != 0:
            raise AssertionError(f"it ended with {status}")

    def review(self, application: str) -> list:
        self.window.select(application)
        self.window.press("push button", "Review Uninstall…")
        self.window.thing("dialog", f"Uninstall {application}?")
        self.window.thing("push button", "Deselect All")
        return [thing for thing in self.window.root.below() if thing.role == "check box"]

    def look(self) -> None:
        if application := self.application():
            self.tick(self.review(application))
            self.window.press("push button", "Cancel")
            self.window.wait_until_gone("push button", "Move Selected to Trash")

    def tick(self, toggles: list) -> list[str]:
        """Unticks some, and gives the paths of those that are left."""
        for toggle in toggles:
            if self.chance.random() < 0.3:
                toggle.press()
        left = [toggle.name.split(", ", 1)[1] for toggle in toggles if toggle.is_checked]
        return left

    def remove(self) -> None:
        application = self.application()
        if application is None:
            return
        ticked = self.tick(self.review(application))
        if not ticked:
            self.window.press("push button", "Cancel")
            self.window.wait_until_gone("push button", "Move Selected to Trash")
            return
        if self.chance.random() < 0.5:
            self.window.press("push button", "Delete Permanently")
            self.window.thing("label", "Delete Selected Items Permanently?")
            self.window.wait_for_keyboard("push button", "Cancel")
            self.window.things("push button", "Delete Permanently")[-1].press()
        else:
            self.window.press("push button", "Move Selected to Trash")
        # From here on there is no way back, even for who quits.
        self.gone.update(ticked)
        if self.chance.random() < 0.2:
            self.done.append("quit")
            return self.quit()
        self.window.thing("label", "Uninstall Result")
        self.window.press("push button", "Done")
        self.window.wait_until_gone("push button", "Move Selected to Trash")

    def differences(self) -> list[str]:
        after = everything(self.volume)
        own = ["/" + CATALOG, f"/{TRASH}"]
        found = [f"{path} is still there" for path in self.before if is_within(path, self.gone) and path in after]
        found += [f"{path} has changed" for path, what in self.before.items()
                  if not is_within(path, [*self.gone, *own]) and after.get(path) != what]  # fmt: skip
        found += [f"{path} has come" for path in after if path not in self.before and not is_within(path, own)]
        if self.said.exists() and (said := self.said.read_text(errors="replace").strip()):
            found.append(f"it said: {said}")
        return found


def enter_memory() -> None:
    """Starts this program anew with its folder for temporary files in memory, unless it is there already: a job's volume
    is 60 MB, which on a busy disk take longer to write than the job does."""
    if "ORVANE_IN_MEMORY" in os.environ:
        return
    script = 'mount -t tmpfs tmpfs "$0" && exec "$@"'
    own = ["/bin/sh", "-c", script, tempfile.gettempdir(), sys.executable, "-B", *sys.argv]
    os.execvpe("unshare", ["unshare", "--mount", "--", *own], dict(os.environ, ORVANE_IN_MEMORY="yes"))


def under_thread_sanitizer() -> pathlib.Path:
    # And what it starts as root, which this is.
    programs = ["orvane", "orvane-remove-as-root", "orvane-root-tool"]
    subprocess.run([harness.REPOSITORY / "scripts" / "build", "tsan", *programs], check=True, stdout=subprocess.DEVNULL)
    # Qt is built without it: see tests/Views/SanitizersOfQt.cpp.
    os.environ["TSAN_OPTIONS"] = "ignore_noninstrumented_modules=1"
    return harness.REPOSITORY / "build" / "tsan" / "bin" / "orvane"


def race(job: Job) -> None:
    """Threads count without a lock."""
    program = job.scratch / "race"
    subprocess.run(["c++", "-fsanitize=thread", "-x", "c++", "-o", program, "-"], input=RACE, text=True, check=True)
    with job.said.open("a") as said:
        subprocess.run([program], stderr=said, check=False)


def remove_more(job: Job) -> None:
    """Something goes that nobody has ticked."""
    shutil.rmtree(job.volume / "Applications" / "Countinghouse.app", ignore_errors=True)
    shutil.rmtree(job.volume / HOME / "Library" / "Logs", ignore_errors=True)


def run(task: harness.Task) -> harness.Outcome:
    enter_memory()
    enter_session()
    is_about_races = task.options == ["races"]
    orvane = under_thread_sanitizer() if is_about_races else harness.PROGRAMS / "orvane"
    mistake = race if is_about_races else remove_more
    chance = task.random()
    trials, failures, removals = 0, [], 0
    with Screen() as screen:
        while trials < task.rounds and not (task.is_wrong and failures):
            with tempfile.TemporaryDirectory(prefix="orvane-random-") as scratch:
                job = Job(screen, chance, pathlib.Path(scratch), orvane)
                try:
                    job.do()
                    if task.is_wrong:
                        mistake(job)
                    found = job.differences()
                except AssertionError as error:
                    found = [str(error)]
                print(f"job {trials + 1}: {', '.join([*job.done, *found])}", flush=True)
                if found:
                    failures.append(f"after {', '.join(job.done)}: {found[0].splitlines()[0]}")
                removals += bool(job.gone)
            trials += 1
    return harness.Outcome(trials, len(failures), "jobs", note="; ".join([f"{removals} with removals", *failures[:2]]))


if __name__ == "__main__":
    harness.main(run)
