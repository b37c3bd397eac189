"""Leads libFuzzer, under the address and undefined-behaviour sanitizers, to one target of tests/proof/fuzz/.

Inputs begin with the seeds below; what was found to reach new code is kept in build/fuzz/corpus/ for the next time.
"""

import base64
import json
import pathlib
import re
import subprocess
import tempfile
from collections.abc import Iterator

import harness

FOLDER = harness.REPOSITORY / "build" / "fuzz"
FOUNDATION = harness.REPOSITORY / "tests" / "foundation"
LISTS = harness.REPOSITORY / "tests" / "Formats" / "random-property-lists.py"
# In bytes. Short inputs are tried more often, and what nests or repeats fits in these.
LONGEST = {"xml": 2000, "binary": 4096, "old-style": 1000, "catalog": 4096, "url": 100, "quoting": 200, "order": 1000}
WORDS = {
    "xml": ["<plist version=\"1.0\">", "</plist>", "<dict>", "</dict>", "<array>", "</array>", "<key>", "</key>",
            "<string>", "</string>", "<integer>", "</integer>", "<real>", "</real>", "<true/>", "<false/>", "<date>",
            "</date>", "<data>", "</data>", "<!DOCTYPE plist ", "<!ENTITY a \"b\">", "<![CDATA[", "]]>", "<!--", "-->",
            "&lt;", "&#", "&#x10FFFF;", "<?xml version=\"1.0\" encoding=\"", "UTF-16", "\\xEF\\xBB\\xBF", "\\xFF\\xFE"],
    "binary": ["bplist00", "\\xD1", "\\xA1", "\\x5F\\x10", "\\x6F\\x11", "\\x14\\xFF", "\\xD8\\x00\\xDC\\x00", "\\x80\\x01"],
    "old-style": ["{", "}", "(", ")", "<0f", ">", " = ", ";", "\\\"", "'", "\\\\U30", "\\\\377", "//", "/*", "*/", "\\xE2\\x80\\xA8", "_$/:.-"],
    "catalog": ["\\\"url\\\":", "\\\"name\\\":", "\\\"size\\\":", "\\\"modifiedAt\\\":", "\\\"bundleIdentifier\\\":", "1e309",
                "9223372036854775807", "\\\\u0000", "\\\\ud83e\\\\uddf9", "null", "true", "5e-324", "-0.0"],
    "url": ["file://", "file:///", "localhost", "%2F", "%00", "%2e%2e", "/../", "/./", "//", "[::1]", ":80", "?", "#", "%FF"],
    "quoting": ["'", "\\\\", "'\\\\''", "$(", "`", "\\x0A", "\\xFF", "-", "; ", "*", "~", "!"],
    "order": ["orvane removal order 2\\x00", "trash\\x00", "delete\\x00", "item\\x00", "daemon\\x00", "/..", "/.", "//", "\\x00",
              "18446744073709551615", "18446744073709551616", "\\xE2\\x80\\xAE", "00"],
}  # fmt: skip


def escaped(word: str) -> str:
    """As libFuzzer's dictionaries have it: escapes stay, quotes get one."""
    return re.sub(r'(?<!\\)"', r'\\"', word)


def lists(form: int, seed: int) -> Iterator[bytes]:
    said = subprocess.run(["/usr/bin/python3", LISTS, str(seed), "100"], check=True, capture_output=True).stdout
    for row in json.loads(said)[form::3]:
        yield base64.b64decode(row["base64"])


def orders() -> Iterator[bytes]:
    head = [b"orvane removal order 2", b"/mnt/mac", b"3", b"4", b"/Users/a"]
    item = [b"item", b"/Library/Caches/it's", b"1", b"2"]
    daemon = [b"daemon", b"/Library/LaunchDaemons/Foo.app", b"18446744073709551615", b"0"]
    for fields in (
        [*head, b"trash", *item, b"/Users/a/.Trash/it's"],
        [*head, b"delete", *item, b"", *daemon, b"", *item, b"", *item, b""],
        [b"orvane removal order 2", b"/", b"1", b"1", b"/", b"delete", *daemon, b""],
    ):
        yield b"".join(field + b"\0" for field in fields)


def catalogs() -> Iterator[bytes]:
    for row in json.loads((FOUNDATION / "catalog-read.json").read_text()):
        yield json.dumps(row).encode()
    record = {"url": "file:///A.app", "name": "A\u0301 \"\\ 🧹", "version": "1", "isSystemApplication": False, "isInstalled": True}
    for size, date in ((0, 5.5), (2**63 - 1, -0.0), (-(2**63), 1e300), (2**53 + 1, 5e-324)):
        yield json.dumps([dict(record, size=size, modifiedAt=date, bundleIdentifier="org.example.a", more=[[{}]])]).encode()


def seeds(target: str, seed: int) -> list[bytes]:
    names = [b"/Applications/Foo.app", b"it's \"a\" $(x)\n\\", b"a//b/../c/./", "日本語🧹".encode(), bytes(range(1, 256))]
    return {
        "xml": lambda: list(lists(0, seed)),
        "binary": lambda: list(lists(1, seed)),
        "old-style": lambda: list(lists(2, seed)),
        "catalog": lambda: list(catalogs()),
        "url": lambda: names + [row["input"].encode() for row in json.loads((FOUNDATION / "file-urls.json").read_text())],
        "quoting": lambda: names,
        "order": lambda: list(orders()),
    }[target]()


def run(task: harness.Task) -> harness.Outcome:
    (target,) = task.options
    subprocess.run([harness.REPOSITORY / "scripts" / "build", "fuzz"], check=True, stdout=subprocess.DEVNULL)
    with tempfile.TemporaryDirectory(prefix="orvane-fuzz-") as name:
        scratch = pathlib.Path(name)
        kept = scratch / "kept" if task.is_wrong else FOLDER / "corpus" / target
        begin = scratch / "seeds"
        begin.mkdir()
        kept.mkdir(parents=True, exist_ok=True)
        for number, each in enumerate(seeds(target, task.seed)):
            (begin / str(number)).write_bytes(each)
        (scratch / "words").write_text("".join(f'"{word}"\n' for word in map(escaped, WORDS[target])))
        ended = subprocess.run(
            [FOLDER / "bin" / "orvane-fuzz", target, "wrong" if task.is_wrong else "own", f"-runs={task.rounds}",
             f"-seed={task.seed}", f"-max_len={LONGEST[target]}", f"-dict={scratch / 'words'}", "-timeout=10",
             "-rss_limit_mb=1024", "-print_final_stats=1", f"-artifact_prefix={scratch}/", kept, begin],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False,
        )  # fmt: skip
    said = ended.stderr.decode(errors="replace")
    executed = re.search(r"stat::number_of_executed_units: (\d+)", said)
    covered = re.findall(r"cov: (\d+)", said)
    if ended.returncode == 0:
        return harness.Outcome(int(executed[1]), 0, "executions", note=f"{covered[-1]} edges reached")
    # What ends it: a promise, a sanitizer, or libFuzzer's own limits; and the input.
    found = re.search(r"(broken promise: .*|ERROR: .*|.*runtime error: .*)", said)
    if found is None:
        raise RuntimeError(said)
    rounds = re.findall(r"^#(\d+)", said, re.MULTILINE)
    what = re.search(r"Base64: (.*)", said)
    return harness.Outcome(int(rounds[-1]) if rounds else 1, 1, "executions", note=f"{found[1]} for {what[1] if what else '?'}")


if __name__ == "__main__":
    harness.main(run)
