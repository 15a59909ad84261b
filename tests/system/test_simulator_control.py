"""Remote control of the simulated controller, and its journal."""

import json
import math
import socket
from contextlib import ExitStack
from pathlib import Path
from typing import Any

import pytest
from conftest import StartSimulator
from programs import LIMIT, Simulator, parse_strictly
from simulator_client import (
    READ,
    RUN_TIME,
    STATE,
    STREAM,
    Client,
    Record,
    batch_body,
    connected,
)


def test_time(simulator: StartSimulator) -> None:
    controller = simulator()
    assert controller.control("status")["time"] == 0
    controller.control("command", "0")
    with connected(controller.address, 1) as client:

        def run_time() -> int:
            return client.read(RUN_TIME).records[0].integer

        assert run_time() == 0
        assert controller.control("step", "12.5")["time"] == 12.5
        assert run_time() == 12
        controller.control("speed", "1000000")
        assert controller.control("status")["time"] == 12.5
        controller.control("resume")
        before = controller.control("pause")["time"]
        assert before > 12.5
        assert controller.control("status") == {
            "ok": True,
            "time": before,
            "speed": 1e6,
            "paused": True,
            "scenario": "everyday",
            "seed": 1,
            "connections": 1,
            "calls": 3,
        }


def test_time_runs(simulator: StartSimulator) -> None:
    controller = simulator("everyday", "--speed", "1000", "--seed", "7", paused=False)
    first = controller.control("status")
    second = controller.control("status")
    assert (first["speed"], first["seed"], first["paused"]) == (1000, 7, False)
    assert second["time"] > first["time"] > 0


def test_load(simulator: StartSimulator, folder: Path) -> None:
    controller = simulator()
    controller.control("step", "100")
    with connected(controller.address, 1) as client:
        assert client.read(STATE).records[0].integer == 4
        controller.fault(kind="hang")
        answer = controller.control("load", "error")
        assert (answer["scenario"], answer["time"], answer["connections"]) == ("error", 0, 1)
        assert controller.control("fault", "--list")["faults"] == []
        assert client.read(STATE).records[0].integer != 4
        refuse(controller, "load", str(folder / "none.json"), reason="cannot be read")
        assert controller.control("status")["scenario"] == "error"


def refuse(controller: Simulator, *verb: str, reason: str) -> None:
    """The remote control gives the reason, and nothing else."""
    with pytest.raises(AssertionError) as refusal:
        controller.control(*verb)
    assert reason in str(refusal.value)


@pytest.mark.parametrize(
    ("verb", "reason"),
    [
        (["set", "mNothing", "1"], "there is no parameter mNothing"),
        (["set", "--text", "99", "x"], "there is no such text"),
        (["set", "--text", "4", "x" * 4097], "the text is too long"),
        (["set", "mGC_State", "four"], "a number expected"),
        (["command", "99"], "the instrument refuses with status 208"),
        (["speed", "0"], "a speed over 0"),
        (["step", "-1"], "seconds from 0"),
        (["set", "mRepeat[4]", "1"], "there is no parameter mRepeat[4]"),
        (["set", "mTriggered[ 1]", "1"], "there is no parameter mTriggered[ 1]"),
        (["fault", "{"], "no JSON value"),
        (["fault", "[" * 101 + "]" * 101], "more than 100 levels deep"),
        (["fault", "[" * 60000 + "]" * 60000], "more than 100 levels deep"),
        (["fault", "[" * 100 + "]" * 100], "the request is more than 100 levels deep"),
        (["fault", "[" * 99 + "]" * 99], "fault: an object expected"),
        (["fault", "[]"], "fault: an object expected"),
        (["fault", '{"kind": "miracle"}'], "fault/kind: the name of a kind of fault expected"),
        (["fault", '{"kind": "hang", "nth": 0}'], "fault/nth: a whole number from 1 expected"),
        (["fault", '{"kind": "hang", "times": -1}'], "fault/times"),
        (["fault", '{"kind": "hang", "call": "Lost"}'], "fault/call"),
        (["fault", '{"kind": "text", "call": "Read", "text": ""}'], "fault/call"),
        (["fault", '{"kind": "hang", "when": "after"}'], "fault/when: no field of"),
        (["fault", '{"kind": "delay"}'], "fault/seconds: missing"),
        (["fault", '{"kind": "value", "records": "all"}'], "fault: one or more of real, int"),
        (["fault", '{"kind": "text", "hex": "f"}'], "fault/hex"),
        (["fault"], "JSON"),
        ([], "subcommand is required"),
    ],
)
def test_refusals(simulator: StartSimulator, verb: list[str], reason: str) -> None:
    controller = simulator()
    before = controller.control("snapshot"), controller.control("status")
    refuse(controller, *verb, reason=reason)
    assert controller.control("fault", "--list")["faults"] == []
    assert (controller.control("snapshot"), controller.control("status")) == before


