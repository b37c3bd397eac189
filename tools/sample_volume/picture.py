"""Square pictures of filled shapes, antialiased, as PNG.

Everything that is painted is one colour along a row, so a row is a few runs of equal pixels: only the pixels
on an outline are computed one by one. That is what makes this fast enough without any library.
"""

import functools
import math
import struct
import zlib

MARGIN = 0.06  # of the picture's side, around the tile
RADIUS = 0.22 * (1 - 2 * MARGIN)  # of the tile's corners
SHADOW_BLUR = 0.05
SHADOW_DROP = 0.012
SHADOW_DENSITY = 0.22


class Picture:
    """An application's icon in the making: a full square, cut to a rounded tile with a shadow at the end.

    Coordinates run from 0 to 1, rightwards and downwards. A shape is a list of outlines, each a list of
    points; overlapping outlines unite, and one that runs the other way round cuts a hole.
    """

    def __init__(self, size, top, bottom):
        self.size = size
        self._rows = [bytearray((*colour, 255)) * size for colour in _gradient(top, bottom, size)]

    def fill(self, shape, top, bottom=None, opacity=1.0):
        """Paints a shape in one colour, or in a gradient from its upper to its lower edge."""
        runs = list(_runs(shape, self.size))
        if not runs:
            return
        first, last = runs[0][0], runs[-1][0]
        colours = _gradient(top, bottom or top, last - first + 1)
        for row, start, end, coverage in runs:
            _blend(self._rows[row], start, end, colours[row - first], coverage * opacity)

    def png(self):
        for row, (shadow, rim) in zip(self._rows, _tile_edges(self.size)):
            _cut(row, shadow, rim)
        pixels = b"".join(b"\0" + row for row in self._rows)
        header = struct.pack(">IIBBBBB", self.size, self.size, 8, 6, 0, 0, 0)
        chunks = ((b"IHDR", header), (b"IDAT", zlib.compress(pixels, 4)), (b"IEND", b""))
        return b"\x89PNG\r\n\x1a\n" + b"".join(_chunk(*chunk) for chunk in chunks)


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def _gradient(top, bottom, count):
    upper, lower = (bytes.fromhex(colour.removeprefix("#")) for colour in (top, bottom))
    last = max(count - 1, 1)
    return [tuple(round(a + (b - a) * i / last) for a, b in zip(upper, lower)) for i in range(count)]


def _runs(shape, size):
    """The (row, start, end, coverage) of a shape, from the top down, each from one column up to another."""
    samples = max(3, 1024 // size)
    heights = [y for outline in shape for _, y in outline]
    first, last = max(int(min(heights) * size), 0), min(int(max(heights) * size) + 1, size)
    lines = _crossings(shape, size, samples, first * samples, last * samples)
    for row in range(first, last):
        steps = {}
        for line in lines[(row - first) * samples : (row - first + 1) * samples]:
            line.sort()
            winding = 0
            for x, direction in line:
                if winding == 0:
                    _step(steps, x, 1 / samples)
                winding += direction
                if winding == 0:
                    _step(steps, x, -1 / samples)
        coverage = 0.0
        columns = sorted(steps)
        for start, end in zip(columns, columns[1:]):
            coverage += steps[start]
            if coverage > 0.002 and end > 0 and start < size:
                yield row, max(start, 0), min(end, size), coverage


def _crossings(shape, size, samples, first_line, last_line):
    """For each of the lines that sample the rows, where the outlines cross it and which way they run."""
    lines = [[] for _ in range(first_line, last_line)]
    height = size * samples
    for outline in shape:
        before = outline[-1]
        for x, y in outline:
            before_y = before[1]
            (top_x, top), (low_x, low) = ((x, y), before) if y < before_y else (before, (x, y))
            first = max(math.ceil(top * height - 0.5), first_line)
            last = min(math.ceil(low * height - 0.5), last_line)
            if first < last:
                slope = (low_x - top_x) / (low - top)
                column = (top_x + ((first + 0.5) / height - top) * slope) * size
                direction = 1 if before_y < y else -1
                for line in range(first - first_line, last - first_line):
                    lines[line].append((column, direction))
                    column += slope / samples
            before = x, y
    return lines


def _step(steps, x, amount):
    """Adds a change of coverage at x, shared between two columns where it falls inside one."""
    column = math.floor(x)
    inside = amount * (x - column)
    steps[column] = steps.get(column, 0.0) + amount - inside
    steps[column + 1] = steps.get(column + 1, 0.0) + inside


def _blend(row, start, end, colour, opacity):
    if opacity > 0.998:
        row[4 * start : 4 * end] = bytes((*colour, 255)) * (end - start)
    elif end - start < 3:
        for first in range(4 * start, 4 * end, 4):
            for channel in range(3):
                old = row[first + channel]
                row[first + channel] = round(old + (colour[channel] - old) * opacity)
    else:
        for channel in range(3):
            part = slice(4 * start + channel, 4 * end, 4)
            row[part] = row[part].translate(_blending(colour[channel], round(opacity * 255)))


@functools.lru_cache(maxsize=4096)
def _blending(value, opacity):
    return bytes((old * (255 - opacity) + value * opacity + 127) // 255 for old in range(256))


@functools.cache
def _tile_edges(size):
    """For each row of a tile, what replaces the pixels outside it: see _cut."""
    rows = []
    for row in range(size):
        shadow, rim = [], []
        for column in range((size + 1) // 2):
            inside = 0.5 - size * _distance((column + 0.5) / size, (row + 0.5) / size)
            if inside >= 1:
                break
            fall = _distance((column + 0.5) / size, (row + 0.5) / size - SHADOW_DROP) / SHADOW_BLUR
            density = SHADOW_DENSITY * min(max(1 - fall, 0), 1) ** 2
            if inside > 0:
                rim.append((column, inside, density))
            else:
                shadow.append(round(255 * density))
        rows.append((bytes(shadow), rim))
    return rows


def _distance(x, y):
    """How far a point lies outside the tile's rounded square; negative within."""
    reach = 0.5 - MARGIN - RADIUS
    dx, dy = abs(x - 0.5) - reach, abs(y - 0.5) - reach
    return math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - RADIUS


def _cut(row, shadow, rim):
    """Replaces the outermost pixels by shadow, left and right alike, and makes the rim's translucent."""
    width = len(row) // 4
    count = len(shadow)
    black = bytearray(4 * count)
    black[3::4] = shadow
    row[: 4 * count] = black
    black[3::4] = shadow[::-1]
    row[4 * (width - count) :] = black
    for column, inside, density in rim:
        opacity = inside + density * (1 - inside)
        for first in {4 * column, 4 * (width - 1 - column)}:
            for channel in range(3):
                row[first + channel] = round(row[first + channel] * inside / opacity)
            row[first + 3] = round(255 * opacity)
