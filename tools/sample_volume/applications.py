"""The applications of the sample volume. All names, makers and products are invented."""

import dataclasses
import zlib

from .volume import DATE

HOME = "/Users/sample"
APPLICATIONS = "/Applications"
OWN = HOME + "/Applications"
SYSTEM = "/System/Applications"
SHARED = "/Users/Shared/Applications"


@dataclasses.dataclass(frozen=True)
class Application:
    file: str
    identifier: str | None
    version: str
    kilobytes: int
    icon: str | None = None
    icon_pixels: int = 256  # of the largest picture in its icon file
    folder: str = APPLICATIONS
    # What its information says differently: a value for a key, or None to leave the key out.
    information: dict = dataclasses.field(default_factory=dict)
    # "xml" or "binary"; "flat" lies at the bundle's top, as on smaller devices; None: there is none at all.
    information_format: str | None = "xml"
    # What it is called in other languages, by the folder of each.
    names: dict = dataclasses.field(default_factory=dict)
    # What it left outside its bundle: kilobytes by place, the keys of leftovers.PLACES.
    leftovers: dict = dataclasses.field(default_factory=dict)
    # Bundles within its bundle, by their path there.
    nested: tuple = ()

    @property
    def path(self):
        return f"{self.folder}/{self.file}"

    @property
    def stem(self):
        return self.file.rpartition(".")[0]

    @property
    def date(self):
        """Fixed for each, within about three years."""
        return DATE - 86400 * (zlib.crc32(self.file.encode()) % 1000)

    @property
    def name(self):
        """What it is called on the screen."""
        if self.information_format is None:
            return self.stem
        shown = self.information.get("CFBundleDisplayName")
        return self.information.get("CFBundleName", self.stem) if shown is None else shown

    @property
    def shown_version(self):
        if self.information_format is None:
            return "Unknown"
        short = self.information.get("CFBundleShortVersionString", self.version)
        return self.information.get("CFBundleVersion", self.version) if short is None else short


EVERYWHERE = {"caches": 1156, "preferences": 8, "state": 60, "storages": 96, "webkit": 240, "container": 428,
              "support": 824, "name caches": 176, "logs": 84, "group": 352}