def test_set(simulator: StartSimulator) -> None:
    controller = simulator()
    controller.control("set", "mAmbientTemp", "-12")
    controller.control("set", "mAmbientPressure", "nan")
    controller.control("set", "--text", "4", "Gr\N{LATIN SMALL LETTER U WITH DIAERESIS}n \x01")
    with connected(controller.address, 1) as client:
        assert client.object(4).text == b"Gr\xc3\xbcn \x01"
    snapshot = controller.control("snapshot")
    assert snapshot["parameters"]["mAmbientTemp"] == -12
    assert snapshot["parameters"]["mAmbientPressure"] == "NaN"
    assert snapshot["texts"]["application"] == "Gr\N{LATIN SMALL LETTER U WITH DIAERESIS}n \x01"


@pytest.mark.parametrize("scenario", ["four-channel", "bare"])
def test_a_snapshot_is_a_scenario(
    simulator: StartSimulator, folder: Path, scenario: str
) -> None:
    controller = simulator(scenario)
    controller.control("set", "mPressSP1", "nan")
    controller.control("set", "mColumnTempSP1", "-0.1000000000000000055")
    controller.control("set", "mGC_State", "2147483647")
    controller.ask(verb="set", name="mGC_FlushingStream", value="-Infinity")
    controller.control("set", "mSlotNr[10]", "-7")
    controller.control("set", "--text", "2", "\N{EURO SIGN}" * 1001)
    controller.ask(verb="set", number=4, text="\0" * 4096)
    controller.control("step", "12.25")
    shown = controller.control("snapshot")
    path = folder / "snapshot.json"
    # As a shell saves the output of gc-simctl.
    path.write_text(json.dumps(shown, indent=2), encoding="utf-8")
    assert path.stat().st_size < 1024 * 1024
    assert controller.control("load", str(path))["time"] == 0
    assert controller.control("snapshot") == {**shown, "time": 0}
    with connected(controller.address, 1) as client:
        assert client.object(2).text == ("\N{EURO SIGN}" * 1001).encode()
        assert client.object(4).text == b"\0" * 4096


def test_deep_scenarios_stop_nobody(simulator: StartSimulator, folder: Path) -> None:
    controller = simulator()
    path = folder / "deep.json"
    deep = "[" * 500_000 + "]" * 500_000
    path.write_text('{"parameters": {"mRepeat[1]": ' + deep + "}}")
    refuse(controller, "load", str(path), reason="/parameters/mRepeat[1]: more than 100 levels deep")
    assert controller.control("status")["scenario"] == "everyday"


def ask(remote: socket.socket, line: bytes) -> dict[str, Any]:
    remote.sendall(line)
    answer = b""
    while not answer.endswith(b"\n"):
        more = remote.recv(65536)
        assert more
        answer += more
    return parse_strictly(answer)


