"""A volume with links at places that the program looks at or into: absolute, climbing, in circles, into the machine and
to a tempting volume beside it. What the program opened, listed and changed is read from the trace of its system calls.
"""

import os
import pathlib
import plistlib
import random
import re
import shutil
import subprocess
import tempfile

import harness

HOME = "Users/sample"
LIBRARY = ["Caches", "Preferences", "Saved Application State", "HTTPStorages", "WebKit", "Containers",
           "Application Support", "Logs", "LaunchAgents", "Group Containers"]  # fmt: skip
CATALOG = f"{HOME}/Library/Application Support/Orvane/applications.json"
NAMES = ["Foo", "Bar"]
# What a program on Linux needs for itself, and the processes that run. No link of these volumes leads there.
OWN = re.compile(
    r"/(usr/)?lib(64)?(/|$)|/etc/(ld\.so\.(cache|preload)|localtime|nsswitch\.conf|passwd|group)$|/usr/share/(zoneinfo|icu|locale)/"
    r"|/proc(/|$)|/dev/(null|tty|pts/\d+)$|/sys/devices/system/cpu|(pipe|socket|anon_inode|/memfd):"
)
OPENING = {"open", "openat", "openat2", "creat"}
CHANGING = re.compile(
    r"^(unlink|rename|f?chmod|f?truncate|l?f?chown|[lf]?setxattr|[lf]?removexattr|mkdir|rmdir|link|symlink|mknod|utime|mount|umount)"
)
CALL = re.compile(r"(\w+)\((.*)\) += (-?\d+)(?:<(.*?)>)?(?: |$)")
# Descriptors with their paths, and texts.
PLACES = re.compile(r'(?:\d+|AT_FDCWD)<((?:[^>\\]|\\.)*)>|"((?:[^"\\]|\\.)*)"')


def make_volume(root: pathlib.Path) -> None:
    """Applications with everything that they can leave behind."""

    def file(path: str, contents: bytes = b"x") -> None:
        (root / path).parent.mkdir(parents=True, exist_ok=True)
        (root / path).write_bytes(contents)

    for folder in LIBRARY:
        (root / HOME / "Library" / folder).mkdir(parents=True, exist_ok=True)
    for folder in [f"{HOME}/.Trash", f"{HOME}/Applications", "System/Applications", "Library/LaunchDaemons"]:
        (root / folder).mkdir(parents=True, exist_ok=True)
    for name in NAMES:
        identifier = f"com.example.{name.lower()}"
        bundle = f"Applications/{name}.app/Contents"
        information = {"CFBundleIdentifier": identifier, "CFBundleName": name, "CFBundleIconFile": "icon"}
        file(f"{bundle}/Info.plist", plistlib.dumps(information))
        file(f"{bundle}/MacOS/{name}")
        file(f"{bundle}/Resources/icon.icns")
        library = f"{HOME}/Library"
        for item in [f"Caches/{identifier}/a/b", f"Preferences/{identifier}.plist", f"Caches/{name}/a",
                     f"Saved Application State/{identifier}.savedState/a", f"HTTPStorages/{identifier}/a",
                     f"WebKit/{identifier}/a", f"Containers/{identifier}/Data/Library/a", f"Logs/{name}/a",
                     f"Application Support/{name}/a", f"Group Containers/group.{identifier}/a"]:  # fmt: skip
            file(f"{library}/{item}")
        agent = plistlib.dumps({"Label": identifier, "ProgramArguments": [f"/Applications/{name}.app/x"]})
        for folder in [f"{library}/LaunchAgents", "Library/LaunchAgents", "Library/LaunchDaemons"]:
            file(f"{folder}/{identifier}.plist", agent)


def places(root: pathlib.Path) -> list[str]:
    return sorted(str(path.relative_to(root)) for path in root.rglob("*")) + [CATALOG, str(pathlib.Path(CATALOG).parent)]


def put_link(root: pathlib.Path, place: str, outside: pathlib.Path, chance: random.Random) -> None:
    at = root / place
    parent = at.parent
    # Only what is no link can be built in; another link may already be on the way.
    if any((root / each).is_symlink() for each in pathlib.Path(place).parents):
        return
    parent.mkdir(parents=True, exist_ok=True)
    if at.is_symlink() or at.is_file():
        at.unlink()
    elif at.is_dir():
        shutil.rmtree(at)
    climb = "../" * chance.choice([2, len(pathlib.Path(place).parts) + 3, 40])
    twin = f"{outside}/{place}"
    target = chance.choice(
        [str(outside), twin, climb + str(outside)[1:], climb + twin[1:], at.name, "/" + place, "/etc", "/var", "/root",
         "/", "..", ".", climb, climb + "etc", "/" + HOME, "/nowhere", f"../{at.name}/x"]
    )  # fmt: skip
    at.symlink_to(target)


