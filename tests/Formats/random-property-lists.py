"""Prints random property lists: in XML and binary, with what Python's plistlib reads from each, and in old style.

One JSON array of {"base64", "value"}; null stands for what JSON cannot say (dates, data, NaN, large integers).
"""

import base64
import datetime
import json
import math
import plistlib
import random
import re
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


def texts(read):
    """What old style can say: a leaf that is neither text nor data is text there."""
    if isinstance(read, dict):
        return {key: texts(entry) for key, entry in read.items()}
    if isinstance(read, list):
        return [texts(element) for element in read]
    return read if isinstance(read, bytes) else str(read)


def blanks(source):
    return source.choice(["", "", " ", "\n\t", " /* { */ ", " // }\r", " /***/\v", "\u2028", "\u2029\f"])


def escaped(source, letter, quote):
    if letter in (quote, "\\"):
        return "\\" + letter
    if source.random() < 0.8:
        return letter
    names = {"\n": "\\n", "\t": "\\t"}
    if letter in names and source.random() < 0.5:
        return names[letter]
    if letter.isascii() and source.random() < 0.5:
        return f"\\{ord(letter):03o}"
    units = letter.encode("utf-16-be")
    return "".join(f"\\U{units[i:i + 2].hex()}" for i in range(0, len(units), 2))


def old_style_text(source, text):
    if re.fullmatch(r"[\w$/:.-]+", text, re.ASCII) and not text.startswith("//") and source.random() < 0.5:
        return text + " "
    quote = source.choice("\"'")
    return quote + "".join(escaped(source, letter, quote) for letter in text) + quote


def old_style_entries(source, entries):
    return "".join(
        blanks(source) + old_style_text(source, key) + blanks(source)
        + ("" if key == entry and source.random() < 0.5
           else "=" + blanks(source) + old_style(source, entry) + blanks(source)) + ";"
        for key, entry in entries.items()
    )


def old_style(source, read):
    if isinstance(read, str):
        return old_style_text(source, read)
    if isinstance(read, bytes):
        pairs = [f"{byte:02x}" if source.random() < 0.5 else f"{byte:02X}" for byte in read]
        return "<" + "".join(pair + source.choice(["", "", " ", "\n"]) for pair in pairs) + ">"
    if isinstance(read, dict):
        return "{" + old_style_entries(source, read) + blanks(source) + "}"
    elements = [blanks(source) + old_style(source, element) + blanks(source) for element in read]
    return "(" + ",".join(elements) + (", )" if elements and source.random() < 0.2 else ")")


def old_style_list(source, read):
    encode = source.choice([
        lambda text: text.encode(),
        lambda text: text.encode("utf-8-sig"),
        lambda text: b"\xff\xfe" + text.encode("utf-16-le"),
        lambda text: b"\xfe\xff" + text.encode("utf-16-be"),
    ])
    if read and isinstance(read, dict) and source.random() < 0.5:
        return encode(old_style_entries(source, read) + blanks(source))
    return encode(blanks(source) + old_style(source, read) + blanks(source))


def row(written, read):
    return {"base64": base64.b64encode(written).decode(), "value": sayable(read)}


def main():
    source = random.Random(int(sys.argv[1]))
    lists = []
    for _ in range(int(sys.argv[2])):
        root = value(source, source.randrange(5))
        for fmt in (plistlib.FMT_XML, plistlib.FMT_BINARY):
            written = plistlib.dumps(root, fmt=fmt, sort_keys=source.random() < 0.5)
            lists.append(row(written, plistlib.loads(written)))
        lists.append(row(old_style_list(source, texts(root)), texts(root)))
    json.dump(lists, sys.stdout)


main()
