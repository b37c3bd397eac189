"""Runs tools/make-sample-volume as people do, and looks at what it wrote."""

import hashlib
import json
import os
import pathlib
import platform
import plistlib
import resource
import stat
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
TOOL = REPOSITORY / "tools" / "make-sample-volume"
FOUNDATION = REPOSITORY / "tests" / "foundation"
HOME = "Users/sample"
CATALOG = HOME + "/Library/Application Support/Orvane/applications.json"

sys.path.insert(0, str(TOOL.parent))
from sample_volume import catalog, icons  # found by the line above


def run(*arguments, **options):
    command = [sys.executable, "-B", TOOL, *arguments]
    return subprocess.run(command, capture_output=True, text=True, check=False, **options)


def everything(root):
    """Every entry under a folder with its mode, date and contents or target."""
    found = {}
    for folder, folders, files in os.walk(os.fsencode(root)):
        for path in [folder] + [os.path.join(folder, name) for name in folders + files]:
            status = os.lstat(path)
            held = b""
            if stat.S_ISLNK(status.st_mode):
                held = os.readlink(path)
            elif stat.S_ISREG(status.st_mode):
                held = hashlib.sha256(pathlib.Path(os.fsdecode(path)).read_bytes()).digest()
            found[os.path.relpath(path, os.fsencode(root))] = (status.st_mode, status.st_mtime_ns, held)
    return found


class WithATemporaryFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)


class Refusals(WithATemporaryFolder):
    def assertRefuses(self, *arguments, because):
        before = everything(self.folder)
        result = run(*map(str, arguments), cwd=self.folder)
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertRegex(result.stderr, rf"\Amake-sample-volume: [^\n]*{because}[^\n]*\n\Z")
        self.assertEqual(everything(self.folder), before)

    def test_a_folder_with_anything_in_it_is_left_alone(self):
        (self.folder / ".hidden").write_text("mine")
        self.assertRefuses(self.folder, because="not empty")

    def test_a_file_is_left_alone(self):
        (self.folder / "file").write_text("mine")
        self.assertRefuses(self.folder / "file", because="not a folder")

    def test_a_dangling_link_is_left_alone(self):
        (self.folder / "link").symlink_to("nowhere")
        self.assertRefuses(self.folder / "link", because="not a folder")

    def test_misuse_is_told_in_one_line(self):
        self.assertRefuses(because="required: DIR")
        self.assertRefuses("", because="not a folder")
        self.assertRefuses("one", "two", because="two")
        self.assertRefuses("--size", "9", "new", because="--size")
        self.assertRefuses("--app", "9", "new", because="--app")
        self.assertRefuses("--apps", because="--apps")

    def test_numbers_are_plain_and_positive(self):
        for text in ("0", "-1", "1e3", "", "10000001", "٣"):
            self.assertRefuses(f"--apps={text}", "new", because="--apps")
        self.assertRefuses("--files=ten", "new", because="--files")

    def test_fewer_files_than_the_applications_need_are_refused(self):
        self.assertRefuses("--apps=10", "--files=39", "new", because="at least 40 files")


class Failures(WithATemporaryFolder):
    @staticmethod
    def allow_only_small_files():
        resource.setrlimit(resource.RLIMIT_FSIZE, (100_000, 100_000))

    def test_half_a_volume_is_taken_away(self):
        for directory in (self.folder / "new", self.folder):
            result = run(str(directory), preexec_fn=self.allow_only_small_files)
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertRegex(result.stderr, r"\Amake-sample-volume: [^\n]+\n\Z")
            self.assertEqual(list(self.folder.iterdir()), [])


class LargeVolumes(WithATemporaryFolder):
    def written(self, *options):
        result = run(*options, str(self.folder))
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        applications = os.listdir(self.folder / "Applications")
        files = [path for path in self.folder.rglob("*") if path.is_file()]
        return len(applications), len(files)

    def test_they_have_the_numbers_asked_for(self):
        self.assertEqual(self.written("--apps=30", "--files=2500"), (30, 2500))
        self.assertFalse((self.folder / CATALOG).exists(), "a start is to scan")

    def test_the_other_number_follows_from_the_one_given(self):
        self.assertEqual(self.written("--files=250"), (2, 250))

    def test_the_smallest_has_no_file_to_spread(self):
        self.assertEqual(self.written("--apps=3", "--files=12"), (3, 12))


