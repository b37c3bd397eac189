"""What scripts/prove tries to break. A new promise is a line here and a harness beside this file: `Name.cpp`, which
OrvaneProof runs by that name (Harness.h), or `name.py` (harness.py)."""

import dataclasses
import enum


class User(enum.Enum):
    ANY = "whoever calls"
    NOBODY = "a user without rights"
    ROOT = "root"


class Mounts(enum.Enum):
    """Where a harness may write."""

    PRIVATE = "only into a folder for temporary files that is in memory"
    MACHINE = "wherever its user may"


@dataclasses.dataclass(frozen=True)
class Promise:
    name: str
    text: str
    # The harness, and what it is told besides its rounds and its seed.
    harness: str
    # How often it is tried: as CI does it, or 0 where it takes too long for that; in full; and at most on what does not
    # keep the promise.
    quick: int
    full: int
    wrong: int
    user: User = User.ANY
    mounts: Mounts = Mounts.PRIVATE


PROMISES = [
    Promise("links-delete", "a folder swapped for a link leads a deletion nowhere, as the user",
            "SwappedLinks delete", 5_000, 50_000, 1_000, User.NOBODY),
    Promise("links-trash", "a folder swapped for a link leads a move to the Trash nowhere, as the user",
            "SwappedLinks trash", 5_000, 50_000, 1_000, User.NOBODY),
    Promise("links-delete-root", "a folder swapped for a link leads the administrator's deletion nowhere",
            "SwappedLinks delete root", 5_000, 50_000, 1_000, User.ROOT),
    Promise("links-trash-root", "a folder swapped for a link leads the administrator's move to the Trash nowhere",
            "SwappedLinks trash root", 5_000, 50_000, 1_000, User.ROOT),
    Promise("hostile-orders", "no order makes the part that runs as root change more than a plan can hold",
            "HostileOrders", 2_000, 100_000, 1_000, User.ROOT),
    Promise("mac-script", "any batch comes to the same through the Mac's script and through the text that is built here",
            "AdministratorScript", 1_000, 10_000, 100),
    Promise("same-names", "of items with one name that go to the Trash at once, by threads or programs, none is lost",
            "SameNames", 10_000, 100_000, 10_000),
    Promise("killed-saves", "a catalog whose save is killed is the old one or the new one",
            "KilledSaves", 2_000, 20_000, 2_000),
    Promise("power-cuts", "a catalog that was saved is there after a power cut",
            "PowerCuts", 50, 1_000, 50, User.ROOT),
    # Every point, however many rounds.
    Promise("failing-saves", "every call of a save fails in turn: the old state or the new, no false success",
            "FailingCalls save", 1, 1, 1, User.NOBODY),
    Promise("failing-trash", "every call of a move to the Trash fails in turn: the old state or the new, no false success",
            "FailingCalls trash", 1, 1, 1, User.NOBODY),
    Promise("failing-deletions", "every call of a deletion fails in turn: nothing beyond it is lost, no false success",
            "FailingCalls delete", 1, 1, 1, User.NOBODY),
    # So many rounds at most: they end when the bound is kept.
    Promise("deep-levels", "100,000 levels, with 64 descriptors and a stack of 256 KiB: scanned, trashed, deleted",
            "LargeTrees levels", 10, 10, 1),
    Promise("deep-names", "60 levels of names of 255 bytes, with 64 descriptors and a stack of 256 KiB: the same",
            "LargeTrees names", 50, 50, 1),
    Promise("wide-folder", "400,000 entries in one folder: deleted",
            "LargeTrees entries", 10, 10, 1),
    Promise("obstacles", "disks, links and what is another's or fixed in a tree of the user's: nothing beyond it is lost",
            "Obstacles", 500, 5_000, 100, User.ROOT),
    # In full, 200 million executions in all.
    *[
        Promise(f"fuzz-{target}", text, f"fuzz.py {target}", quick, full, 1_000_000, mounts=Mounts.MACHINE)
        for target, text, quick, full in [
            ("xml", "any bytes are an XML property list that can be written again, or none", 200_000, 20_000_000),
            ("binary", "any bytes are a binary property list, told within its limits, or none", 300_000, 30_000_000),
            ("old-style", "any bytes are a property list in old style that can be written again, or none", 200_000, 30_000_000),
            ("catalog", "any bytes are a catalog that comes back as it was, or none", 200_000, 50_000_000),
            ("url", "any path is kept by its file URL, byte for byte", 60_000, 5_000_000),
            ("quoting", "any name is one word to a shell, and that name", 300_000, 30_000_000),
            ("order", "any bytes are an order in its one form, of which all is shown, or none", 300_000, 35_000_000),
        ]
    ],
    Promise("lists-worst", "a property list of 16 MiB takes at most 100 ms and 64 MB, whatever it holds",
            "WorstPropertyLists", 15, 20, 1),
    Promise("lists-python", "a valid property list is read as Python reads it",
            "ListsOfPython", 5_000, 50_000, 1_000),
    Promise("reused-numbers", "no process is asked to quit for having the number of one that has ended",
            "ReusedNumbers", 100, 500, 100, User.ROOT),
    Promise("hostile-names", "names of any bytes are listed, planned, trashed and deleted, by shells too, and nothing else is",
            "HostileNames", 20_000, 100_000, 1_000),
    Promise("hostile-volume", "links on a volume lead to no file of the machine, as its system calls show",
            "hostile_volume.py", 100, 2_000, 10),
    # Once, however many rounds.
    Promise("branches", "the tests take nine of ten branches of what deletes, trashes, saves, reads lists and has root's rights",
            "branches.py", 1, 1, 1, mounts=Mounts.MACHINE),
    Promise("random-window", "jobs at random in the window remove what was ticked, and change nothing else",
            "random_window.py", 5, 200, 1, User.ROOT, Mounts.MACHINE),
    # Ten minutes of them.
    Promise("random-races", "jobs at random in the window lead to no data race that the thread sanitizer sees",
            "random_window.py races", 2, 40, 1, User.ROOT, Mounts.MACHINE),
    # In full, the places that are tried are always the same.
    Promise("mutants", "a line of the program that is changed is noticed by a test, or nobody could tell it",
            "mutants.py", 20, 640, 3, User.ROOT, Mounts.MACHINE),
    # Rounds are tests: thirty times all of them.
    Promise("starved", "the tests pass in random order on a machine that has no time for them",
            "starved.py", 160, 45_000, 1_000, mounts=Mounts.MACHINE),
]