def test_control_protocol(simulator: StartSimulator, folder: Path) -> None:
    simulator()
    with ExitStack() as stack:
        remotes = [stack.enter_context(socket.socket(socket.AF_UNIX)) for _ in range(20)]
        for remote in remotes:
            remote.settimeout(LIMIT)
            remote.connect(str(folder / "control.sock"))
        for remote in remotes:
            for octet in b'{"verb": "step", "seconds": 1}':
                remote.sendall(bytes([octet]))
            assert ask(remote, b"\n")["ok"]
        assert ask(remotes[0], b'{"verb": "status"}\n')["time"] == 20
        for line in [b"", b"[]", b"{", b'{"verb": 1}', b'{"verb": "sing"}', b"[" * 60000, b"\xff"]:
            answer = ask(remotes[1], line + b"\n")
            assert answer["ok"] is False and answer["error"]
        answer = ask(remotes[1], b'{"verb": "set", "name": "\xff\xfe", "value": 1}\n')
        assert answer["error"] == "there is no parameter \ufffd\ufffd"
        assert ask(remotes[2], b" " * 65537)["error"] == "the line is too long"
        assert remotes[2].recv(1) == b""
        assert ask(remotes[3], b'{"verb": "status"}\n')["ok"]


def test_journal(simulator: StartSimulator, folder: Path) -> None:
    path = folder / "journal"
    path.write_text('{"call": "from an earlier run"}\n')
    controller = simulator("everyday", "--journal", str(path))
    controller.control("step", "2.5")
    with connected(controller.address, 1) as client:
        port = client.socket.getsockname()[1]
        peer = f"{client.socket.getsockname()[0]}:{port}"
        client.read(STATE, Record(9, 8, 7, 6))
        client.object(4)
        client.program_info(1)
        assert client.disconnect() == 0
    with Client(controller.address) as client:
        assert client.connect(0, b"\xff\xc3\x28 \xed\xa0\x80\"\\\n\0") == 0
        second = f"{client.socket.getsockname()[0]}:{client.socket.getsockname()[1]}"
        client.write(Record(1, 0, 0, 202, real=math.nan))
        client.command(99, 3)
        controller.fault(kind="drop")
        client.send(READ, batch_body([STREAM]))
        assert client.is_closed()
    controller.control("set", "mAmbientTemp", "1")
    lines = [parse_strictly(line) for line in path.read_bytes().splitlines()]
    assert lines[0] == {"call": "from an earlier run"}
    first_client = {"time": 2.5, "peer": peer, "connection": 1, "mode": 1}
    second_client = {"time": 2.5, "peer": second, "connection": 2, "mode": 0}
    read_records = [
        {"channel": 0, "method": 0, "step": 0, "id": 102, "real": 0, "int": 4, "status": 0},
        {"channel": 9, "method": 8, "step": 7, "id": 6, "real": 0, "int": 0, "status": 204},
    ]
    asked = {"channel": 0, "method": 0, "step": 0, "id": 58, "real": 0, "int": 0, "status": 0}
    written = {**asked, "channel": 1, "id": 202, "real": "NaN"}
    name = "\ufffd\ufffd( \ufffd\ufffd\ufffd\"\\\n\0"
    assert lines[1:] == [
        {**first_client, "call": "Connect", "status": 0, "client": "test"},
        {**first_client, "call": "Read", "status": 28, "records": read_records},
        {**first_client, "call": "Object", "status": 0, "number": 4},
        {**first_client, "call": "ProgramInfo", "status": 0, "channel": 1},
        {**first_client, "call": "Disconnect", "status": 0},
        {**second_client, "call": "Connect", "status": 0, "client": name},
        {**second_client, "call": "Write", "status": 206, "records": [written]},
        {**second_client, "call": "Command", "status": 210, "channel": 3, "command": 99},
        {**second_client, "call": "Read", "fault": "drop", "records": [asked]},
        {**second_client, "call": "Lost"},
    ]
    assert controller.journal() == lines[1:]
    assert controller.control("journal", "2")["lines"] == lines[-2:]
    assert controller.control("journal", "0")["lines"] == []


def test_journal_keeps_the_last_lines(simulator: StartSimulator) -> None:
    controller = simulator()
    with connected(controller.address, 1) as client:
        for step in range(1200):
            client.read(Record(0, 0, step, 1))
    lines = controller.journal()
    assert len(lines) == 1000
    assert [line["records"][0]["step"] for line in lines[:-1]] == list(range(201, 1200))
    assert lines[-1]["call"] == "Lost"
