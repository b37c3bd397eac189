"""Writes a disk's files so that two runs give the same disk, dates included."""

import functools
import os

DATE = 1_756_717_200  # 1 September 2025, 09:00 UTC
BLOCK = 4096


class Volume:
    """A Mac's disk in a folder of this machine. Paths are the Mac's own: text that begins with a slash."""

    def __init__(self, root):
        self._root = os.fsencode(root)
        self.files = 0
        self.size = 0
        self._dates = {"": DATE}

    def real_path(self, path):
        """Where a file of the disk lies on this machine. Names are UTF-8 there, whatever is usual here."""
        return self._root + path.encode()

    def folder(self, path, date=None):
        """Makes a folder and those above it, where they are missing."""
        if path not in self._dates:
            self.folder(_parent(path))
            os.mkdir(self.real_path(path), 0o755)
        if path not in self._dates or date:
            self._dates[path] = date or DATE

    def file(self, path, data=b"", mode=0o644):
        self.folder(_parent(path))
        opener = functools.partial(os.open, mode=mode)
        with open(self.real_path(path), "xb", opener=opener) as stream:
            stream.write(data)
            stream.flush()
            os.utime(stream.fileno(), (DATE, DATE))
        self.files += 1
        self.size += allocated(len(data))

    def link(self, path, target):
        self.folder(_parent(path))
        os.symlink(target.encode(), self.real_path(path))
        os.utime(self.real_path(path), (DATE, DATE), follow_symlinks=False)

    def finish(self):
        """Dates the folders; to be called when all is written, for writing into a folder changes its date."""
        for path, date in self._dates.items():
            os.utime(self.real_path(path), (date, date))


def allocated(size):
    """The space that a file takes on a disk of usual blocks."""
    return -(-size // BLOCK) * BLOCK


def _parent(path):
    return path.rpartition("/")[0]
