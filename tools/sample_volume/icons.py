"""The sample applications' icons: .icns files that hold one design in its sizes."""

import functools
import struct

from . import objects, scenes
from .picture import Picture

# The entries of an .icns file, as the Mac names them, and the pixels of each.
ENTRIES = {"ic07": 128, "ic08": 256, "ic09": 512, "ic10": 1024,
           "ic11": 32, "ic12": 64, "ic13": 256, "ic14": 512}

# The tile's upper and lower colour, and what is drawn on it.
DESIGNS = {
    "abacus": ("#f7e3c8", "#e2bd8f", objects.abacus),
    "aperture": ("#5a6472", "#252b34", objects.aperture),
    "bars": ("#4b2a7b", "#1f1140", objects.bars),
    "board": ("#ffffff", "#e3e9f4", objects.board),
    "book": ("#f0626f", "#b61f3c", objects.book),
    "brush": ("#fbf7ee", "#e9dfcc", objects.brush),
    "bulb": ("#ffc94d", "#f08c1d", objects.bulb),
    "burrow": ("#bfe6ff", "#e9f7ff", scenes.burrow),
    "calendar": ("#2fb9a8", "#0f7d74", objects.calendar),
    "cards": ("#8f7bff", "#4a33c9", objects.cards),
    "chart": ("#15594a", "#08302b", objects.chart),
    "drop": ("#6d78ff", "#3a2fb8", scenes.drop),
    "dusk": ("#ff9a6b", "#b6448f", scenes.dusk),
    "fox": ("#bff0e0", "#5cc6b2", scenes.fox),
    "horn": ("#ff7a6b", "#e0303c", objects.horn),
    "ladder": ("#3fa0f5", "#1f4fc4", objects.ladder),
    "leaf": ("#5ed07a", "#16864a", scenes.leaf),
    "letter": ("#f58fb0", "#c2447c", objects.letter),
    "moon": ("#36408f", "#141a4a", scenes.moon),
    "peaks": ("#8fd0ff", "#f6e3d2", scenes.peaks),
    "sails": ("#6fd0f2", "#bfeaf7", scenes.sails),
    "sheet": ("#ffd36a", "#f0861d", objects.sheet),
    "signpost": ("#54c7b4", "#1b8577", scenes.signpost),
    "sliders": ("#6b7c8f", "#3a4653", objects.sliders),
    "spool": ("#b79cf5", "#6e48c8", objects.spool),
    "stones": ("#f7ead3", "#dcc29a", scenes.stones),
    "waves": ("#37c9e8", "#1268d6", scenes.waves),
    "window": ("#ffb46b", "#f2742e", objects.window),
}


@functools.cache
def icon_file(design, largest):
    """The bytes of an .icns file with the design in every size up to the largest."""
    entries = [(kind, _drawn(design, size)) for kind, size in ENTRIES.items() if size <= largest]
    body = b"".join(kind.encode() + struct.pack(">I", len(data) + 8) + data for kind, data in entries)
    return b"icns" + struct.pack(">I", len(body) + 8) + body


@functools.cache
def _drawn(design, size):
    top, bottom, draw = DESIGNS[design]
    picture = Picture(size, top, bottom)
    draw(picture)
    return picture.png()
