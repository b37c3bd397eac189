#!/usr/bin/python3
"""An authentication agent without a window.

    authentication-agent.py PROCESS LOG ANSWER...

Waits for the authorization service, registers for the process with that id and prints "ready". Every prompt is a line of
JSON in LOG. The answers are given one after the other, the last one for all further prompts:

    approve   passes the password check as a desktop's agent does, through polkit's own checker and PAM
    refuse    ends the prompt without a password, as after three wrong ones
    dismiss   is the Cancel button
    fail      is an error of the agent's
    die       ends the agent in the middle of the prompt
    kill      kills the program that asks
    abandon   kills the process that the agent is registered for; a prompt that is then taken away is logged

Without answers it ends as soon as the service is there.
"""
import json
import os
import signal
import subprocess
import sys

from gi.repository import Gio, GLib

AUTHORITY = "org.freedesktop.PolicyKit1"
AGENT_PATH = "/org/example/orvane/Agent"
INTERFACE = """<node><interface name="org.freedesktop.PolicyKit1.AuthenticationAgent">
  <method name="BeginAuthentication">
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="a{ss}" direction="in"/><arg type="s" direction="in"/><arg type="a(sa{sv})" direction="in"/>
  </method>
  <method name="CancelAuthentication"><arg type="s" direction="in"/></method>
</interface></node>"""


def log(entry):
    with open(LOG, "a", encoding="utf-8") as file:
        file.write(json.dumps(entry) + "\n")


def answer_with(invocation, cookie, details):
    answer = ANSWERS.pop(0) if len(ANSWERS) > 1 else ANSWERS[0]
    if answer == "approve":
        subprocess.run(["/usr/lib/polkit-1/polkit-agent-helper-1", "root"], input=cookie.encode() + b"\n",
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    elif answer == "dismiss":
        invocation.return_dbus_error(AUTHORITY + ".Error.Cancelled", "dismissed")
        return
    elif answer == "fail":
        invocation.return_dbus_error(AUTHORITY + ".Error.Failed", "failed")
        return
    elif answer == "die":
        os._exit(1)
    elif answer == "kill":
        os.kill(int(details["polkit.caller-pid"]), signal.SIGKILL)
    elif answer == "abandon":
        os.kill(PROCESS, signal.SIGKILL)
        return
    invocation.return_value(None)


def called(_connection, _sender, _path, _interface, method, parameters, invocation):
    if method == "CancelAuthentication":
        log({"taken away": True})
        invocation.return_value(None)
        return
    action, message, _icon, details, cookie, identities = parameters.unpack()
    users = [identity["uid"] for kind, identity in identities if kind == "unix-user"]
    log({"action": action, "message": message, "users": users})
    answer_with(invocation, cookie, details)


def start_time():
    with open(f"/proc/{PROCESS}/stat", encoding="utf-8", errors="replace") as file:
        return int(file.read().rsplit(")", 1)[1].split()[19])


def appeared(connection, *_):
    if not ANSWERS:
        sys.exit(0)
    subject = ("unix-process", {"pid": GLib.Variant("u", PROCESS), "start-time": GLib.Variant("t", start_time())})
    connection.call_sync(AUTHORITY, "/org/freedesktop/PolicyKit1/Authority", AUTHORITY + ".Authority",
                         "RegisterAuthenticationAgent",
                         GLib.Variant("((sa{sv})ss)", (subject, "C", AGENT_PATH)), None, 0, -1, None)
    # In one piece: who waits for it may be gone after the first byte.
    os.write(sys.stdout.fileno(), b"ready\n")


PROCESS, LOG, ANSWERS = int(sys.argv[1]), sys.argv[2], sys.argv[3:]
bus = Gio.bus_get_sync(Gio.BusType.SYSTEM)
bus.register_object(AGENT_PATH, Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], called, None, None)
Gio.bus_watch_name_on_connection(bus, AUTHORITY, Gio.BusNameWatcherFlags.NONE, appeared, None)
GLib.MainLoop().run()
