"""Random interleavings of commands, aborts, browser disconnections and kills."""

import json
import os
import random
import signal
import threading
import time
from collections import Counter
from collections.abc import Callable, Iterable
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any

from processes import Tree
from programs import LIMIT, Simulator
from server import HEADERS, PASSWORD, Browser, WebServer, wait_until

Line = dict[str, Any]
Command = tuple[str, str, bytes]

# The command numbers that aborts send to the instrument.
ABORTING = {1, 17}
ABORTS: list[Command] = [
    ("POST", "abort", b'{"when": "now"}'),
    ("POST", "abort", b'{"when": "after-run"}'),
]
SHORT: list[Command] = [
    ("POST", "alarm-reset", b"{}"),
    ("POST", "run", b'{"type": "single", "stream": 1}'),
    ("PUT", "stream", b'{"stream": 1}'),
]


class JournalFile:
    """The lines that a controller appends to its journal file; it keeps only the last ones itself."""

    def __init__(self, path: Path) -> None:
        self._file = path.open("rb")
        self._rest = b""
        self._lines: list[Line] = []
        self._turn = threading.Lock()

    def lines(self) -> list[Line]:
        """All lines so far, oldest first."""
        with self._turn:
            *complete, self._rest = (self._rest + self._file.read()).split(b"\n")
            self._lines += map(json.loads, complete)
            return self._lines

    def close(self) -> None:
        self._file.close()


@dataclass
class Result:
    """What was observed, over any number of interleavings."""

    counts: Counter[str] = field(default_factory=Counter)
    aborts: list[float] = field(default_factory=list)
    """Seconds from the request to the answer."""