def looked(folder: pathlib.Path) -> list[tuple]:
    def of(path: pathlib.Path) -> tuple:
        status = path.lstat()
        return (str(path), status.st_ino, status.st_mode, status.st_size, status.st_mtime_ns, status.st_ctime_ns)

    return [of(folder)] + sorted(map(of, folder.rglob("*")))


def violations(trace: str, root: str) -> list[str]:
    """The calls that opened, listed or changed what is neither on the volume nor the program's own."""

    def is_allowed(path: str) -> bool:
        return path == root or path.startswith(root + "/") or OWN.match(path) is not None

    found = []
    for line in trace.splitlines():
        call = CALL.match(line)
        if call is None or int(call[3]) < 0:
            continue
        name, arguments, _, opened = call.groups()
        if name in OPENING:
            # What the volume lies in is held for its identity alone: whether the Trash lies in an item is asked upwards.
            is_above = "O_PATH" in arguments and opened is not None and f"{root}/".startswith(opened.rstrip("/") + "/")
            wrong = not is_above and (opened is None or not is_allowed(opened))
        elif name == "getdents64" or CHANGING.search(name):
            # By descriptors alone: a path with several components could lead anywhere by now.
            wrong = not all(is_allowed(descriptor) if descriptor else "/" not in text or is_allowed(text)
                            for descriptor, text in PLACES.findall(arguments))  # fmt: skip
        else:
            wrong = False
        if wrong:
            found.append(line)
    return found


def traced(command: list, scratch: pathlib.Path) -> tuple[int, list[str]]:
    with tempfile.TemporaryDirectory(dir=scratch) as folder:
        status = subprocess.run(
            ["strace", "-ff", "--seccomp-bpf", "-y", "-s", "4096", "-e",
             "trace=%file,getdents64,fchmod,fchown,ftruncate,fsetxattr,fremovexattr", "-o", f"{folder}/trace", *command],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=120, check=False, cwd=command[2],
            env=dict(os.environ, LC_ALL="C"),
        ).returncode  # fmt: skip
        traces = [path.read_text(errors="replace") for path in sorted(pathlib.Path(folder).iterdir())]
    if not any("execve(" in trace for trace in traces):
        raise RuntimeError("strace has traced nothing")
    return status, [line for trace in traces for line in violations(trace, str(command[2]))]


def run(task: harness.Task) -> harness.Outcome:
    chance = task.random()
    trials = 0
    failures: list[str] = []
    while trials < task.rounds and not (task.is_wrong and failures):
        with tempfile.TemporaryDirectory(prefix="orvane-hostile-") as name:
            scratch = pathlib.Path(name)
            root, outside = scratch / "volume", scratch / "outside"
            make_volume(root)
            make_volume(outside)
            every = places(root)
            # In turn, so that none is forgotten; and some more at random.
            for place in [every[(task.seed + trials) % len(every)], *chance.sample(every, chance.randrange(6))]:
                put_link(root, place, outside, chance)
            before = looked(outside)
            program = [str(harness.PROGRAMS / "orvane-cli"), "--root", str(root), "--home", f"/{HOME}"]
            commands = [[*program, "list", "--rescan", "--json"]]
            for application in NAMES:
                commands += [[*program, "plan", f"/Applications/{application}.app", "--json"],
                             [*program, "remove", f"/Applications/{application}.app", "--yes"]]  # fmt: skip
            commands[-1].append("--permanently")
            if task.is_wrong:
                # No deeper than the places with links lie, lest it goes through the whole machine.
                commands = [["find", "-L", str(root), "-maxdepth", "5", "-name", "Info.plist"]]
            for command in commands:
                status, wrong = traced(command, scratch)
                if not task.is_wrong and status not in (0, 1, 2):
                    wrong.append(f"{command} ended with {status}")
                failures += wrong[:1]
            if looked(outside) != before:
                failures.append("something beside the volume has changed")
        trials += 1
    return harness.Outcome(trials, len(failures), "volumes", note="; ".join(failures[:2]))


if __name__ == "__main__":
    os.umask(0o022)
    harness.main(run)
