"""What applications leave outside their bundles, and the files around it that belong to none of them."""

import plistlib

from . import content
from .applications import HOME, SYSTEM

# Where it lies in the home folder, and the files it consists of; the first takes what the others leave.
PLACES = {
    "caches": ("Library/Caches/{identifier}", ("Cache.db", "fsCachedData/6E1C", "fsCachedData/A07F",
                                               ".tidied")),
    "preferences": ("Library/Preferences/{identifier}.plist", ()),
    "state": ("Library/Saved Application State/{identifier}.savedState", ("window_1.data", "windows.plist")),
    "storages": ("Library/HTTPStorages/{identifier}", ("httpstorages.sqlite", "httpstorages.sqlite-wal")),
    "webkit": ("Library/WebKit/{identifier}", ("WebsiteData/LocalStorage/origin.sqlite3",
                                               "WebsiteData/salt")),
    "container": ("Library/Containers/{identifier}", ("Data/Library/Application Support/store.db",
                                                      "Data/Documents/Untitled",
                                                      ".metadata.plist")),
    "support": ("Library/Application Support/{stem}", ("library.db", "Backups/2025-08-30/library.db",
                                                       "Backups/2025-08-31/library.db")),
    "name caches": ("Library/Caches/{stem}", ("thumbnails.bin", "index")),
    "logs": ("Library/Logs/{stem}", ("2025-08-31.log", "2025-08-30.log")),
    "group": ("Library/Group Containers/TEAMID.{identifier}", ("Library/Caches/shared.db", "shared.plist")),
}


def write_leftovers(volume, application):
    for place, kilobytes in application.leftovers.items():
        pattern, files = PLACES[place]
        path = f"{HOME}/" + pattern.format(identifier=application.identifier, stem=application.stem)
        if not files:
            settings = {"LastOpened": application.version, "Layout": content.noise(kilobytes * 1024 - 512)}
            volume.file(path, plistlib.dumps(settings, fmt=plistlib.FMT_BINARY))
            continue
        part = kilobytes * 1024 // (2 * len(files))
        for number, name in enumerate(files):
            size = part if number else kilobytes * 1024 - part * (len(files) - 1)
            volume.file(f"{path}/{name}", content.noise(size))


def write_surroundings(volume):
    """Links of every kind, other people's files, and what merely looks like an application's."""
    library = HOME + "/Library"
    volume.folder(HOME + "/.Trash")
    volume.link(library + "/Application Support/Inkferry/Latest", "Backups/2025-08-31")
    volume.link(library + "/Caches/org.example.inkferry", "/Users/Shared/Caches/Inkferry")
    volume.link(library + "/Logs/Inkferry", "/Volumes/Elsewhere/Inkferry Logs")
    volume.file("/Users/Shared/Caches/Inkferry/pages.db", content.noise(200 * 1024))
    volume.file(library + "/Group Containers/TEAMID.Kestrelboard.shared/board.db", content.noise(90 * 1024))
    volume.file(library + "/Group Containers/TEAMID.com.example.unclaimed/store.db", content.noise(40 * 1024))
    volume.file(library + "/Application Support/Unclaimed Studio/store.db", content.noise(60 * 1024))
    volume.file(library + "/Caches/com.example.unclaimed/Cache.db", content.noise(24 * 1024))
    volume.file(library + "/Preferences/.GlobalPreferences.plist", plistlib.dumps({"Country": "XX"}))
    volume.file(library + "/Preferences/com.example.unclaimed.plist", plistlib.dumps({"Open": True}))
    for path in ("Documents/Letter.txt", "Documents/Amberfold/Essay.txt", "Desktop/Shopping.txt"):
        volume.file(f"{HOME}/{path}", b"This is nobody's leftover.\n")
    volume.file("/Users/.localized")
    volume.file("/Users/Shared/Read Me.txt", b"For everyone on this machine.\n")
    guest = "/Users/Guest/Library"
    volume.file(guest + "/Caches/org.example.amberfold/Cache.db", content.noise(32 * 1024))
    volume.file(guest + "/Preferences/org.example.amberfold.plist", plistlib.dumps({"Open": True}))
    volume.file("/Applications/Amberfold.app.zip", content.noise(16 * 1024))
    volume.file("/Applications/Manuals/Amberfold.txt", b"Fold along the amber line.\n")
    volume.file(SYSTEM + "/Glasspane.app/Contents/Resources/Damaged.icns", b"icns\0\0\xff\xffic07\0\0")
    volume.file("/Applications/.DS_Store", content.noise(4096))
    volume.folder("/Volumes")
    volume.folder("/private/tmp")
    volume.folder("/private/var")
    volume.link("/tmp", "private/tmp")
    volume.link("/var", "private/var")
