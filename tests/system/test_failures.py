"""The failure matrix: every operation, every call it makes, every fault of the controller."""

import json
import re
import time
from collections import Counter
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

import pytest
from conftest import StartSimulator
from failed_reports import document_after, plain
from failures import (
    FAULTS,
    HANG,
    OPERATIONS,
    Expected,
    Fault,
    Line,
    Operation,
    Parameters,
    cells,
    differences,
    expected,
    named,
    small_scenario,
)
from jsonschema import ValidationError
from programs import EMULATOR, LIMIT, Run, Simulator, Tool

# What differs on another processor is below the connection: the failure matrix of the unit tests runs there.
pytestmark = pytest.mark.skipif(bool(EMULATOR), reason="700 runs take minutes in an emulator")

RecordProperty = Callable[[str, object], None]


class Bench:
    """A controller that is reset for each cell, and the tool connected to it."""

    def __init__(self, tool: Tool, simulator: StartSimulator, folder: Path) -> None:
        self._tool = tool
        self._folder = folder
        self._prepared: Operation | None = None
        self._connection = 0  # of the last run
        self._scenario = folder / "small.json"
        self._scenario.write_text(json.dumps(small_scenario()), encoding="utf-8")
        self.controller = simulator(str(self._scenario))

    def prepare(self, operation: Operation) -> Parameters:
        """Resets the instrument, except after a report, which must not change it."""
        if operation.action.steps or operation is not self._prepared:
            self.controller.ask(verb="load", scenario=str(self._scenario))
        else:
            self.controller.ask(verb="fault", clear=True)
        self._prepared = operation
        for request in operation.action.before:
            self.controller.ask(**request)
        return self.controller.parameters()

    def run(self, operation: Operation) -> Run:
        arguments = list(operation.arguments)
        if operation.file is not None:
            path = self._folder / f"{operation.name}.json"
            path.write_text(json.dumps(operation.file), encoding="utf-8")
            arguments.append(str(path))
        return self._tool("-s", self.controller.address, *arguments)

    def calls(self) -> list[Line]:
        """The calls of the last run on all connections, once the controller knows its end."""
        deadline = time.monotonic() + LIMIT
        while self.controller.ask(verb="status")["connections"]:
            assert time.monotonic() < deadline, "a connection stays open"
        lines = self.controller.ask(verb="journal", count=50)["lines"]
        calls = [line for line in lines if line["connection"] > self._connection]
        self._connection = lines[-1]["connection"]
        return [line for line in calls if line["call"] != "Lost"]

    def good_run(self, operation: Operation) -> tuple[Run, list[Line], Parameters]:
        """A run without a fault, which is checked against the table, too."""
        before = self.prepare(operation)
        run = self.run(operation)
        good = self.calls()
        outcome = expected(operation, good, before, len(good), FAULTS[0])
        wrong = differences(outcome, run, [named(c) for c in good], self.controller.parameters())
        assert not wrong, wrong
        return run, good, before


@pytest.fixture
def bench(tool: Tool, simulator: StartSimulator, folder: Path) -> Bench:
    return Bench(tool, simulator, folder)


@dataclass(frozen=True)
class Cell:
    """A fault in one call of an operation."""

    operation: Operation
    fault: Fault
    made: list[Line]  # the calls of a good run up to the one with the fault
    good: Run
    outcome: Expected

    def complaint(self, run: Run, calls: list[Line], after: Parameters) -> str:
        """The differences from the expectation; empty if there are none."""
        wrong = differences(self.outcome, run, [named(call) for call in calls], after)
        if self.outcome.stdout is None and run.stdout:
            kind, loses = self.fault.fields["kind"], self.fault.loses
            document = document_after(
                self.operation.name, self.good.document, self.made, kind, loses
            )
            told = plain(run.document)
            wrong += "" if document in (None, told) else f"; tells {told} instead of {document}"
        return wrong


