"""Orvane.app as it is laid out for a Mac: its information, its icon, and what finishes it there."""

import os
import pathlib
import plistlib
import re
import struct
import subprocess
import tempfile
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS = pathlib.Path(os.environ.get("ORVANE_BINARY_DIR", REPOSITORY / "build/release/bin")).resolve()
BUNDLE = PROGRAMS / "Orvane.app"
CONTENTS = BUNDLE / "Contents"
ICON = CONTENTS / "Resources/Orvane.icns"
# The same drawing, as the Debian package has it.
DRAWINGS = PROGRAMS.parent / "packaging/icons"
MACOS = REPOSITORY / "packaging/macos"


def said(*command: object) -> str:
    return subprocess.run(list(map(str, command)), check=True, capture_output=True, text=True).stdout


def cmake(name: str) -> str:
    """What the build file says of the project."""
    found = re.search(name, (REPOSITORY / "CMakeLists.txt").read_text(encoding="utf-8"))
    assert found, name
    return found[1]


class InformationTest(unittest.TestCase):
    def setUp(self):
        self.information = plistlib.loads((CONTENTS / "Info.plist").read_bytes())

    def test_it_says_what_the_bundle_is(self):
        version = cmake(r"project\(Orvane VERSION ([\d.]+)")
        self.assertEqual(
            self.information,
            {
                "CFBundleInfoDictionaryVersion": "6.0",
                "CFBundleName": "Orvane",
                "CFBundleIdentifier": "org.example.orvane",
                "CFBundleExecutable": "orvane",
                "CFBundleIconFile": "Orvane.icns",
                "CFBundleDevelopmentRegion": "en",
                "CFBundlePackageType": "APPL",
                "CFBundleShortVersionString": version,
                "CFBundleVersion": self.information["CFBundleVersion"],
                "LSApplicationCategoryType": "public.app-category.utilities",
                "LSMinimumSystemVersion": cmake(r"CMAKE_OSX_DEPLOYMENT_TARGET ([\d.]+) CACHE"),
                "NSHighResolutionCapable": True,
                "NSHumanReadableCopyright": "Copyright © 2026 The Orvane Project",
                "NSPrincipalClass": "NSApplication",
            },
        )
        # Compared as numbers, part by part, by whoever installs a later one.
        self.assertRegex(self.information["CFBundleVersion"], r"^\d+(\.\d+){0,2}$")
        self.assertRegex(version, r"^\d+(\.\d+){0,2}$")

    def test_another_reader_reads_the_same(self):
        with tempfile.TemporaryDirectory() as folder:
            binary = pathlib.Path(folder) / "Info.plist"
            said("plistutil", "-i", CONTENTS / "Info.plist", "-o", binary, "-f", "bin")
            self.assertTrue(binary.read_bytes().startswith(b"bplist00"))
            self.assertEqual(plistlib.loads(binary.read_bytes()), self.information)

    def test_the_bundle_holds_what_it_needs_and_nothing_else(self):
        files = {str(path.relative_to(CONTENTS)) for path in CONTENTS.rglob("*") if not path.is_dir()}
        self.assertEqual(
            files,
            {"Info.plist", "MacOS/orvane", "MacOS/orvane-cli", "Resources/LICENSE", "Resources/NOTICE.md",
             "Resources/Orvane.icns"},
        )
        for program in ("orvane", "orvane-cli"):
            self.assertTrue(os.access(CONTENTS / "MacOS" / program, os.X_OK))


