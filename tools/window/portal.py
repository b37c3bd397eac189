"""What answers for the desktop's settings on the session's message bus, in the place of its portal."""

from __future__ import annotations

import json
import subprocess
import sys

PORTAL = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
INTERFACE = "org.freedesktop.portal.Settings"
FORM = f"""<node><interface name="{INTERFACE}">
    <method name="ReadAll"><arg type="as" direction="in"/><arg type="a{{sa{{sv}}}}" direction="out"/></method>
    <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>"""


class StandInPortal:
    """Runs the portal beside this program, which has no main loop. Leaving the `with` block ends it."""

    def __enter__(self) -> StandInPortal:
        self._process = subprocess.Popen(
            [sys.executable, "-B", __file__], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True
        )
        self._wait_for("there")
        return self

    def __exit__(self, *_: object) -> None:
        self._process.stdin.close()
        self._process.wait()
        self._process.stdout.close()

    def set(self, namespace: str, key: str, value: int) -> None:
        """Changes a setting, and tells of it."""
        self._process.stdin.write(json.dumps([namespace, key, value]) + "\n")
        self._process.stdin.flush()
        self._wait_for("set")

    def wait_until_asked(self) -> None:
        self._wait_for("asked")

    def _wait_for(self, word: str) -> None:
        for line in self._process.stdout:
            if line.strip() == word:
                return
        raise RuntimeError("the portal has ended")


def main() -> None:
    from gi.repository import Gio, GLib

    settings: dict[str, dict[str, GLib.Variant]] = {}
    loop = GLib.MainLoop()
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)

    def say(word: str) -> None:
        print(word, flush=True)

    def answer(_bus, _sender, _path, _interface, _method, arguments, invocation):
        asked = {name: settings[name] for name in arguments.unpack()[0] if name in settings}
        invocation.return_value(GLib.Variant("(a{sa{sv}})", (asked,)))
        say("asked")

    def read(channel: GLib.IOChannel, _condition: GLib.IOCondition) -> bool:
        line = channel.readline()
        if not line:
            loop.quit()
            return False
        namespace, key, value = json.loads(line)
        variant = GLib.Variant("u", value)
        settings.setdefault(namespace, {})[key] = variant
        bus.emit_signal(None, PATH, INTERFACE, "SettingChanged", GLib.Variant("(ssv)", (namespace, key, variant)))
        say("set")
        return True

    bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(FORM).interfaces[0], answer, None, None)
    Gio.bus_own_name_on_connection(bus, PORTAL, Gio.BusNameOwnerFlags.NONE, lambda *_: say("there"), None)
    GLib.io_add_watch(GLib.IOChannel.unix_new(sys.stdin.fileno()), GLib.IO_IN | GLib.IO_HUP, read)
    loop.run()


if __name__ == "__main__":
    main()