class Interleaving:
    """One interleaving; the number of calls seen by the instrument triggers its actions."""

    def __init__(
        self,
        seed: int,
        controller: Simulator,
        journal: JournalFile,
        server: WebServer,
        tables: list[Command],
    ) -> None:
        """`tables`: the downloads to choose from."""
        self._random = random.Random(seed)
        self._controller = controller
        self._journal = journal
        self._server = server
        self._tables = tables
        self._first = len(journal.lines())
        self._logged = len(server.log())
        self._over = threading.Event()
        self.result = Result()

    def _calls(self) -> list[Line]:
        return self._journal.lines()[self._first :]

    def _wait_for_calls(self, count: int) -> None:
        """Waits for this many calls, or until everything is over."""
        deadline = time.monotonic() + LIMIT
        while len(self._journal.lines()) - self._first < count and not self._over.wait(0.001):
            assert time.monotonic() < deadline

    def _give(self, command: Command, after: int, vanishes: bool) -> None:
        self._wait_for_calls(after)
        method, name, body = command
        browser = Browser(self._server.address, PASSWORD)
        path = f"/api/command/{name}"
        headers = {**HEADERS, "Authorization": browser.authorization(method, path)}
        if vanishes:
            head = [f"{method} {path} HTTP/1.1", f"Host: {browser.address}"]
            head += [f"Content-Length: {len(body)}"]
            head += [f"{header}: {text}" for header, text in headers.items()]
            with browser.connect() as connection:
                connection.sendall("\r\n".join([*head, "", ""]).encode() + body)
                self._wait_for_calls(after + self._random.randrange(1, 20))
            self.result.counts["vanished"] += 1
            return
        begun = time.monotonic()
        answer = browser.request(method, path, body, headers, login=False)
        if name == "abort":
            self.result.aborts.append(time.monotonic() - begun)
        self.result.counts[f"{name} {answer.status}"] += 1

    def _disturb(self, kind: str, after: int) -> None:
        self._wait_for_calls(after)
        processes = Tree(self._server.pid).processes
        tools = {process.pid for process in processes if process.name == "GC_Web"}
        # LeakSanitizer looks from a child process, and waits for it for ever if it is killed.
        processes = [process for process in processes if process.parent not in tools]
        if kind == "one" and processes:
            processes = [self._random.choice(processes)]
        for process in processes:
            try:
                os.kill(process.pid, signal.SIGKILL if kind == "one" else signal.SIGTERM)
                self.result.counts[f"{kind} {process.name}"] += 1
            except ProcessLookupError:
                pass

    def run(self) -> Result:
        chance = self._random
        for _ in range(chance.randrange(3)):
            self._controller.fault(
                kind="delay",
                call=chance.choice(["Write", "Command", "Read"]),
                nth=chance.randrange(1, 15),
                seconds=chance.choice([0.02, 0.1, 0.3]),
            )
        commands = chance.choices(self._tables, k=chance.randrange(1, 3))
        commands += chance.choices(SHORT, k=chance.randrange(2))
        commands += chance.choices(ABORTS, k=chance.randrange(3))
        tasks: list[Callable[[], None]] = []
        for command in commands:
            after, vanishes = chance.choice([0, 0, 5, 20]), chance.random() < 0.15
            tasks.append(lambda c=command, a=after, v=vanishes: self._give(c, a, v))
        for kind in chance.choices(["all", "one"], k=chance.randrange(3)):
            tasks.append(lambda k=kind, a=chance.randrange(1, 40): self._disturb(k, a))
        self._carry_out(tasks, len(commands))
        self._check()
        return self.result

    def _carry_out(self, tasks: list[Callable[[], None]], commands: int) -> None:
        faults: list[BaseException] = []
        left = [commands]

        def guarded(task: Callable[[], None], is_command: bool) -> None:
            try:
                task()
            except BaseException as fault:  # raised by the waiting thread
                faults.append(fault)
            if is_command:
                left[0] -= 1
                if left[0] == 0:
                    self._over.set()

        threads = [
            threading.Thread(target=guarded, args=(task, number < commands))
            for number, task in enumerate(tasks)
        ]
        for thread in threads:
            thread.start()
        # A command that waits for calls that never come starts once all others have ended.
        for thread in threads:
            thread.join(0.2)
        self._over.set()
        for thread in threads:
            thread.join(LIMIT)
            assert not thread.is_alive()
        self._controller.ask(verb="fault", clear=True)
        wait_until(self._is_quiet)
        if faults:
            raise faults[0]

    def _is_quiet(self) -> bool:
        if any(p.name != "report" for p in Tree(self._server.pid).processes):
            return False
        answer = Browser(self._server.address).get("/api/unfinished")
        return answer.status == 200 and answer.document["going_on"] == []

    def _check(self) -> None:
        self._check_journal([line for line in self._calls() if line["call"] != "Lost"])
        log = self._server.log()[self._logged :]
        begun = {line["id"]: line for line in log if line["event"] == "begun"}
        ended = {line["id"] for line in log if line["event"] == "ended"}
        interrupted = Browser(self._server.address).get("/api/unfinished").document["interrupted"]
        assert ended <= set(begun)
        shared = sum(line["event"] == "shared" for line in log)
        assert len(begun) + len(ended) + shared == len(log), "a line is duplicated"
        assert {line["id"] for line in interrupted} >= set(begun) - ended, "an outcome is missing"
        # A gateway killed just before the log's first line is reported too, to be on the safe side.
        assert all(begun.get(line["id"], line) == line for line in interrupted)
        self.result.counts["begun"] += len(begun)
        self.result.counts["shared"] += shared
        self.result.counts["interrupted"] += len(interrupted)
        for line in interrupted:
            body = json.dumps({"id": line["id"]}).encode()
            browser = Browser(self._server.address, PASSWORD)
            path = "/api/command/seen"
            login = {**HEADERS, "Authorization": browser.authorization("POST", path)}
            answer = browser.request("POST", path, body, login, login=False)
            assert answer.status == 204

    def _check_journal(self, calls: Iterable[Line]) -> None:
        """A command other than an abort has the instrument to itself, from first to last call."""
        acting: dict[int, list[int]] = {}
        for number, line in enumerate(calls):
            is_act = line["call"] == "Write" or (
                line["call"] == "Command" and line["command"] not in ABORTING
            )
            if is_act:
                acting.setdefault(line["connection"], []).append(number)
        spans = sorted((numbers[0], numbers[-1]) for numbers in acting.values())
        for (_, end), (begin, _) in zip(spans, spans[1:]):
            assert end < begin, "two commands were interleaved"


def tables_of(server: WebServer) -> list[Command]:
    """Downloads of the instrument's current tables."""
    browser = Browser(server.address)
    return [
        ("PUT", name, browser.get(f"/api/{name}").body) for name in ("calibration", "sequence")
    ]
