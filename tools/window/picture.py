"""Pictures of what is seen, compared pixel by pixel."""

from __future__ import annotations

import dataclasses
import subprocess
from pathlib import Path


@dataclasses.dataclass(frozen=True)
class Picture:
    """A red, a green and a blue byte for each pixel, row by row from the top."""

    width: int
    height: int
    pixels: bytes

    @staticmethod
    def from_ppm(data: bytes) -> Picture:
        kind, size, most, pixels = data.split(b"\n", 3)
        width, height = map(int, size.split())
        if (kind, most, len(pixels)) != (b"P6", b"255", width * height * 3):
            raise ValueError("no picture in bytes")
        return Picture(width, height, pixels)

    def save(self, path: Path) -> None:
        """Writes it as PNG."""
        path.parent.mkdir(parents=True, exist_ok=True)
        form = ["-size", f"{self.width}x{self.height}", "-depth", "8", "rgb:-"]
        subprocess.run(["convert", *form, f"png24:{path}"], input=self.pixels, check=True)

    def row(self, y: int, left: int = 0, width: int | None = None) -> bytes:
        start = (y * self.width + left) * 3
        return self.pixels[start : start + 3 * (self.width if width is None else width)]

    def color(self, x: int, y: int) -> tuple[int, int, int]:
        red, green, blue = self.row(y, x, 1)
        return red, green, blue

    def shows(self, part: Picture) -> bool:
        """Whether a part is seen here somewhere, pixel by pixel."""
        # The row that is hardest to mistake for another one.
        y = max(range(part.height), key=lambda y: len(set(part.row(y))))
        at = self.pixels.find(part.row(y))
        while at > 0 and at % 3:
            at = self.pixels.find(part.row(y), at + 1)
        top, left = divmod(at // 3, self.width)
        top -= y
        is_within = at >= 0 and 0 <= top <= self.height - part.height and left + part.width <= self.width
        return is_within and all(part.row(y) == self.row(top + y, left, part.width) for y in range(part.height))