class TheSample(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.root = pathlib.Path(folder.name)  # exists and is empty, which is as good as new
        cls.result = run(folder.name)
        cls.catalog_bytes = (cls.root / CATALOG).read_bytes()
        cls.catalog = json.loads(cls.catalog_bytes)

    def bundles(self):
        """What a scan finds, by the path it has on the Mac."""
        folders = ("Applications", HOME + "/Applications", "System/Applications")
        return {f"/{folder}/{name}" for folder in folders for name in os.listdir(self.root / folder)
                if name.lower().endswith(".app") and not name.startswith(".")}

    def information(self, path):
        return plistlib.loads((self.root / path / "Contents/Info.plist").read_bytes())

    def test_success_is_told_in_one_line(self):
        self.assertEqual((self.result.returncode, self.result.stderr), (0, ""))
        self.assertEqual(self.result.stdout.count("\n"), 1)

    def test_another_run_writes_the_same_whatever_is_usual_there(self):
        with tempfile.TemporaryDirectory() as other:
            elsewhere = {"LC_ALL": "C", "PYTHONCOERCECLOCALE": "0", "PYTHONUTF8": "0", "TZ": "Asia/Tokyo",
                         "PYTHONHASHSEED": "7"}
            result = run(other, env={**os.environ, **elsewhere}, umask=0o077)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            mine, theirs = everything(self.root), everything(other)
            self.assertEqual(mine.keys(), theirs.keys())
            self.assertEqual([path for path in mine if path != b"." and mine[path] != theirs[path]], [])

    def test_it_is_small_but_its_files_take_space(self):
        total = sum(path.stat().st_size for path in self.root.rglob("*")
                    if path.is_file() and not path.is_symlink())
        self.assertTrue(20_000_000 < total < 60_000_000, total)

    def test_there_is_one_user(self):
        users = {path.name for path in (self.root / "Users").iterdir() if path.is_dir()}
        self.assertEqual(users, {"sample", "Shared", "Guest"})

    def test_all_names_are_reserved_for_examples(self):
        lists = [path for path in self.root.rglob("Info.plist") if path.is_file()]
        identifiers = {plistlib.loads(path.read_bytes()).get("CFBundleIdentifier") for path in lists} - {None}
        self.assertGreater(len(identifiers), 30)
        self.assertEqual({name for name in identifiers if name.split(".")[:2] not in
                          (["com", "example"], ["org", "example"])}, set())

    def test_one_application_left_something_everywhere(self):
        identifier, name = "org.example.amberfold", "Amberfold"
        for path in (f"Caches/{identifier}", f"Preferences/{identifier}.plist", f"HTTPStorages/{identifier}",
                     f"Saved Application State/{identifier}.savedState", f"WebKit/{identifier}",
                     f"Logs/{name}",
                     f"Containers/{identifier}", f"Application Support/{name}", f"Caches/{name}",
                     f"Group Containers/TEAMID.{identifier}"):
            self.assertTrue((self.root / HOME / "Library" / path).exists(), path)
        for folder in (HOME + "/Library/LaunchAgents", "Library/LaunchAgents", "Library/LaunchDaemons"):
            self.assertTrue([path for path in (self.root / folder).glob("*.plist")
                             if not path.is_symlink() and identifier.encode() in path.read_bytes()], folder)

    def test_the_unusual_applications_are_there(self):
        self.assertIn("/Applications/Loudhailer.APP", self.bundles())
        self.assertNotIn("CFBundleIdentifier", self.information("Applications/Nameless Lodger.app"))
        self.assertEqual(self.information("System/Applications/Clean Slate.app")["CFBundleDisplayName"], "")
        self.assertEqual(list((self.root / "Applications/Hollow Shell.app").rglob("Info.plist")), [])
        self.assertTrue((self.root / "Applications/Fernglass.app/Contents/Info.plist").read_bytes()
                        .startswith(b"bplist00"))
        self.assertEqual(os.readlink(self.root / "Applications/Borrowed Ladder.app"),
                         "/Users/Shared/Applications/Borrowed Ladder.app")
        self.assertEqual(list((self.root / HOME / ".Trash").iterdir()), [])

    def test_the_catalog_lists_what_a_scan_finds_and_one_that_has_gone(self):
        listed = {record["url"].removesuffix("/") for record in self.catalog}
        self.assertEqual(len(listed), len(self.catalog))
        found = {catalog.file_url(path, is_folder=False) for path in self.bundles()}
        self.assertEqual(listed - found, {"file:///Applications/Lanternfish.app"})
        self.assertEqual(found - listed, set())
        self.assertTrue((self.root / HOME / "Library/Application Support/Lanternfish").is_dir())

    def test_the_catalog_says_what_the_bundles_say(self):
        records = {record["name"]: record for record in self.catalog}
        self.assertEqual(records["Quarrydeck Studio"]["bundleIdentifier"], "com.example.quarrydeck")
        self.assertEqual(records["Wicketline"]["version"], "2041")
        self.assertEqual(records["Hollow Shell"]["version"], "Unknown")
        self.assertEqual(records["Hollow Shell"]["size"], 12288)
        self.assertNotIn("bundleIdentifier", records["Nameless Lodger"])
        self.assertTrue(records[""]["isSystemApplication"])
        self.assertEqual(records["Amberfold"]["modifiedAt"] + 978_307_200,
                         (self.root / "Applications/Amberfold.app").stat().st_mtime)

    def test_the_catalog_is_spelled_as_a_mac_spells_it(self):
        self.assertEqual(catalog.encoded(self.catalog), self.catalog_bytes)
        for row in json.loads((FOUNDATION / "catalog-written.json").read_text()):
            record = {"url": catalog.file_url(row["path"], row["isDirectory"])}
            for key in ("name", "bundleIdentifier", "version", "size", "modifiedAt", "isSystemApplication",
                        "isInstalled"):
                if row[key] is not None:
                    record[key] = row[key]
            if not isinstance(row["modifiedAt"], float):  # fractions are spelled otherwise; none here
                self.assertEqual(catalog.encoded([record]).decode(), row["written"])

    def test_programs_run_until_they_are_ended(self):
        if platform.system() != "Linux" or platform.machine() not in ("x86_64", "aarch64"):
            self.skipTest("the programs are for Linux on x86_64 and aarch64")
        program = self.root / "Applications/Amberfold.app/Contents/MacOS/Amberfold"
        with subprocess.Popen([program]) as process:
            self.assertEqual(os.readlink(f"/proc/{process.pid}/exe"), str(program.resolve()))
            self.assertIsNone(process.poll())
            process.terminate()
            self.assertEqual(process.wait(timeout=60), -15)


class Icons(unittest.TestCase):
    @staticmethod
    def entries(data):
        """The pictures of an icon file, by kind."""
        kind, length = struct.unpack(">4sI", data[:8])
        assert (kind, length) == (b"icns", len(data))
        found, place = {}, 8
        while place < len(data):
            kind, length = struct.unpack(">4sI", data[place:place + 8])
            found[kind.decode()] = data[place + 8:place + length]
            place += length
        return found

    @staticmethod
    def pixels(png):
        """The rows of a picture, each a list of (red, green, blue, opacity)."""
        assert png.startswith(b"\x89PNG\r\n\x1a\n")
        place, packed, size = 8, b"", 0
        while place < len(png):
            length, kind = struct.unpack(">I4s", png[place:place + 8])
            data = png[place + 8:place + 8 + length]
            check = struct.unpack(">I", png[place + 8 + length:place + 12 + length])[0]
            assert check == zlib.crc32(kind + data)
            size = struct.unpack(">I", data[:4])[0] if kind == b"IHDR" else size
            packed += data if kind == b"IDAT" else b""
            place += 12 + length
        raw = zlib.decompress(packed)
        assert len(raw) == size * (1 + 4 * size)
        rows = (raw[row * (1 + 4 * size) + 1:(row + 1) * (1 + 4 * size)] for row in range(size))
        return [[tuple(row[4 * x:4 * x + 4]) for x in range(size)] for row in rows]

    def test_a_file_holds_each_size_up_to_the_largest(self):
        found = self.entries(icons.icon_file("leaf", 256))
        self.assertEqual({kind: len(self.pixels(png)) for kind, png in found.items()},
                         {"ic07": 128, "ic08": 256, "ic11": 32, "ic12": 64, "ic13": 256})

    def test_every_design_is_a_rounded_tile_within_a_margin(self):
        corner = []
        for design in icons.DESIGNS:
            rows = self.pixels(self.entries(icons.icon_file(design, 64))["ic12"])
            self.assertEqual({rows[y][x][3] for x in range(16, 48) for y in range(5, 59)}, {255}, design)
            self.assertEqual([rows[0][0][3], rows[63][63][3]], [0, 0], design)
            self.assertLess(rows[6][6][3], 128, design)
            self.assertGreater(len({pixel for row in rows for pixel in row}), 60, design)
            corner.append(tuple(pixel[3] for row in rows for pixel in row))
        self.assertEqual(len(set(corner)), 1, "all tiles have the same outline")

    def test_no_two_designs_look_alike(self):
        self.assertEqual(len({icons.icon_file(design, 32) for design in icons.DESIGNS}), len(icons.DESIGNS))


if __name__ == "__main__":
    unittest.main()
