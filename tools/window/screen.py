"""Displays of its own for the window: Xvfb, or Wayland within it; the session's message bus and the accessibility bus."""

from __future__ import annotations

import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from window.picture import Picture

LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
DEADLINE = 60.0


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


class Display:
    """A virtual display with a pointer and a keyboard. Leaving the `with` block ends it."""

    def __init__(self, width: int = 1400, height: int = 1000, scale: float = 1):
        self.scale = scale
        self.width = round(width * scale)
        self.height = round(height * scale)
        self._children: list[subprocess.Popen] = []
        self.display = ""

    def __enter__(self) -> Display:
        reading, writing = os.pipe()
        options = ["-displayfd", str(writing), "-screen", "0", f"{self.width}x{self.height}x24", "-nolisten", "tcp", "-noreset"]
        self._start("Xvfb", *options, pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError("Xvfb has not started")
        self.display = f":{number}"
        return self

    def __exit__(self, *_: object) -> None:
        for child in reversed(self._children):
            child.terminate()
            child.wait()
        self._children.clear()

    def _start(self, *command: str, **options) -> subprocess.Popen:
        """Starts what ends with this display."""
        child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)
        self._children.append(child)
        return child

    def environment(self) -> dict[str, str]:
        """What a program needs in order to be seen here, and read aloud."""
        return dict(
            os.environ,
            DISPLAY=self.display,
            QT_QPA_PLATFORM="xcb",
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            QT_SCALE_FACTOR=str(self.scale),
        )

    def xdotool(self, *arguments: str) -> str:
        return subprocess.run(
            ["xdotool", *arguments], env=dict(os.environ, DISPLAY=self.display), capture_output=True, text=True, check=False
        ).stdout

    def take_pointer_away(self) -> None:
        """To the corner at the lower right, where it rests on nothing."""
        self.xdotool("mousemove", "9999", "9999")

    def look(self, window: str = "root") -> Picture:
        """What is seen now. `window` is an X11 window's number."""
        command = ["import", "-display", self.display, "-window", window, "-depth", "8", "ppm:-"]
        return Picture.from_ppm(subprocess.run(command, check=True, capture_output=True).stdout)


class Screen(Display):
    """A display with an accessibility bus, on which whatever is seen on any display can be read."""

    def __enter__(self) -> Screen:
        super().__enter__()
        os.environ["DISPLAY"] = self.display
        self._start(LAUNCHER, "--launch-immediately")
        return self


class WaylandDisplay(Display):
    """A Wayland compositor, Weston, within a virtual display whose pointer and keyboard it has."""

    SOCKET = "orvane-wayland"
    # Nothing but windows, and nothing that moves.
    SETTINGS = """
[core]
idle-time=0
[shell]
panel-position=none
locking=false
animation=none
close-animation=none
startup-animation=none
focus-animation=none
[input-method]
path=
"""

    def __enter__(self) -> WaylandDisplay:
        super().__enter__()
        try:
            self._start_compositor()
        except BaseException:
            self.__exit__()
            raise
        return self

    def _start_compositor(self) -> None:
        runtime = Path(os.environ["XDG_RUNTIME_DIR"])
        settings = runtime / "weston.ini"
        settings.write_text(self.SETTINGS)
        options = ["--backend=x11-backend.so", "--use-pixman", f"--config={settings}", f"--socket={self.SOCKET}"]
        size = [f"--width={self.width}", f"--height={self.height}"]
        weston = self._start("weston", *options, *size, env=super().environment())
        deadline = time.monotonic() + DEADLINE
        while not ((runtime / self.SOCKET).exists() and (window := self._window())):
            if weston.poll() is not None or time.monotonic() > deadline:
                raise RuntimeError("weston has not started")
            time.sleep(0.05)
        self.xdotool("windowfocus", "--sync", window)

    def take_pointer_away(self) -> None:
        # Weston's goes as far as the display's, but may have begun elsewhere. It stops at the edges.
        self.xdotool("mousemove", "0", "0", "mousemove", "9999", "9999")

    def _window(self) -> str:
        """The compositor's, as an X11 number."""
        return self.xdotool("search", "--onlyvisible", "--class", "weston").strip()

    def environment(self) -> dict[str, str]:
        return dict(super().environment(), QT_QPA_PLATFORM="wayland", WAYLAND_DISPLAY=self.SOCKET)
