"""A snapshot of the processes below another one."""

import os
import signal
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Process:
    pid: int
    parent: int
    name: str


def _read(pid: str) -> Process | None:
    try:
        text = Path(f"/proc/{pid}/stat").read_text(encoding="utf-8")
    except (FileNotFoundError, ProcessLookupError):
        return None
    name = text[text.index("(") + 1 : text.rindex(")")]
    state, parent = text[text.rindex(")") + 2 :].split()[:2]
    return None if state == "Z" else Process(int(pid), int(parent), name)


class Tree:
    """The live descendants of a process."""

    def __init__(self, root: int) -> None:
        found = [_read(entry.name) for entry in Path("/proc").iterdir() if entry.name.isdigit()]
        every = [process for process in found if process]
        inside = {root}
        while more := {p.pid for p in every if p.parent in inside} - inside:
            inside |= more
        self.processes = [process for process in every if process.pid in inside - {root}]

    def names(self) -> list[str]:
        return [process.name for process in self.processes]

    def kill(self, name: str, number: signal.Signals = signal.SIGKILL) -> None:
        """Signals the only process with that name."""
        (process,) = [process for process in self.processes if process.name == name]
        os.kill(process.pid, number)
