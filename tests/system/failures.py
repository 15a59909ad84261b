"""The failure matrix over the wire: operations, faults, and the expected results."""

import json
from collections.abc import Iterator, Mapping, Sequence
from dataclasses import dataclass, field
from typing import Any

from programs import ROOT, Run, load_scenario, signed

# Statuses of the stand-in client library.
ANSWER_TIMEOUT = 107
CONNECTION_LOST = 108
ANSWER_INVALID = 109
INCOMPLETE = 28

Parameters = dict[str, float]
Line = Mapping[str, Any]  # from the journal


@dataclass(frozen=True)
class Step:
    """A write or command of an operation."""

    refusal: str | None  # text of the verdict if it fails; None: the operation continues
    leaves: Mapping[str, float | None]  # parameters that it changes; None: removed
    silent: bool = False  # its failure ends the operation without a verdict


@dataclass(frozen=True)
class Action:
    """What an operation does to the instrument: nothing, if it is a report."""

    steps: Sequence[Step] = ()
    words: str | None = None  # text of the verdict on success
    announced: bool = False  # standard error shows the status of its write
    before: Sequence[Mapping[str, Any]] = ()  # requests to the controller before the run


@dataclass(frozen=True)
class Operation:
    name: str
    arguments: Sequence[str]
    file: object  # contents of the file named by the last argument; None: no file
    action: Action


def line(n: int, run_type: int, repeat: int, stream: int, slot: int, flush: float) -> Parameters:
    return {
        f"mRunType[{n}]": run_type,
        f"mRepeat[{n}]": repeat,
        f"mStream[{n}]": stream,
        f"mSolution[{n}]": slot,
        f"mFlushTime[{n}]": flush,
        f"mCalib[{n}]": 1,
    }


def empty_line(n: int) -> Parameters:
    """A line with its values on insertion."""
    return {"mTotalLines": n, **line(n, 0, 0, 0, 0, 0.0), f"mCalib[{n}]": 0}


NO_LINE = "Refused: unable to set sequence line params"
NO_INSERT = "Refused: unable to insert new sequence"
NO_LEVEL = "Refused: Unable to set new level for"
RUNNING = [{"verb": "command", "number": 16}, {"verb": "step", "seconds": 130}]
FLUSHING = [{"verb": "command", "number": 16}, {"verb": "step", "seconds": 30}]
IDLE = {
    "mAutoState": 0, "mGC_State": 4, "mSeq_line": 0, "mLine_replicate": 0, "mSeq_replicate": 0
}

# The failure matrix of the unit tests reads the same table.
TABLE: Mapping[str, Any] = json.loads((ROOT / "tests" / "failures.json").read_text("utf-8"))

ACTIONS: Mapping[str, Action] = {
    "alarm reset": Action(
        [Step("Refused", {"mTriggered[2]": 0, "mAlarmOverall": 0})],
        "Accepted",
        before=[{"verb": "set", "name": "mTriggered[2]", "value": 1}],
    ),
    "sequence download": Action(
        [
            Step("Refused: unable to set table repeat", {"mTableRepeat": 7, "mContinuous": 1}),
            Step(
                "Refused: unabled to clear orignal table",
                {**dict.fromkeys(line(2, 0, 0, 0, 0, 0)), **empty_line(1)},
            ),
            Step(NO_LINE, line(1, 2, 1, 2, 3, 0.25)),
            Step(NO_INSERT, empty_line(2)),
            Step(NO_LINE, line(2, 3, 9, 3, 1, 2.0)),
            Step(NO_INSERT, empty_line(3)),
            Step(NO_LINE, line(3, 1, 4, 1, 2, 1.0)),
        ],
        "Success!",
    ),
    "calibration download": Action(
        [
            Step(None, {"mLevelAmt1[1]": 0, "mLevelAmt1[2]": 0, "mLevelAmt2[1]": 0}),
            Step(f"{NO_LEVEL} chan[1] peak[2]", {"mLevelAmt1[2]": 9.5}),
            Step(f"{NO_LEVEL} chan[2] peak[1]", {"mLevelAmt2[1]": 8.5}),
            Step(f"{NO_LEVEL} chan[1] peak[1]", {"mLevelAmt1[1]": 1}),
        ],
        "Success",
    ),
    "run single": Action(
        [
            Step("Refused", {"mStream": 3}),
            Step("Refused", {"mGC_State": 2, "mAutoState": 1, "mCurrentStream": 3}),
        ],
        "Accepted",
        announced=True,
    ),
    "run calib": Action(
        [
            Step(
                "Refused",
                {
                    "mStartRunType": 1, "mLevel": 1, "mStream": 3,
                    "mRFCalibType": 1, "mReplicate": 2, "mCurrentReplicate": 1,
                },
            ),
            Step(
                "Refused",
                {"mGC_State": 2, "mAutoState": 3, "mRunType": 1, "mCurrentStream": 3},
            ),
        ],
        "Accepted",
        announced=True,
    ),
    "run auto": Action(
        [
            Step(
                "Refused",
                {
                    "mGC_State": 1, "mAutoState": 6, "mGC_FlushingStream": 1.5, "mRunType": 1,
                    "mCurrentStream": 4, "mSlotNr[1]": 1,
                    "mSeq_line": 1, "mLine_replicate": 1, "mSeq_replicate": 1,
                },
            )
        ],
        "Accepted",
    ),
    "abort now": Action(
        [Step("Refused", {**IDLE, "mGC_CurRunTime": 0}), Step("Refused", {})],
        "Accepted",
        before=RUNNING,
    ),
    "abort auto": Action(
        [Step("Refused", {**IDLE, "mGC_FlushingStream": 0})], "Accepted", before=FLUSHING
    ),
    "stream": Action(
        [Step("", {"mStreamNr": 3, "mStream": 3, "mCurrentStream": 3}, silent=True)],
        announced=True,
    ),
    "solution": Action(
        [Step("Accepted", {"mGC_State": 8, "mSlotNr[2]": 1})], "Refused", announced=True
    ),
}
assert set(ACTIONS) <= set(TABLE["operations"])

