"""Uses the installed window as a screen reader's user does, on a machine of its own; scripts/test-package runs it there.

    installed_package.py VOLUME PROMPTS     the sample volume, which the user owns but for /Library, and the agent's log
"""

import json
import os
import pathlib
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "tools"))
from window.screen import Screen, enter_session  # found by the line above

VOLUME, PROMPTS = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
DAEMON = "Library/LaunchDaemons/com.example.helper-tool.plist"
APPLICATION = "Applications/Amberfold.app"


def main() -> None:
    from window.program import Program  # needs the session that is there by now

    assert os.getuid() != 0
    assert (VOLUME / DAEMON).stat().st_uid == 0
    with Screen() as screen, Program(screen, pathlib.Path("/usr/bin/orvane"), "--root", str(VOLUME)) as window:
        agent = subprocess.Popen(
            [sys.executable, "-B", HERE / "authentication-agent.py", str(window.process.pid), PROMPTS, "approve"],
            stdout=subprocess.PIPE,
        )
        try:
            assert agent.stdout.readline() == b"ready\n"
            window.select("Amberfold")
            window.press("push button", "Review Uninstall…")
            window.thing("push button", "Deselect All")
            window.press("push button", "Move Selected to Trash")
            window.thing("label", "Uninstall Result")
            window.thing("label", "Moved 14 item(s) to Trash.")
        finally:
            agent.terminate()
            agent.wait()
    assert not (VOLUME / APPLICATION).exists()
    assert not (VOLUME / DAEMON).exists()
    prompts = [json.loads(line) for line in PROMPTS.read_text(encoding="utf-8").splitlines()]
    assert len(prompts) == 1, prompts
    assert prompts[0]["action"] == "org.example.orvane.remove"
    assert "“Amberfold.app”" in prompts[0]["message"] or "2 items" in prompts[0]["message"], prompts
    print("installed_package: removed with one prompt:", prompts[0]["message"])


if __name__ == "__main__":
    enter_session()
    main()
