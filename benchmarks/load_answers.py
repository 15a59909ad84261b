"""The answer to a request, as its process printed it and as the instrument's journal recorded it."""

import json
import re
from collections import defaultdict
from collections.abc import Iterable
from typing import Any, NamedTuple

import jsonschema
from programs import check_document

NOT_CONNECTED = (
    b'{\n    "ErrorCode": 10053,\n    "Msg": "Unable to connect to GC!"\n}\n',
    b"EstablishConnection An error occured while connecting to the GC.\n",
)
TOO_MANY_CLIENTS = 211

# Values that distinguish moments of the instrument: (channel, id), and their place in the report.
MOMENT = {
    (0, 58): ("Curr_stream",),
    (0, 2202): ("Last_counter",),
    (0, 104): ("Ambient_press",),
    (0, 100): ("Sample_line_temp", "Actual"),
    (1, 300): ("Channel1", "Column_temp", "Actual"),
    (1, 302): ("Channel1", "Injector_temp", "Actual"),
    (1, 304): ("Channel1", "Column_press", "Actual"),
    (1, 307): ("Channel1", "TCD", "Auto_zero"),
    (2, 300): ("Channel2", "Column_temp", "Actual"),
    (2, 302): ("Channel2", "Injector_temp", "Actual"),
    (2, 304): ("Channel2", "Column_press", "Actual"),
    (2, 307): ("Channel2", "TCD", "Auto_zero"),
}
# Other members of a status report that change under this load, or with the clock.
CHANGING = ["GC_time", "Run_time", "Run_type", "GC_state", "Auto_state"]
# By option: how its first call is recognised, and the parameters that distinguish its requests.
FIRST_CALL = {
    ("Read", 2202): "-t",
    ("Read", 601): "-g",
    ("Read", 2028): "-a",
    ("Read", 144): "-q",
    ("ProgramInfo", None): "-c",
    ("Write", 39): "-V",
    ("Write", 62): "-R",
    ("Command", 35): "-P",
    ("Write", 15): "-Q",
    ("Command", 26): "-C",
}
TOLD = {
    "-t": list(MOMENT),
    "-V": [(0, 39)],
    "-R": [(0, 62)],
    "-q": [(0, 15)],
    "-Q": [(0, 15)],
    "-c": [(1, 1230)],
    "-C": [(1, 1230)],
}


class Answer(NamedTuple):
    """An option ("" if not connected), the values that distinguish the answer, and 0 or a status."""

    option: str
    told: tuple[float, ...]
    status: int


class Connection(NamedTuple):
    """One connection in the journal, in the instrument's time."""

    answer: Answer
    began: float
    ended: float


def read_journal(lines: Iterable[bytes]) -> list[Connection]:
    connections: dict[int, list[dict[str, Any]]] = defaultdict(list)
    for line in lines:
        entry = json.loads(line)
        connections[entry["connection"]].append(entry)
    return [
        Connection(answer_of(calls), calls[0]["time"], calls[-1]["time"])
        for calls in connections.values()
    ]


def answer_of(calls: list[dict[str, Any]]) -> Answer:
    first = calls[0]
    if first["call"] == "Connect" and first["status"] != 0:
        return Answer("", (), first["status"])
    names = [call["call"] for call in calls]
    if names[0] != "Connect" or names[-1] != "Disconnect" or len(names) < 3:
        return Answer("cut off", (), 0)
    kind = calls[1]["call"]
    ids = [record["id"] for record in calls[1].get("records", [])]
    marks = [*ids, calls[1].get("command")]
    option = next(FIRST_CALL[kind, mark] for mark in marks if (kind, mark) in FIRST_CALL)
    values = {}
    if option in TOLD:
        records = next(call["records"] for call in calls if "records" in call)
        # A parameter has either a real or an integer value, and 0 in the other field.
        values = {(r["channel"], r["id"]): r["real"] or r["int"] for r in records}
    told = tuple(values[address] for address in TOLD.get(option, []))
    return Answer(option, told, calls[-2]["status"])


class Question(NamedTuple):
    """Arguments of the tool, the values they send, and the report expected after a download."""

    arguments: list[str]
    told: tuple[float, ...] = ()
    table: dict[str, Any] | None = None


class Finished(NamedTuple):
    """A process that has ended; times in seconds of the monotonic clock."""

    question: Question
    began: float
    ended: float
    status: int
    stdout: bytes
    stderr: bytes


class Reader:
    """Parses what processes printed; an answer to a different question is an AssertionError.

    `constant`: by option, the configuration and alarm report as printed, which never change, and a
    status report, most of which never changes.
    """

    def __init__(self, constant: dict[str, bytes]) -> None:
        self._status = steady(json.loads(constant.pop("-t")))
        self._constant = constant
        self._checked: set[tuple[str, bytes]] = set()
        self._stands: dict[str, dict[str, Any] | None] = {}

    def read(self, done: Finished) -> Answer:
        option = done.question.arguments[0]
        assert done.status == 0, f"exit status {done.status}"
        if (done.stdout, done.stderr) == NOT_CONNECTED:
            return Answer("", (), TOO_MANY_CLIENTS)
        self._check_schema(option, done)
        if option == "-V":
            said = re.match(rb"writeParam\. return (\d+)\.\n", done.stderr)
            assert said and not done.stdout, done
            return Answer(option, done.question.told, int(said[1]))
        document = json.loads(done.stdout)
        if option in ("-R", "-P", "-Q", "-C"):
            status = document["ErrorCode"]
            accepted = document["Msg"] in ("Accepted", "Success!", "Success")
            assert accepted == (status == 0), document
            if option in ("-Q", "-C"):
                # If a run begins meanwhile, only part of the table is written.
                self._stands[option.lower()] = done.question.table if accepted else None
            return Answer(option, done.question.told, status)
        assert "ErrorCode" not in document and not done.stderr, done
        return Answer(option, self._told(option, document, done.stdout), 0)

    def _told(self, option: str, document: dict[str, Any], printed: bytes) -> tuple[float, ...]:
        if option in self._constant:
            assert printed == self._constant[option], f"a different report: {printed!r}"
            return ()
        if option == "-t":
            told = tuple(member(document, path) for path in MOMENT.values())
            assert steady(document) == self._status, f"a different report: {printed!r}"
            return told
        table = self._stands.get(option)
        assert table in (None, document), f"not the table that was sent last: {printed!r}"
        if option == "-q":
            return (document["Table_repeat"],)
        return (document["rows"][0]["Level_amt"],)

    def _check_schema(self, option: str, done: Finished) -> None:
        """Once for all documents that differ only in digits, since their values are compared anyway."""
        shape = (option, re.sub(rb"[0-9]+", b"0", done.stdout))
        if shape not in self._checked:
            try:
                check_document(done.stdout, done.question.arguments)
            except jsonschema.ValidationError as error:
                raise AssertionError(f"not a valid report: {error.message}") from error
            self._checked.add(shape)


def member(document: Any, path: tuple[str, ...]) -> Any:
    for name in path:
        document = document[name]
    return document


def steady(document: dict[str, Any]) -> dict[str, Any]:
    """Removes the changing members from a status report; returns `document` itself."""
    for path in [*MOMENT.values(), *((name,) for name in CHANGING)]:
        del member(document, path[:-1])[path[-1]]
    return document
