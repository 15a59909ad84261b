"""Many concurrent clients that ask one instrument for everything."""

import itertools
import json
import os
import pickle
import random
import signal
import sys
import time
import traceback
from collections.abc import Iterator
from pathlib import Path
from typing import Any, NoReturn

from load_answers import Finished, Question


def tables(sequence: Any, calibration: Any, folder: Path, first: int) -> Iterator[Question]:
    """Downloads of entirely different tables, each followed by its report."""
    file = folder / "table.json"
    for number in itertools.count(first):
        mark = number % 900 + 1
        lines = [
            {**sequence["rows"][0], "Repeat": mark, "Slot": line % 11, "Flush_time": mark / 16}
            for line in range(number % 20 + 1)
        ]
        repeat = {"Table_repeat": mark, "total": len(lines), "rows": lines}
        rows = [{**row, "Level_amt": mark + row["ID"] / 16} for row in calibration["rows"]]
        for option, table, told in (
            ("-Q", {**sequence, **repeat}, mark),
            ("-C", {**calibration, "rows": rows}, rows[0]["Level_amt"]),
        ):
            file.write_text(json.dumps(table))
            yield Question([option, str(file)], (told,), table)
            yield Question([option.lower()])


def draw(chance: random.Random) -> Question:
    """A client's next question."""
    stream = chance.randint(1, 4)
    kinds = [
        (55, Question(["-t"])),
        (10, Question(["-g"])),
        (10, Question(["-a"])),
        (12, Question(["-V", str(stream)], (stream,))),
        (8, Question(["-R", "single", "-v", str(stream)], (stream,))),
        (5, Question(["-P"])),
    ]
    weights, wanted = zip(*kinds)
    return chance.choices(wanted, weights)[0]


def questions(number: int, at_once: int, downloads: Iterator[Question]) -> Iterator[Question]:
    """The questions of one client. A table takes many calls, which would mix with those of another
    download: as with the web server, only one at a time is downloaded and read back, all by the first
    client."""
    chance = random.Random(number)
    while True:
        if number == 0:
            yield next(downloads)
        if number != 0 or at_once == 1:
            yield draw(chance)


def ask(tool: list[str], question: Question, outputs: tuple[int, int]) -> Finished:
    """Runs the tool; `outputs` are files in memory, which are reused."""
    actions = [(os.POSIX_SPAWN_DUP2, file, 1 + n) for n, file in enumerate(outputs)]
    command = [*tool, *question.arguments]
    began = time.monotonic()
    pid = os.posix_spawn(command[0], command, os.environ, file_actions=actions)
    status = os.waitpid(pid, 0)[1]
    ended = time.monotonic()
    said = [os.pread(file, os.fstat(file).st_size, 0) for file in outputs]
    for file in outputs:
        os.ftruncate(file, 0)
        os.lseek(file, 0, os.SEEK_SET)
    return Finished(question, began, ended, status, *said)


class Crowd:
    """Clients that ask one question after another. Each is a process: a single one could not start
    processes as fast as they end."""

    def __init__(self, tool: list[str], folder: Path) -> None:
        self._tool = tool
        self._folder = folder
        self._running: list[int] = []

    def run(self, at_once: int, seconds: float, downloads: Iterator[Question]) -> list[Finished]:
        """Returns the finished requests of one client after another, each in the order they ended."""
        ready, go = os.pipe()
        for number in range(at_once):
            pid = os.fork()
            if pid == 0:
                os.close(go)
                os.read(ready, 1)  # returns when all have started
                self._client(questions(number, at_once, downloads), seconds)
            self._running.append(pid)
        os.close(ready)
        os.close(go)
        finished = []
        for pid in list(self._running):
            status = os.waitpid(pid, 0)[1]
            self._running.remove(pid)
            if status != 0:
                sys.exit("a client failed")
            finished += pickle.loads((self._folder / str(pid)).read_bytes())
        return finished

    def kill(self) -> None:
        for pid in self._running:
            os.kill(pid, signal.SIGKILL)
            os.waitpid(pid, 0)

    def _client(self, wanted: Iterator[Question], seconds: float) -> NoReturn:
        """Stores its finished requests in a file."""
        status = 1
        try:
            outputs = (os.memfd_create("stdout"), os.memfd_create("stderr"))
            end = time.monotonic() + seconds
            finished = []
            while time.monotonic() < end:
                finished.append(ask(self._tool, next(wanted), outputs))
            (self._folder / str(os.getpid())).write_bytes(pickle.dumps(finished))
            status = 0
        except Exception:
            traceback.print_exc()
        finally:
            os._exit(status)  # without the clean-up that is left to the parent