OPERATIONS = [
    Operation(name, row["arguments"], row.get("file"), ACTIONS.get(name, Action()))
    for name, row in TABLE["operations"].items()
]


def small_scenario() -> dict[str, Any]:
    """The everyday instrument, its tables reduced to what makes a difference."""
    whole = load_scenario("everyday")
    peaks = [peak for peak in whole["peaks"] if peak["name"] in ("Nitrogen", "Methane", "Propane")]
    component = {"sampleType": 0, "allSampleTypes": 0, "group": 2, "parameter": 2}
    alarms = [whole["alarms"][0], component]
    return {**whole, "peaks": peaks, "alarms": alarms, "sequence": whole["sequence"][:2]}


@dataclass(frozen=True)
class Fault:
    name: str
    fields: Mapping[str, Any]
    status: int = 0  # of the call that it hits, as the tool gets it
    loses: bool = False  # the connection is lost
    effect: bool = True  # the instrument carries out the call
    calls: Sequence[str] = ()  # that it can hit; all if empty

    def hits(self, call: Line) -> bool:
        records = len(call.get("records", []))
        return (not self.calls or call["call"] in self.calls) and (
            self.fields["kind"] != "swap" or records > 1
        )

    def on(self, call: Line, nth: int) -> dict[str, Any]:
        """The fault in the controller's form, for the nth call of this kind."""
        last = {"b": len(call["records"]) - 1} if self.fields["kind"] == "swap" else {}
        return {**self.fields, **last, "call": call["call"], "nth": nth}


def refusal(status: int) -> Fault:
    return Fault(f"0x{status:X}" if status > 2**31 else str(status),
                 {"kind": "status", "status": status}, status, effect=False)


def value(name: str, real: str) -> Fault:
    return Fault(name, {"kind": "value", "records": "all", "real": real}, calls=["Read"])


HANG = Fault("silent", {"kind": "hang"}, ANSWER_TIMEOUT, loses=True, effect=False)
FAULTS = [
    refusal(5),
    refusal(0xFFFFFF37),
    refusal(INCOMPLETE),
    Fault("swapped", {"kind": "swap", "a": 0}, calls=["Read", "Write"]),
    Fault("none", {"kind": "unanswered", "records": "all"}, INCOMPLETE, calls=["Read"]),
    value("NaN", "NaN"),
    value("+inf", "Infinity"),
    value("-inf", "-Infinity"),
    Fault("closed", {"kind": "refuse"}, CONNECTION_LOST, True, False, ["Connect"]),
    Fault("before", {"kind": "drop"}, CONNECTION_LOST, True, False),
    Fault("during", {"kind": "truncate"}, CONNECTION_LOST, True),
    Fault("after", {"kind": "drop", "when": "after"}, CONNECTION_LOST, True),
    Fault("short", {"kind": "short"}, ANSWER_INVALID, True),
]


def cells(good: Sequence[Line], faults: Sequence[Fault]) -> Iterator[tuple[int, int, Fault]]:
    """Each call of a good run with each fault, and the call's index among its kind."""
    for index, call in enumerate(good):
        nth = sum(before["call"] == call["call"] for before in good[: index + 1])
        for fault in faults:
            if fault.hits(call):
                yield index, nth, fault


def named(call: Line) -> tuple[Any, ...]:
    """What a call requests."""
    asked = [(r["channel"], r["step"], r["id"]) for r in call.get("records", [])]
    return (call["call"], call.get("command"), call.get("number"), asked)


@dataclass
class Expected:
    """What a run must print and do. None: any document of its schema, any further reading."""

    stdout: str | None = ""
    stderr: str = ""
    calls: list[tuple[Any, ...]] | None = field(default_factory=list)
    leaves: Parameters = field(default_factory=dict)
    closes: bool = True  # the last call is Disconnect


def verdict(code: int, words: str) -> str:
    return f'{{\n    "ErrorCode": {code},\n    "Msg": "{words}"\n}}\n'


