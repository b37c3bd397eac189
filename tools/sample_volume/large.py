"""Large volumes to measure with: many applications, many files, spread and nested as on a disk in use."""

import plistlib

from . import content
from .applications import APPLICATIONS, HOME
from .icons import DESIGNS, icon_file

FILES_OF_ITS_OWN = 4  # that every application has at least
WEIGHTS = (1, 2, 1, 8, 1, 3, 1, 1, 20, 1)  # some applications are much larger than others
SIZES = (180, 900, 2600, 400, 6100, 1200, 300, 11000)
FILES_IN_A_FOLDER = 14
FOLDERS_IN_A_FOLDER = 6
PLACES = ("{bundle}/Contents/Resources/en.lproj",
          "{bundle}/Contents/Frameworks/Core.framework/Versions/A/Resources",
          "{bundle}/Contents/Resources/Templates",
          "{home}/Library/Application Support/{name}",
          "{home}/Library/Caches/{identifier}")


def write_large_volume(volume, applications, files):
    """Writes so many applications, and so many files in all."""
    for folder in (HOME + "/.Trash", HOME + "/Library/LaunchAgents", "/Users/Shared", "/System/Applications"):
        volume.folder(folder)
    icons = [icon_file(design, largest=128) for design in list(DESIGNS)[:8]]
    weights = sum(WEIGHTS[number % len(WEIGHTS)] for number in range(applications))
    spread, passed, left = 0, 0, files - FILES_OF_ITS_OWN * applications
    for number in range(applications):
        passed += WEIGHTS[number % len(WEIGHTS)]
        until = left * passed // weights
        _write_application(volume, number, icons[number % len(icons)], until - spread)
        spread = until


def _write_application(volume, number, icon, files):
    name, identifier = f"Sample {number:05}", f"com.example.sample{number:05}"
    bundle = f"{APPLICATIONS}/{name}.app"
    keys = {"CFBundleExecutable": name, "CFBundleIconFile": "icon", "CFBundleIdentifier": identifier,
            "CFBundleName": name, "CFBundleShortVersionString": f"{number % 9}.{number % 7}"}
    volume.file(bundle + "/Contents/Info.plist", plistlib.dumps(keys, sort_keys=False))
    volume.file(f"{bundle}/Contents/MacOS/{name}", content.program(20_000), 0o755)
    volume.file(bundle + "/Contents/Resources/icon.icns", icon)
    settings = "LaunchAgents" if number % 10 == 0 else "Preferences"
    volume.file(f"{HOME}/Library/{settings}/{identifier}.plist", plistlib.dumps({"Label": identifier}))
    places = [place.format(bundle=bundle, home=HOME, name=name, identifier=identifier) for place in PLACES]
    for file in range(files):
        folder = places[file % len(places)] + _subfolder(file // len(places) // FILES_IN_A_FOLDER)
        volume.file(f"{folder}/item-{file:06}.dat", content.noise(SIZES[file % len(SIZES)]))


def _subfolder(number):
    """The path of the folder with a number, in a tree where each holds a few others."""
    path = ""
    while number:
        number, place = divmod(number - 1, FOLDERS_IN_A_FOLDER)
        path = f"/group-{place}{path}"
    return path
