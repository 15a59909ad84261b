"""Faults of the simulated controller, as seen on the wire."""

import json
import math
import struct
import time
from pathlib import Path
from typing import Any

import pytest
from conftest import StartSimulator
from programs import LIMIT, Simulator
from simulator_client import (
    HEADER,
    READ,
    STATE,
    STREAM,
    WRITE,
    Client,
    Record,
    batch_body,
    connected,
)

SCENARIOS = Path(__file__).resolve().parents[2] / "simulator" / "scenarios"
SETPOINT = Record(1, 0, 0, 202)  # column temperature setpoint, channel 1
UNKNOWN = Record(9, 0, 0, 9)


def wait_for_lines(controller: Simulator, count: int) -> list[dict[str, Any]]:
    """The journal, once it has this many lines."""
    deadline = time.monotonic() + LIMIT
    while len(lines := controller.journal()) < count:
        assert time.monotonic() < deadline, lines
    return lines


def test_refuse(simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="refuse", nth=2, times=2)
    with connected(controller.address, 1) as client:
        for _ in range(2):
            with Client(controller.address) as refused:
                assert refused.is_closed()
        assert client.read(STATE).status == 0
    connected(controller.address, 1).socket.close()
    kinds = [line.get("fault") for line in controller.journal() if line["call"] == "Lost"]
    assert kinds.count("refuse") == 2


@pytest.mark.parametrize(("when", "effect"), [(None, 60.0), ("before", 60.0), ("after", 61.5)])
def test_drop(simulator: StartSimulator, when: str | None, effect: float) -> None:
    controller = simulator()
    controller.fault(kind="drop", call="Write", **({"when": when} if when else {}))
    with connected(controller.address, 0) as client:
        client.read(STATE)
        client.send(WRITE, batch_body([SETPOINT._replace(real=61.5)]))
        assert client.is_closed()
    with connected(controller.address, 1) as client:
        assert client.read(SETPOINT).records[0].real == effect


def test_delay(simulator: StartSimulator) -> None:
    controller = simulator()
    with connected(controller.address, 1) as client:
        controller.fault(kind="delay", seconds=0.3)
        start = time.monotonic()
        client.send(READ, batch_body([STATE]))
        client.send(READ, batch_body([STATE, STREAM]))  # waits for its turn
        first = client.receive()
        assert time.monotonic() - start >= 0.3
        second = client.receive()
        assert [len(first.records), len(second.records)] == [1, 2]
        assert [first.sequence, second.sequence] == [2, 3]


@pytest.mark.parametrize("fault", [{"kind": "delay", "seconds": 3600}, {"kind": "hang"}])
def test_others_do_not_wait(simulator: StartSimulator, fault: dict[str, object]) -> None:
    controller = simulator()
    with connected(controller.address, 1) as waiting, connected(controller.address, 1) as client:
        controller.fault(**fault)
        waiting.send(READ, batch_body([STATE]))
        assert wait_for_lines(controller, 3)[-1]["fault"] == fault["kind"]
        assert client.read(STATE).status == 0
        waiting.socket.setblocking(False)
        with pytest.raises(BlockingIOError):
            waiting.socket.recv(1)
    assert [line["call"] for line in wait_for_lines(controller, 6)[-2:]] == ["Lost", "Lost"]


def test_hang_is_not_done(simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="hang", call="Write")
    with connected(controller.address, 0) as client:
        client.send(WRITE, batch_body([SETPOINT._replace(real=61.5)]))
        assert client.call(READ, batch_body([SETPOINT])).records[0].real == 60.0


@pytest.mark.parametrize("status", [28, 207, 0xFFFFFFFF])
def test_status(simulator: StartSimulator, status: int) -> None:
    controller = simulator()
    controller.fault(kind="status", status=status, times=0, nth=2)
    with connected(controller.address, 0) as client:
        answer = client.write(SETPOINT._replace(real=61.5))
        assert answer.status == status
        # A refused batch is answered without its records, an incomplete one with them.
        assert len(answer.records) == (1 if status == 28 else 0)
        assert client.command(0) == status
        assert client.object(4).body == struct.pack(">II", status, 1) + bytes(4) + bytes(4)
        assert client.program_info(1).status == status
        assert client.disconnect() == status
        controller.control("fault", "--clear")
        read = client.read(SETPOINT, STATE)
        assert (read.records[0].real, read.records[1].integer) == (60.0, 4)


def test_unanswered(simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="unanswered", records=[1, 99])
    controller.fault(kind="unanswered", records="all")
    sent = [STATE, STREAM._replace(real=0.5, integer=-3), SETPOINT]
    with connected(controller.address, 1) as client:
        answer = client.read(*sent)
        assert answer.status == 28
        assert [record.status for record in answer.records] == [0, 204, 0]
        assert answer.records[1] == sent[1]._replace(status=204)
        answer = client.read(*sent)
        assert answer.status == 28
        assert answer.records == [record._replace(status=204) for record in sent]
        assert client.read(*sent).status == 0