def is_tolerated(operation: Operation, call: Line, status: int) -> bool:
    """Whether a report continues after a read with this status."""
    if operation.name == "alarms" and call["records"][0]["id"] == 2021:
        return True  # a component's name
    is_alarm_header = operation.name == "alarms" and len(call["records"]) == 2
    return status == INCOMPLETE and not is_alarm_header


def expected(
    operation: Operation, good: Sequence[Line], before: Parameters, hit: int, fault: Fault
) -> Expected:
    """Follows a good run, call by call, until the fault ends it."""
    outcome = Expected(leaves=dict(before))
    made = outcome.calls
    assert made is not None
    steps = iter(operation.action.steps)
    lost = degraded = False
    uncounted: set[int] = set()  # channels whose number of peaks is unknown
    for index, call in enumerate(good):
        if call["call"] == "Read" and call["records"][0]["channel"] in uncounted:
            continue
        arrives = not lost
        status = fault.status if index == hit else CONNECTION_LOST if lost else 0
        lost = lost or (index == hit and fault.loses)
        # A connection that is closed at once makes no call.
        if arrives and not (index == hit and fault.fields["kind"] == "refuse"):
            made.append(named(call))
        ends: str | None = None  # final output, if this call ends the run
        if call["call"] == "Connect" and status:
            outcome.stdout = verdict(10053, "Unable to connect to GC!")
            outcome.stderr = "EstablishConnection An error occured while connecting to the GC.\n"
            return outcome
        if call["call"] in ("Write", "Command"):
            step = next(steps)
            if arrives and (fault.effect or index != hit):
                outcome.leaves.update(step.leaves)
            if operation.action.announced and call["call"] == "Write":
                outcome.stderr += f"writeParam. return {signed(status)}.\n"
            if status and step.refusal is not None:
                ends = "" if step.silent else verdict(status, step.refusal)
        elif call["call"] == "Read" and status and not is_tolerated(operation, call, status):
            ends = ""
        elif call["call"] == "ProgramInfo" and status:
            uncounted.add(call["channel"])
        if ends is not None:
            outcome.stdout = ends
            outcome.stderr += f"Execute failed {signed(status)}.\n"
            if not lost:
                made.append(named(good[-1]))
            return outcome
        changes = status or fault.fields["kind"] in ("swap", "value")
        if (index == hit or lost) and call["call"] in ("Read", "Object", "ProgramInfo") and changes:
            degraded = True
    if operation.action.words is not None:
        outcome.stdout = verdict(0, operation.action.words)
    elif not operation.action.steps:
        outcome.stdout = None
        outcome.calls = None if degraded else made
        outcome.closes = not lost
    return outcome


def differences(outcome: Expected, run: Run, calls: list[Any], after: Parameters) -> str:
    """The differences between a run and the expectation; empty if there are none."""
    wrong = []
    if run.status != 0:
        wrong.append(f"exit status {run.status}")
    if run.stderr.decode() != outcome.stderr:
        wrong.append(f"says {run.stderr!r} instead of {outcome.stderr!r}")
    if outcome.stdout is not None and run.stdout.decode() != outcome.stdout:
        wrong.append(f"prints {run.stdout!r} instead of {outcome.stdout!r}")
    if outcome.stdout is None and not run.stdout:
        wrong.append("prints nothing")
    if outcome.calls is not None and calls != outcome.calls:
        wrong.append(f"calls {calls} instead of {outcome.calls}")
    left = {name: value for name, value in outcome.leaves.items() if value is not None}
    if outcome.calls is None and (calls[-1][0] == "Disconnect") is not outcome.closes:
        wrong.append(f"ends with {calls[-1]}")
    if after != left:
        names = sorted(name for name in {*after, *left} if after.get(name) != left.get(name))
        wrong.append(f"leaves {[(name, after.get(name), left.get(name)) for name in names]}")
    return "; ".join(wrong)


Table = dict[str, dict[str, list[int]]]  # by operation and fault: cells, and how many are undefined


def write_table(properties: Sequence[tuple[str, Any]]) -> Iterator[str]:
    """The table of all operations, from the properties recorded by the tests."""
    table: Table = {}
    for operation, fault, count, undefined in (json.loads(text) for _, text in properties):
        cell = table.setdefault(operation, {}).setdefault(fault, [0, 0])
        cell[0] += count
        cell[1] += undefined
    names = [fault.name for fault in [*FAULTS, HANG]]
    yield f"{'failure matrix':20}" + "".join(f"  {name:>4}" for name in names)
    for operation in OPERATIONS:
        row = table.get(operation.name, {})
        counts = (row.get(name, [0, 0])[0] for name in names)
        yield f"{operation.name:20}" + "".join(
            f"  {count:{max(4, len(name))}}" for name, count in zip(names, counts, strict=True)
        )
    cells_run = [cell for row in table.values() for cell in row.values()]
    yield f"{sum(c for c, _ in cells_run)} cells, {sum(u for _, u in cells_run)} undefined"