INSTALLED = [
    Application("Amberfold.app", "org.example.amberfold", "5.0.4", 3060, "sheet", 512, leftovers=EVERYWHERE,
                nested=("Contents/Library/LoginItems/Amberfold Helper.app",
                        "Contents/PlugIns/Amberfold Quick Notes.appex")),
    Application("Brindlemark.app", "com.example.brindlemark", "1.9", 764, "stones",
                leftovers={"caches": 120, "preferences": 4}),
    Application("Cartovane.app", "com.example.cartovane", "3.2.1", 2040, "peaks", 512,
                leftovers={"caches": 2312, "preferences": 4, "support": 496, "group": 128}),
    Application("Duskmeter.app", "org.example.duskmeter", "2.1", 596, "dusk", 512,
                information_format="binary", leftovers={"preferences": 4, "state": 36}),
    Application("Echolathe.app", "com.example.echolathe", "2024.2", 2636, "bars", 512,
                nested=("Contents/PlugIns/Echolathe Reverb.plugin",),
                leftovers={"caches": 992, "preferences": 12, "support": 1320, "logs": 48}),
    Application("Fernglass.app", "org.example.fernglass", "0.9.6", 936, "leaf",
                information={"CFBundleIconFile": "leaf.icns"}, information_format="binary",
                leftovers={"container": 496, "preferences": 4}),
    Application("Foxglen 🦊.app", "com.example.foxglen", "7.3", 1276, "fox",
                information={"CFBundleDisplayName": "Foxglen 🦊"},
                leftovers={"caches": 260, "preferences": 4, "support": 188}),
    Application("Größenwächter.app", "org.example.groessenwaechter", "1.4.2", 640,
                leftovers={"preferences": 4, "logs": 16}),
    Application("Hollow Shell.app", None, "", 12, information_format=None),
    Application("Inkferry.app", "org.example.inkferry", "4.4", 1104, "drop",
                names={"de.lproj": "Tintenfähre", "fr.lproj": "Bac à encre", "zh-Hant.lproj": "墨渡"},
                leftovers={"preferences": 4, "support": 384, "state": 28}),
    Application("Junipost.app", "com.example.junipost", "6.1", 1444, "letter", information_format="binary",
                leftovers={"caches": 496, "preferences": 8, "storages": 64, "container": 1156, "group": 176}),
    Application("Kestrelboard.app", "com.example.kestrelboard", "12.0.1", 2464, "board", 512,
                nested=("Contents/Library/LoginItems/Kestrelboard Agent.app",),
                leftovers={"caches": 824, "preferences": 4, "storages": 80, "webkit": 384, "support": 288}),
    Application("Loudhailer.APP", "com.example.loudhailer", "1.0", 420, "horn",
                leftovers={"preferences": 4, "name caches": 24}),
    Application("Lumenpress.app", "org.example.lumenpress", "3.8", 2208, "aperture", 512,
                leftovers={"caches": 1208, "preferences": 4, "support": 264}),
    Application("Mole's \"Burrow\" & Co.app", "com.example.moles-burrow", "2.0", 380, "burrow",
                leftovers={"preferences": 4, "support": 44, "logs": 8}),
    Application("Nameless Lodger.app", None, "1.1", 240, information={"CFBundleIdentifier": None},
                leftovers={"support": 60, "name caches": 32, "logs": 12}),
    Application("Nimbletide.app", "org.example.nimbletide", "1.0", 732, "waves",
                leftovers={"caches": 140, "preferences": 4}),
    Application("Orchardbook.app", "org.example.orchardbook", "8.2", 1064, "book",
                names={"German.lproj": "Obstgartenbuch"}, information_format="binary", leftovers={"preferences": 4, "support": 880, "state": 40}),
    Application("Pocket Tin.app", "com.example.pockettin", "1.2", 300, information_format="flat"),
    Application("Quarrydeck.app", "com.example.quarrydeck", "4.0", 832, "cards",
                information={"CFBundleName": "Quarrydeck Studio"},
                leftovers={"caches": 210, "preferences": 4}),
    Application("Wicketline.app", "org.example.wicketline", "2041", 648, "chart",
                information={"CFBundleShortVersionString": None}, leftovers={"preferences": 4, "logs": 20}),
    # The accents are letters of their own here, as older Mac disks keep them.
    Application("E\u0301clairage Dore\u0301.app", "org.example.eclairage", "1.3", 520, "bulb",
                information={"CFBundleDisplayName": "E\u0301clairage Dore\u0301"},
                leftovers={"preferences": 4, "support": 72}),
    Application("Θαλασσογράφος.app", "org.example.thalassographos", "2.2", 712, "sails",
                leftovers={"preferences": 4, "caches": 96}),
    Application("Лесная тетрадь.app", "org.example.lesnaya-tetrad", "1.7", 610, leftovers={"support": 130}),
    Application("دفتر الرمال.app", "org.example.daftar", "1.0.3", 450, leftovers={"preferences": 4}),
    Application("달빛서랍.app", "com.example.dalbit", "3.1", 612, "moon",
                leftovers={"container": 240}),
    Application("ことり暦.app", "com.example.kotori", "2.5", 560, leftovers={"preferences": 4, "support": 52}),
    Application("云墨册.app", "com.example.yunmo", "1.8", 792, "brush", information_format="binary",
                leftovers={"caches": 172, "preferences": 4}),
    Application("Rillbrush.app", "org.example.rillbrush", "0.4", 350, folder=OWN,
                leftovers={"preferences": 4}),
    Application("Umberscope.app", "com.example.umberscope", "1.6", 680, "spool", folder=OWN,
                leftovers={"caches": 180, "support": 90}),
    Application("Clean Slate.app", "org.example.cleanslate", "14.0", 410, "window", folder=SYSTEM,
                information={"CFBundleDisplayName": ""}),
    Application("Countinghouse.app", "org.example.countinghouse", "11.2", 330, "abacus", folder=SYSTEM),
    Application("Daybook.app", "org.example.daybook", "14.0", 756, "calendar", folder=SYSTEM,
                leftovers={"caches": 64, "preferences": 8, "container": 232}),
    Application("Glasspane.app", "org.example.glasspane", "10.1", 628, folder=SYSTEM,
                information={"CFBundleIconFile": "Damaged"}, information_format="binary"),
    Application("Spoolroom.app", "org.example.spoolroom", "1.5", 290, folder=SYSTEM,
                information={"CFBundleIconFile": "Missing"}),
    Application("Waymarker.app", "org.example.waymarker", "3.0", 688, "signpost", folder=SYSTEM,
                leftovers={"preferences": 4}),
    Application("Workbench.app", "org.example.workbench", "14.0", 560, "sliders", folder=SYSTEM),
]

# Installed elsewhere, and in the application folder by a link.
LINKED = Application("Borrowed Ladder.app", "org.example.borrowedladder", "1.1", 470, "ladder", folder=SHARED,
                     leftovers={"preferences": 4})

# In folders that are not looked into, or of a kind that is not shown.
UNLISTED = [
    Application("Boilerhouse.app", "org.example.boilerhouse", "2.3", 180, folder=APPLICATIONS + "/Utilities"),
    Application("Plumbline.app", "org.example.plumbline", "14.0", 160, folder=SYSTEM + "/Utilities"),
    Application("Passerby.app", "org.example.passerby", "1.0", 120, folder="/Users/Guest/Applications"),
    Application(".Hidden Cellar.app", "org.example.hiddencellar", "1.0", 90),
]

# Known from before; its bundle has gone, what it left has not.
GONE = Application("Lanternfish.app", "org.example.lanternfish", "2.0.5", 1056, "moon",
                   leftovers={"caches": 420, "preferences": 4, "support": 224, "state": 24, "logs": 32})
