"""Launch agents and daemons, most of which name an application in their text only, not in their file name."""

import plistlib

from .applications import HOME

OWN_AGENTS = HOME + "/Library/LaunchAgents"
AGENTS = "/Library/LaunchAgents"
DAEMONS = "/Library/LaunchDaemons"


def write_launch_items(volume):
    for folder, name, label, program in (
        (OWN_AGENTS, "org.example.amberfold.sync", "org.example.amberfold.sync",
         "/Applications/Amberfold.app/Contents/MacOS/Amberfold"),
        (OWN_AGENTS, "nightly-tidying", "Nightly Tidying",
         "/Applications/Lumenpress.app/Contents/MacOS/Lumenpress"),
        (OWN_AGENTS, "org.example.lanternfish.glow", "org.example.lanternfish.glow",
         "/Applications/Lanternfish.app/Contents/MacOS/Lanternfish"),
        (OWN_AGENTS, "com.example.unclaimed.agent", "com.example.unclaimed.agent",
         "/usr/local/bin/unclaimed"),
        (AGENTS, "com.example.updates", "Update Check",
         "/Library/Application Support/Updates/check --for org.example.amberfold"),
        (AGENTS, "com.example.kestrelboard.menu", "com.example.kestrelboard.menu",
         "/Applications/Kestrelboard.app/Contents/Library/LoginItems/Kestrelboard Agent.app"),
        (DAEMONS, "com.example.helper-tool", "org.example.amberfold.helper",
         "/Library/PrivilegedHelperTools/org.example.amberfold.helper"),
        (DAEMONS, "com.example.kestrelboard.server", "com.example.kestrelboard.server",
         "/Library/PrivilegedHelperTools/com.example.kestrelboard.server"),
        (DAEMONS, "com.example.cartovane.tiles", "com.example.cartovane.tiles", "/usr/local/bin/tiles"),
        (DAEMONS, "com.example.unclaimed.daemon", "com.example.unclaimed.daemon", "/usr/local/bin/unclaimed"),
    ):
        keys = {"Label": label, "ProgramArguments": program.split(" --"), "RunAtLoad": True}
        volume.file(f"{folder}/{name}.plist", plistlib.dumps(keys, sort_keys=False))
    _write_odd_ones(volume)


def _write_odd_ones(volume):
    """Items that name Wicketline or Echolathe and cannot be read as the others can."""
    agent = {"Label": "org.example.wicketline.agent", "Program": "/usr/local/bin/wicketline"}
    text = plistlib.dumps(agent)
    volume.file(OWN_AGENTS + "/capitals.PLIST", text)
    volume.file(OWN_AGENTS + "/binary.plist", plistlib.dumps(agent, fmt=plistlib.FMT_BINARY))
    volume.file(OWN_AGENTS + "/utf-16.plist", text.decode().replace("UTF-8", "UTF-16").encode("utf-16"))
    volume.file(OWN_AGENTS + "/broken.plist", b"<plist><dict><key>Label</key> org.example.wicketline")
    numbered = {"Label": 7, "Program": "/opt/Echolathe/bin/tuner"}
    volume.file(OWN_AGENTS + "/number.plist", plistlib.dumps(numbered))
    volume.file(OWN_AGENTS + "/notes.txt", b"org.example.wicketline is started by hand\n")
    volume.link(OWN_AGENTS + "/elsewhere.plist", "/Volumes/Elsewhere/org.example.wicketline.plist")
