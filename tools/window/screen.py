"""A display of its own for the window: Xvfb, the session's message bus and the accessibility bus."""

from __future__ import annotations

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

LAUNCHER = "/usr/libexec/at-spi-bus-launcher"


def enter_session() -> None:
    """Starts this program anew on a message bus of its own, unless it is there already. Call it before Atspi is used."""
    if "ORVANE_OWN_SESSION" in os.environ:
        return
    environment = dict(os.environ, ORVANE_OWN_SESSION="yes", NO_AT_BRIDGE="1")
    for variable in ("DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS", "WAYLAND_DISPLAY"):
        environment.pop(variable, None)
    runtime = Path(tempfile.mkdtemp(prefix="orvane-session-"))
    try:
        status = subprocess.run(
            ["dbus-run-session", "--", sys.executable, "-B", *sys.argv],
            env=dict(environment, XDG_RUNTIME_DIR=str(runtime)),
            check=False,
        ).returncode
    finally:
        shutil.rmtree(runtime, ignore_errors=True)
    sys.exit(status)


class Screen:
    """A virtual display with an accessibility bus. Leaving the `with` block ends both."""

    def __init__(self, width: int = 1400, height: int = 1000, scale: float = 1):
        self.scale = scale
        self._size = f"{round(width * scale)}x{round(height * scale)}x24"
        self._children: list[subprocess.Popen] = []
        self.display = ""

    def __enter__(self) -> Screen:
        reading, writing = os.pipe()
        self._children.append(
            subprocess.Popen(
                ["Xvfb", "-displayfd", str(writing), "-screen", "0", self._size, "-nolisten", "tcp", "-noreset"],
                pass_fds=[writing],
                stderr=subprocess.DEVNULL,
            )
        )
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError("Xvfb has not started")
        self.display = f":{number}"
        os.environ["DISPLAY"] = self.display
        self._children.append(
            subprocess.Popen([LAUNCHER, "--launch-immediately"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        )
        return self

    def __exit__(self, *_: object) -> None:
        for child in reversed(self._children):
            child.terminate()
            child.wait()

    def environment(self) -> dict[str, str]:
        """What a program needs in order to be seen here, and read aloud."""
        return dict(
            os.environ,
            QT_QPA_PLATFORM="xcb",
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            QT_SCALE_FACTOR=str(self.scale),
        )

    def pixels(self, window: str) -> bytes:
        """What is seen now, in some form that is the same for the same picture."""
        command = ["import", "-display", self.display, "-window", window, "rgb:-"]
        return subprocess.run(command, check=True, capture_output=True).stdout

    def pixel(self, window: str, x: int, y: int) -> tuple[int, int, int]:
        """The red, green and blue, from 0 to 255, that is seen at a place of a window."""
        area = ["-crop", f"1x1+{x}+{y}", "-depth", "8"]
        command = ["import", "-display", self.display, "-window", window, *area, "rgb:-"]
        red, green, blue = subprocess.run(command, check=True, capture_output=True).stdout
        return red, green, blue

    def take_picture(self, path: Path, window: str = "root") -> None:
        """Writes what is seen as PNG. `window` is an X11 window's number."""
        path.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["import", "-display", self.display, "-window", window, f"png24:{path}"], check=True)
