"""Holds the project's drawings to what tints and scales them: SVG that Qt draws, one colour, one square."""

import pathlib
import re
import unittest
import xml.etree.ElementTree as ElementTree

VIEWS = pathlib.Path(__file__).resolve().parents[2] / "src" / "Views"
SVG = "{http://www.w3.org/2000/svg}"
SYMBOLS = """
    app.badge.checkmark app.fill arrow.clockwise bolt.horizontal.fill checklist checkmark checkmark.circle.fill
    chevron.left.forwardslash.chevron.right clock.arrow.circlepath doc.fill doc.on.doc doc.on.doc.fill
    envelope.fill externaldrive.fill.badge.minus folder folder.badge.gearshape folder.fill gearshape.2.fill
    gearshape.fill globe info.circle internaldrive internaldrive.fill lock.fill lock.shield.fill magnifyingglass
    number person.crop.square server.rack shippingbox.fill square.grid.2x2 tick trash trash.slash waveform.path.ecg
""".split()

# A solid lock is carried by a shackle of its own weight, and the tick in a box of 14 points is bold or nothing.
BOLDER = {"lock.fill", "tick"}


def drawing(path):
    return ElementTree.parse(path).getroot()


class Symbols(unittest.TestCase):
    def test_every_one_that_is_shown_is_drawn_and_no_other(self):
        self.assertEqual(sorted(path.stem for path in (VIEWS / "Symbols").glob("*.svg")), sorted(SYMBOLS))

    def test_each_is_black_shapes_in_a_square_of_16(self):
        for path in (VIEWS / "Symbols").glob("*.svg"):
            root = drawing(path)
            self.assertEqual(root.get("viewBox"), "0 0 16 16", path.name)
            self.assertGreater(len(root), 0, path.name)
            for shape in root:
                self.assertEqual(shape.tag, SVG + "path", path.name)
                self.assertLessEqual({shape.get("fill"), shape.get("stroke")} - {None}, {"#000", "none"}, path.name)
                self.assertEqual([name for name in shape.keys() if "opacity" in name], [], path.name)

    def test_no_line_reaches_the_edge(self):
        for path in (VIEWS / "Symbols").glob("*.svg"):
            for shape in drawing(path):
                numbers = [float(number) for number in re.findall(r"-?\d+(?:\.\d+)?", shape.get("d"))]
                reach = float(shape.get("stroke-width", 0)) / 2
                self.assertGreaterEqual(min(numbers), 0, path.name)
                self.assertLessEqual(max(numbers) + reach, 16, path.name)


    def test_all_lines_are_of_one_weight(self):
        for path in (VIEWS / "Symbols").glob("*.svg"):
            if path.stem in BOLDER:
                continue
            for shape in drawing(path):
                if shape.get("fill") == "none":
                    self.assertEqual(shape.get("stroke-width"), "1.3", path.name)
                    self.assertEqual(shape.get("stroke-linecap"), "round", path.name)
                    self.assertEqual(shape.get("stroke-linejoin"), "round", path.name)
                else:
                    # Only rounds the corners.
                    self.assertLess(float(shape.get("stroke-width", 0)), 1, path.name)


class Icons(unittest.TestCase):
    def test_each_is_a_rounded_tile_within_a_margin(self):
        for name in ("orvane", "generic-application"):
            root = drawing(VIEWS / "Icons" / f"{name}.svg")
            self.assertEqual(root.get("viewBox"), "0 0 1024 1024")
            tile = root.find(SVG + "rect")
            side = float(tile.get("width"))
            self.assertAlmostEqual(float(tile.get("x")), 0.06 * 1024, places=1)
            self.assertAlmostEqual(side, 0.88 * 1024, places=1)
            self.assertAlmostEqual(float(tile.get("rx")), 0.22 * side, places=1)


if __name__ == "__main__":
    unittest.main()
