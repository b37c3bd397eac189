"""What the sample's files hold: noise that no file system can compress away, and programs that run."""

import platform
import random
import struct
import sys

_NOISE = random.Random(1).randbytes(1 << 20)

# Machine code that waits for ever, so that a signal ends it: its ELF machine number and its instructions.
_WAITING = {
    # again: mov eax, 34 (pause); syscall; jmp again
    "x86_64": (62, bytes.fromhex("b822000000 0f05 ebf7")),
    # mov x0..x4, 0; again: mov x8, 73 (ppoll); svc 0; b again
    "aarch64": (183, struct.pack("<8I", 0xD2800000, 0xD2800001, 0xD2800002, 0xD2800003, 0xD2800004,
                                 0xD2800928, 0xD4000001, 0x17FFFFFE)),
}


def noise(size):
    return (_NOISE * (size // len(_NOISE) + 1))[:size]


def program(size):
    """A program that starts on this machine and waits until it is ended; noise where none is known here."""
    if not sys.platform.startswith("linux") or platform.machine() not in _WAITING:
        return noise(size)
    machine, code = _WAITING[platform.machine()]
    base, headers = 0x400000, 64 + 56
    length = headers + len(code)
    file_header = struct.pack("<16sHHIQQQIHHHHHH", b"\x7fELF\x02\x01\x01", 2, machine, 1, base + headers,
                              64, 0, 0, 64, 56, 1, 64, 0, 0)
    segment = struct.pack("<IIQQQQQQ", 1, 5, 0, base, base, length, length, 0x1000)
    image = file_header + segment + code
    return image + noise(max(size - len(image), 0))
