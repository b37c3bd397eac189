"""Prints random property lists, in both formats, with what Python's plistlib reads from each.

One JSON array of {"base64", "value"}; null stands for what JSON cannot say (dates, data, NaN, large integers).
"""

import base64
import datetime
import json
import math
import plistlib
import random
import sys

LETTERS = "aZ09 _-.<>&\"'\n\täßéΣ日語한🧹👩\u0301\u200d\ufffd"


def text(source):
    return "".join(source.choice(LETTERS) for _ in range(source.choice([0, 1, 5, 14, 15, 16, 40])))


def leaf(source):
    return source.choice(
        [
            lambda: text(source),
            lambda: source.random() < 0.5,
            lambda: source.choice([1, -1]) * source.getrandbits(source.choice([7, 8, 16, 31, 32, 63])),
            lambda: source.choice([-(2**63), 2**63 - 1, 2**63, 2**64 - 1]),
            lambda: source.choice([0.0, -1.5, 1e300, 5e-324, math.inf, math.nan, source.uniform(-1e6, 1e6)]),
            lambda: source.randbytes(source.choice([0, 1, 2, 3, 20, 300])),
            lambda: datetime.datetime(2001, 1, 1) + datetime.timedelta(seconds=source.randrange(-(10**9), 10**9)),
        ]
    )()


def value(source, depth):
    kind = source.random()
    if depth == 0 or kind < 0.4:
        return leaf(source)
    size = source.choice([0, 1, 3, 8])
    if kind < 0.6:
        return [value(source, depth - 1) for _ in range(size)]
    entries = {text(source): value(source, depth - 1) for _ in range(size)}
    if source.random() < 0.5:
        entries["Label"] = leaf(source)
    return entries


def sayable(read):
    if isinstance(read, dict):
        return {key: sayable(entry) for key, entry in read.items()}
    if isinstance(read, list):
        return [sayable(element) for element in read]
    if isinstance(read, float):
        return read if math.isfinite(read) else None
    if isinstance(read, int):
        return read if read < 2**63 else None
    return read if isinstance(read, str) else None


def main():
    source = random.Random(int(sys.argv[1]))
    lists = []
    for _ in range(int(sys.argv[2])):
        root = value(source, source.randrange(5))
        for fmt in (plistlib.FMT_XML, plistlib.FMT_BINARY):
            written = plistlib.dumps(root, fmt=fmt, sort_keys=source.random() < 0.5)
            lists.append(
                {"base64": base64.b64encode(written).decode(), "value": sayable(plistlib.loads(written))}
            )
    json.dump(lists, sys.stdout)


main()