def test_swap(simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="swap", a=0, b=2, times=2)
    with connected(controller.address, 0) as client:
        swapped = client.read(STATE, STREAM, SETPOINT)
        assert swapped.status == 0
        assert [record.id for record in swapped.records] == [202, 58, 102]
        assert (swapped.records[0].real, swapped.records[2].integer) == (60.0, 4)
        assert [record.id for record in client.read(STATE, STREAM).records] == [102, 58]


def test_short(simulator: StartSimulator) -> None:
    controller = simulator()
    with connected(controller.address, 1) as client:
        whole = client.read(STATE)
        controller.fault(kind="short", times=2)
        assert client.read(STATE).body == whole.body[: len(whole.body) // 2]
        assert client.read().body == bytes(4)
        assert client.read(STATE) == whole._replace(sequence=5)


def test_truncate(simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="truncate", call="Read")
    with connected(controller.address, 1) as client:
        client.send(READ, batch_body([STATE]))
        octets = b""
        while more := client.socket.recv(1000):
            octets += more
        assert len(octets) == (HEADER.size + 8 + 32) // 2
        assert HEADER.unpack_from(octets)[3] == 8 + 32


@pytest.mark.parametrize("real", [1.5, "NaN", "Infinity", "-Infinity"])
def test_value(simulator: StartSimulator, real: float | str) -> None:
    controller = simulator()
    controller.fault(kind="value", records=[0], real=real)
    controller.fault(kind="value", records="all", int=-2147483648)
    with connected(controller.address, 1) as client:
        first, second = client.read(SETPOINT, STATE).records
        assert first.real == float(real) or math.isnan(first.real) and real == "NaN"
        assert (second.real, second.integer) == (0.0, 4)
        first, second = client.read(SETPOINT, STATE).records
        assert (first.real, first.integer, second.integer) == (60.0, -2147483648, -2147483648)
    line = controller.journal()[1]
    assert line["records"][0]["real"] == real


@pytest.mark.parametrize(
    ("fault", "text"),
    [
        ({"text": "Gr\u00fcn"}, b"Gr\xc3\xbcn"),
        ({"text": ""}, b""),
        ({"hex": "fF0080"}, b"\xff\0\x80"),
        ({"length": 65536}, b"x" * 65536),
    ],
    ids=["characters", "empty", "octets", "long"],
)
def test_text(simulator: StartSimulator, fault: dict[str, object], text: bytes) -> None:
    controller = simulator()
    controller.fault(kind="text", times=2, **fault)
    with connected(controller.address, 1) as client:
        assert client.object(4).text == text
        columns = client.object(6).body
        assert b"Porous polymer" in columns
        assert client.object(4).text == b"Natural gas C6+ (simulated)"


def test_ignore(simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="ignore", times=2)
    with connected(controller.address, 0) as client:
        answer = client.write(SETPOINT._replace(real=61.5), UNKNOWN)
        assert (answer.status, len(answer.records)) == (0, 2)
        assert client.command(0) == 0
        read = client.read(SETPOINT, STATE)
        assert (read.records[0].real, read.records[1].integer) == (60.0, 4)
        assert client.command(0) == 0
        assert client.read(STATE).records[0].integer == 2


def test_one_fault_acts_on_a_call(simulator: StartSimulator) -> None:
    controller = simulator()
    with connected(controller.address, 1) as client:
        controller.fault(kind="status", status=1, call="Read", nth=2)
        controller.fault(kind="status", status=2, call="Read", times=3)
        controller.fault(kind="status", status=3, times=0)
        seen = [client.read(STATE).status for _ in range(3)] + [client.object(4).status]
        assert seen == [2, 1, 2, 3]
        listed = controller.control("fault", "--list")["faults"]
        assert [(entry["fault"]["status"], entry["seen"], entry["hits"]) for entry in listed] == [
            (2, 3, 2),
            (3, 4, 1),
        ]
        controller.control("fault", "--clear")
        assert client.read(STATE).status == 0


def test_faults_of_a_scenario(simulator: StartSimulator, folder: Path) -> None:
    scenario = json.loads((SCENARIOS / "bare.json").read_text("utf-8"))
    scenario["faults"] = [{"kind": "status", "call": "Connect", "status": 77}]
    path = folder / "scenario.json"
    path.write_text(json.dumps(scenario), "utf-8")
    controller = simulator(str(path))
    with Client(controller.address) as client:
        assert client.connect(1) == 77
        assert client.connect(1) == 0
