"""The volumes that the programs are measured on: as many files as are asked for, and nothing that varies."""

from __future__ import annotations

import itertools
import os
import plistlib
from pathlib import Path

HOME = "Users/sample"
FILES_IN_A_FOLDER = 12
FOLDERS_IN_A_FOLDER = 6
CONTENTS = (b"", b"x" * 900, b"x" * 5000)


def write_files(top: Path, count: int) -> None:
    """So many files in a tree of small folders."""
    for number in range(-(-count // FILES_IN_A_FOLDER)):
        place, left = top, number
        while left:
            left, group = divmod(left - 1, FOLDERS_IN_A_FOLDER)
            place /= f"group-{group}"
        place.mkdir(parents=True, exist_ok=True)
        folder = os.open(place, os.O_RDONLY)
        try:
            for file in range(min(FILES_IN_A_FOLDER, count - number * FILES_IN_A_FOLDER)):
                made = os.open(f"item-{file:03}", os.O_CREAT | os.O_WRONLY | os.O_EXCL, 0o644, dir_fd=folder)
                os.write(made, CONTENTS[file % len(CONTENTS)])
                os.close(made)
        finally:
            os.close(folder)


def write_bundle(root: Path, name: str, files: int) -> None:
    contents = root / "Applications" / f"{name}.app" / "Contents"
    contents.mkdir(parents=True)
    information = {"CFBundleName": name, "CFBundleIdentifier": f"org.example.{name}"}
    (contents / "Info.plist").write_bytes(plistlib.dumps(information))
    write_files(contents / "Resources", files)


def applications(root: Path, sizes: list[int]) -> Path:
    """A volume with one application for each of the sizes, which are numbers of files."""
    (root / HOME).mkdir(parents=True)
    for number, files in enumerate(sizes):
        write_bundle(root, f"Sample{number:05}", files)
    return root


def leftovers(root: Path, lists: int, containers: int, files: int) -> Path:
    """One application, Manifold, that a few of so many launch items and group containers mention, and that has left
    so many files in its caches."""
    applications(root, [])
    write_bundle(root, "Manifold", 20)
    library = root / HOME / "Library"
    folders = itertools.cycle([library / "LaunchAgents", root / "Library/LaunchAgents", root / "Library/LaunchDaemons"])
    for number, folder in zip(range(lists), folders):
        folder.mkdir(parents=True, exist_ok=True)
        owner = "Manifold" if number % 100 == 0 else f"Other{number}"
        agent = {"Label": f"org.example.{owner}.{number}", "ProgramArguments": [f"/Applications/{owner}.app/run"],
                 "EnvironmentVariables": {f"KEY_{key}": "value of it " * 4 for key in range(12)}}
        (folder / f"org.example.item{number:05}.plist").write_bytes(plistlib.dumps(agent))
    for number in range(containers):
        name = "org.example.Manifold" if number == 0 else f"org.example.Other{number}"
        (library / "Group Containers" / f"TEAM.{name}").mkdir(parents=True)
    write_files(library / "Caches/org.example.Manifold", files)
    return root


def items(root: Path, folder: str, count: int) -> Path:
    """A volume with so many files in one of its folders, and an empty Trash."""
    applications(root, [])
    (root / HOME / ".Trash").mkdir(mode=0o700)
    top = root / folder.lstrip("/")
    top.mkdir(parents=True)
    for number in range(count):
        (top / f"org.example.item{number:05}").write_bytes(b"x" * 900)
    return root