class Tally:
    """Counts the cells that a test has run."""

    def __init__(self) -> None:
        self._counts: Counter[tuple[str, str]] = Counter()
        self._undefined: Counter[tuple[str, str]] = Counter()
        self._complaints: list[str] = []

    def add(self, cell: Cell, complaint: str) -> None:
        column = (cell.operation.name, cell.fault.name)
        self._counts[column] += 1
        if complaint:
            self._undefined[column] += 1
            call = f"call {len(cell.made)} {named(cell.made[-1])[:3]}"
            self._complaints.append(f"{column[0]}, {call}, {column[1]}: {complaint}")

    def report(self, record_property: RecordProperty) -> None:
        """Records the numbers for the final table, and fails if any cell is undefined."""
        for column, count in self._counts.items():
            entry = [*column, count, self._undefined[column]]
            record_property("failure matrix", json.dumps(entry))
        assert not self._complaints, "\n".join(self._complaints)


def finished(run: Callable[[], Run]) -> tuple[Run | None, str]:
    """The run, or the rule that its document violates: the tool's own, or the schema's."""
    try:
        return run(), ""
    except (AssertionError, ValueError, ValidationError) as error:
        return None, f"{type(error).__name__} {str(error)[:500]}"


def wait_for_hang(controller: Simulator, number: int) -> list[Line]:
    """The calls of the hung run, as soon as it hangs. `number`: of its connection, or lower."""
    deadline = time.monotonic() + LIMIT
    while True:
        lines = controller.ask(verb="journal", count=50)["lines"]
        for last in lines:
            if last["connection"] >= number and last.get("fault") == "hang":
                return [line for line in lines if line["connection"] == last["connection"]]
        assert time.monotonic() < deadline, lines


def test_no_call_is_answered(bench: Bench, record_property: RecordProperty) -> None:
    """All runs wait at the same time: a hung run sends nothing more, so the next one can start."""
    controller = bench.controller
    waiting = []
    good_runs = [(operation, *bench.good_run(operation)) for operation in OPERATIONS]
    number = controller.journal()[-1]["connection"]
    with ThreadPoolExecutor(max_workers=200) as threads:
        for operation, good_run, good, before in good_runs:
            for index, nth, fault in cells(good, [HANG]):
                bench.prepare(operation)
                controller.fault(**fault.on(good[index], nth))
                future = threads.submit(bench.run, operation)
                calls = wait_for_hang(controller, number + 1)
                number = calls[-1]["connection"]
                outcome = expected(operation, good, before, index, fault)
                cell = Cell(operation, fault, good[: index + 1], good_run, outcome)
                waiting.append((cell, future, calls, controller.parameters()))
    tally = Tally()
    for cell, future, calls, after in waiting:
        run, complaint = finished(future.result)
        if run is not None:
            complaint = cell.complaint(run, calls, after)
            complaint += "" if run.seconds < 20 else f"; takes {run.seconds} s"
        tally.add(cell, complaint)
    lines = controller.journal()
    hangs = [index for index, line in enumerate(lines) if line.get("fault") == "hang"]
    assert len(hangs) == len(waiting)
    for hang in hangs:
        number = lines[hang]["connection"]
        later = {line["call"] for line in lines[hang + 1 :] if line["connection"] == number}
        assert later <= {"Lost"}, (lines[hang], later)
    tally.report(record_property)


@pytest.mark.parametrize("operation", OPERATIONS, ids=lambda operation: operation.name)
def test_every_call_fails(
    bench: Bench, record_property: RecordProperty, operation: Operation
) -> None:
    good_run, good, before = bench.good_run(operation)
    tally = Tally()
    for index, nth, fault in cells(good, FAULTS):
        assert bench.prepare(operation) == before
        bench.controller.fault(**fault.on(good[index], nth))
        outcome = expected(operation, good, before, index, fault)
        cell = Cell(operation, fault, good[: index + 1], good_run, outcome)
        run, complaint = finished(lambda: bench.run(operation))
        calls = bench.calls()
        if run is not None:
            complaint = cell.complaint(run, calls, bench.controller.parameters())
        tally.add(cell, complaint)
    tally.report(record_property)


def test_every_operation_has_a_row(tool: Tool) -> None:
    """The tool's usage text lists its operations."""
    usage = tool("-h").stderr.decode()
    offered = {
        f"{option} {word}".strip()
        for option, words in re.findall(r"^(-[A-Za-z])(?: \{([a-z/]+)\})?", usage, re.MULTILINE)
        for word in (words or "").split("/")
        if option not in ("-h", "-s")
    }
    rows = {
        " ".join(row.arguments[: 2 if row.arguments[0] in ("-R", "-A") else 1])
        for row in OPERATIONS
    }
    assert rows == offered