class IconTest(unittest.TestCase):
    """Against readers that are not ours, and the pictures of the Debian package."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)

    def assert_is_drawing(self, picture: pathlib.Path, size: int) -> None:
        self.assertEqual(said("identify", "-format", "%wx%h", picture), f"{size}x{size}")
        # The package has none that is larger.
        drawing = DRAWINGS / f"{size}x{size}/apps/org.example.orvane.png" if size < 1024 else drawn(self.folder, size)
        self.assertLess(difference(picture, drawing, self.folder), 0.01)

    def test_icns2png_reads_the_drawing_in_the_sizes_that_it_knows(self):
        said("icns2png", "-x", "-o", self.folder, ICON)
        for size in (16, 32, 256, 512, 1024):
            with self.subTest(size=size):
                self.assert_is_drawing(self.folder / f"Orvane_{size}x{size}x32.png", size)

    def test_it_is_a_sequence_of_elements_and_each_picture_of_a_type_is_the_drawing(self):
        pictures = {b"ic11": 32, b"ic12": 64, b"ic07": 128, b"ic13": 256, b"ic08": 256, b"ic14": 512, b"ic09": 512,
                    b"ic10": 1024}
        bytes_ = ICON.read_bytes()
        self.assertEqual(struct.unpack_from(">4sI", bytes_), (b"icns", len(bytes_)))
        found = []
        at = 8
        while at < len(bytes_):
            kind, length = struct.unpack_from(">4sI", bytes_, at)
            found.append(kind)
            if kind in pictures:
                picture = self.folder / f"{kind.decode()}.png"
                picture.write_bytes(bytes_[at + 8 : at + length])
                with self.subTest(kind=kind):
                    self.assert_is_drawing(picture, pictures[kind])
            at += length
        self.assertEqual(at, len(bytes_))
        self.assertEqual(sorted(found), sorted([b"is32", b"s8mk", b"il32", b"l8mk", *pictures]))

    def test_another_picture_would_be_told_apart(self):
        drawing = DRAWINGS / "128x128/apps/org.example.orvane.png"
        mirrored = self.folder / "mirrored.png"
        said("convert", drawing, "-flop", mirrored)
        self.assertGreater(difference(mirrored, drawing, self.folder), 0.05)


def drawn(folder: pathlib.Path, size: int) -> pathlib.Path:
    said(PROGRAMS / "orvane-icon-files", REPOSITORY / "src/Views/Icons/orvane.svg", folder, "drawn", size)
    return folder / f"{size}x{size}/apps/drawn.png"


def difference(one: pathlib.Path, other: pathlib.Path, folder: pathlib.Path) -> float:
    """How far two pictures are from each other, from 0 to 1, on black."""
    flat = [folder / "one.flat.png", folder / "other.flat.png"]
    for picture, result in zip((one, other), flat):
        said("convert", picture, "-background", "black", "-flatten", result)
    compared = subprocess.run(["compare", "-metric", "RMSE", *flat, "null:"], capture_output=True, text=True, check=False)
    found = re.search(r"\(([\d.e-]+)\)", compared.stderr)
    assert found, compared.stderr
    return float(found[1])


class FinishTest(unittest.TestCase):
    """What is done to the bundle on a Mac, with its tools' places taken by ones that write down how they are called."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.bundle = self.folder / "Some Folder" / "Orvane.app"
        for file in ("MacOS/orvane", "MacOS/orvane-cli", "Frameworks/QtCore.framework/Versions/A/QtCore",
                     "Frameworks/libicu.dylib", "PlugIns/platforms/libqcocoa.dylib"):
            path = self.bundle / "Contents" / file
            path.parent.mkdir(parents=True, exist_ok=True)
            path.touch()
        self.calls = self.folder / "calls"
        self.calls.touch()
        self.tool("macdeployqt")
        self.tool("codesign")

    def tool(self, name: str, status: int = 0) -> None:
        path = self.folder / name
        path.write_text(f"#!/bin/sh\n{{ printf %s {name}; printf '|%s' \"$@\"; echo; }} >>'{self.calls}'\nexit {status}\n")
        path.chmod(0o755)

    def finish(self, identity: str) -> int:
        return subprocess.run(
            ["cmake", f"-DBUNDLE={self.bundle}", "-DVIEWS=/views", "-DLIBRARIES=/libraries", f"-DIDENTITY={identity}",
             f"-DMACDEPLOYQT={self.folder}/macdeployqt", f"-DCODESIGN={self.folder}/codesign", "-P", MACOS / "Finish.cmake"],
            capture_output=True, check=False,
        ).returncode

    def signed(self) -> list[list[str]]:
        """What codesign was asked, the bundle's own paths made short."""
        calls = [line.split("|") for line in self.calls.read_text().replace(f"{self.bundle}", "B").splitlines()]
        self.assertEqual(
            calls[0],
            ["macdeployqt", "B", "-always-overwrite", "-qmldir=/views", "-libpath=/libraries",
             "-executable=B/Contents/MacOS/orvane-cli"],
        )
        self.assertTrue(all(call[0] == "codesign" for call in calls[1:]))
        return [call[1:] for call in calls[1:]]

    PARTS = [
        "B/Contents/Frameworks/libicu.dylib",
        "B/Contents/PlugIns/platforms/libqcocoa.dylib",
        "B/Contents/Frameworks/QtCore.framework",
        "B/Contents/MacOS/orvane-cli",
    ]

    def test_with_an_identity_everything_is_hardened_and_the_bundle_comes_last(self):
        identity = "Developer ID Application: The Orvane Project"
        self.assertEqual(self.finish(identity), 0)
        signature = ["--force", "--timestamp", "--options", "runtime", "--sign", identity]
        rights = ["--entitlements", str(MACOS / "Orvane.entitlements")]
        self.assertEqual(
            self.signed(),
            [[*signature, part] for part in self.PARTS]
            + [[*signature, *rights, "B"], ["--verify", "--deep", "--strict", "B"]],
        )

    def test_without_one_it_is_signed_for_this_mac_and_not_hardened(self):
        self.assertEqual(self.finish(""), 0)
        self.assertEqual(
            self.signed(),
            [["--force", "--sign", "-", part] for part in [*self.PARTS, "B"]] + [["--verify", "--deep", "--strict", "B"]],
        )

    def test_a_tool_that_fails_fails_it(self):
        self.tool("codesign", status=1)
        self.assertNotEqual(self.finish(""), 0)
        self.assertEqual(len(self.signed()), 1, "nothing goes on after that")

    def test_the_entitlements_give_up_one_thing_only(self):
        entitlements = plistlib.loads((MACOS / "Orvane.entitlements").read_bytes())
        self.assertEqual(entitlements, {"com.apple.security.cs.allow-jit": True})


if __name__ == "__main__":
    unittest.main()
