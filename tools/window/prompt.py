"""An administrator's prompt that waits to be answered, whoever runs this."""

from __future__ import annotations

import shlex
import shutil
from pathlib import Path


class WaitingPrompt:
    """The program in a folder of its own, where what needs an administrator waits until it is let through.

    Root's program looks for `orvane-remove-as-root` beside itself. Here that is a script that waits for `answer()`, as
    anybody else's waits for the person at the prompt, and then becomes the real one.
    """

    def __init__(self, program: Path, folder: Path):
        program = program.resolve()
        self.program = folder / program.name
        self._answer = folder / "answered"
        folder.mkdir()
        shutil.copy2(program, self.program)
        script = folder / "orvane-remove-as-root"
        script.write_text(
            "#!/bin/sh\n"
            f"while [ ! -e {shlex.quote(str(self._answer))} ]; do sleep 0.05; done\n"
            f'exec {shlex.quote(str(program.parent / "orvane-remove-as-root"))} "$@"\n'
        )
        script.chmod(0o755)

    def answer(self) -> None:
        """Lets this request through, and all that come after it."""
        self._answer.touch()
