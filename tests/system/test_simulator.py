"""The simulated controller as a program: options, sockets, signals, remote control, journal."""

import json
import math
import os
import signal
import socket
import stat
import subprocess
from collections.abc import Iterator, Mapping
from contextlib import ExitStack, contextmanager, suppress
from pathlib import Path
from typing import Any

import pytest
from conftest import StartSimulator
from programs import LIMIT, PORT, Simulator, parse_strictly
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

def run(*command: str | Path, environment: Mapping[str, str] | None = None) -> tuple[int, str, str]:
    """Exit status, standard output and standard error of a program that ends by itself."""
    done = subprocess.run(
        [str(word) for word in command],
        env={**os.environ, **(environment or {})},
        stdin=subprocess.DEVNULL,
        capture_output=True,
        timeout=LIMIT,
        check=False,
    )
    return done.returncode, done.stdout.decode(), done.stderr.decode()


@contextmanager
def running(
    *command: str | Path, environment: Mapping[str, str] | None = None
) -> Iterator[subprocess.Popen[bytes]]:
    """A gc-sim that is ready; killed in the end, unless it has ended itself."""
    with subprocess.Popen(
        [str(word) for word in command],
        env={**os.environ, **(environment or {})},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
    ) as process:
        try:
            assert process.stdout is not None
            assert process.stdout.readline() == b"ready\n"
            yield process
        finally:
            process.kill()


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT])
def test_ready_and_clean_end(
    bin_dir: Path, address: str, folder: Path, number: signal.Signals
) -> None:
    control = folder / "control"
    with running(bin_dir / "gc-sim", "--listen", address, "--control", control) as process:
        # Clients of both kinds are there when it ends.
        with connected(address, 1), socket.socket(socket.AF_UNIX) as remote:
            remote.connect(str(control))
            process.send_signal(number)
            assert process.communicate(timeout=LIMIT) == (b"", b"")
    assert process.returncode == 0
    assert not list(folder.iterdir())


@pytest.mark.parametrize(
    "options",
    [
        ["--listen", "192.0.2.1"],
        ["--listen", "0.0.0.0"],
        ["--listen", "localhost"],
        ["--listen", "128.0.0.1"],
        ["--speed", "0"],
        ["--speed", "-1"],
        ["--speed", "nan"],
        ["--speed", "1e9"],
        ["--seed", "-1"],
        ["--seed", "4294967296"],
        ["--journal", "/nonexistent/journal"],
        ["--unknown"],
        ["argument"],
    ],
)
def test_bad_options(bin_dir: Path, options: list[str]) -> None:
    status, stdout, stderr = run(bin_dir / "gc-sim", *options)
    assert (status, stdout) == (1, "")
    assert stderr


SCENARIOS = Path(__file__).resolve().parents[2] / "simulator" / "scenarios"


@pytest.mark.parametrize(
    ("faults", "reason"),
    [
        ([{"kind": "miracle"}], "/faults/0/kind: "),
        ([{"kind": "delay"}], "/faults/0/seconds: missing\n"),
        ([{"kind": "hang"}, {"kind": "text"}], "/faults/1: one of text, hex, length expected\n"),
        (None, ""),
    ],
)
def test_bad_scenario(
    bin_dir: Path, address: str, folder: Path, faults: list[dict[str, str]] | None, reason: str
) -> None:
    path = folder / "scenario.json"
    if faults is not None:
        scenario = json.loads((SCENARIOS / "bare.json").read_text("utf-8"))
        path.write_text(json.dumps({**scenario, "faults": faults}), "utf-8")
    options = ["--listen", address, "--control", folder / "control", "--scenario", path]
    status, stdout, stderr = run(bin_dir / "gc-sim", *options)
    assert (status, stdout) == (2, "")
    assert stderr.startswith(f"gc-sim: {path}: {reason}")
    assert stderr.count("\n") == 1 and stderr.endswith("\n")


@pytest.fixture
def second_address(address: str) -> str:
    *net, last = address.split(".")
    return ".".join([*net, str(int(last) % 254 + 1)])


def test_two_instruments(
    simulator: StartSimulator, bin_dir: Path, folder: Path, second_address: str
) -> None:
    first = simulator()
    options = ["--listen", second_address, "--control", folder / "second", "--paused"]
    with (
        running(bin_dir / "gc-sim", *options),
        connected(first.address, 0) as here,
        connected(second_address, 1) as there,
    ):
        assert here.command(0) == 0
        assert here.read(STATE).records[0].int == 2
        assert there.read(STATE).records[0].int == 4


def test_address_in_use(simulator: StartSimulator, bin_dir: Path, folder: Path) -> None:
    first = simulator()
    options = ["--listen", first.address, "--control", folder / "other"]
    reason = f"gc-sim: {first.address}:{PORT}: Address already in use\n"
    assert run(bin_dir / "gc-sim", *options) == (3, "", reason)
    assert not (folder / "other").exists()
    with connected(first.address, 1) as client:
        assert client.read(STATE).status == 0


def test_address_is_free_again_at_once(bin_dir: Path, address: str, folder: Path) -> None:
    command = [bin_dir / "gc-sim", "--listen", address, "--control", folder / "control"]
    for _ in range(3):
        with running(*command) as process, connected(address, 1) as client:
            assert client.disconnect() == 0
            assert client.is_closed()  # the controller closes first: its end waits for stragglers
            process.terminate()
            assert process.wait(LIMIT) == 0


def test_control_socket_is_private(bin_dir: Path, address: str, folder: Path) -> None:
    mask = os.umask(0)
    try:
        with running(
            bin_dir / "gc-sim", "--listen", address, environment={"XDG_RUNTIME_DIR": str(folder)}
        ):
            mode = (folder / f"gc-sim-{address}.sock").stat().st_mode
            assert stat.S_ISSOCK(mode) and stat.S_IMODE(mode) == 0o600
    finally:
        os.umask(mask)


def test_control_socket_in_a_folder_of_its_own(bin_dir: Path, address: str) -> None:
    own = Path(f"/tmp/gc-sim-{os.getuid()}")
    path = own / f"gc-sim-{address}.sock"
    environment = {"XDG_RUNTIME_DIR": ""}
    was_there = own.exists()
    try:
        with running(bin_dir / "gc-sim", "--listen", address, environment=environment) as process:
            assert stat.S_IMODE(own.stat().st_mode) == 0o700
            assert stat.S_IMODE(path.stat().st_mode) == 0o600
            status, stdout, _ = run(
                bin_dir / "gc-simctl", "--listen", address, "status", environment=environment
            )
            assert (status, json.loads(stdout)["ok"]) == (0, True)
            process.terminate()
            assert process.wait(LIMIT) == 0
        assert not path.exists()
    finally:
        path.unlink(missing_ok=True)
        if not was_there:
            with suppress(OSError):  # somebody else has come to use it
                own.rmdir()


def test_control_socket_of_a_dead_controller(bin_dir: Path, address: str, folder: Path) -> None:
    command = [bin_dir / "gc-sim", "--listen", address, "--control", folder / "control"]
    with running(*command) as process:
        process.kill()
        process.wait(LIMIT)
    assert (folder / "control").is_socket()
    with running(*command):
        status, _, _ = run(bin_dir / "gc-simctl", "--control", folder / "control", "status")
        assert status == 0


def test_control_socket_in_use(bin_dir: Path, address: str, folder: Path) -> None:
    path = folder / "control"
    command = [bin_dir / "gc-sim", "--listen", address, "--control", path]
    with socket.socket(socket.AF_UNIX) as live:
        live.bind(str(path))
        live.listen()
        reason = f"gc-sim: {path}: Address already in use\n"
        assert run(*command) == (3, "", reason)
        assert path.is_socket()
    path.unlink()
    path.write_text("precious")
    assert run(*command) == (3, "", reason)
    assert path.read_text() == "precious"
    too_long = folder / ("x" * 108)
    assert run(*command[:-1], too_long)[0] == 3


def test_time(simulator: StartSimulator) -> None:
    controller = simulator()
    assert controller.control("status")["time"] == 0
    controller.control("command", "0")
    with connected(controller.address, 1) as client:

        def run_time() -> int:
            return client.read(RUN_TIME).records[0].int

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
        assert client.read(STATE).records[0].int == 4
        controller.fault(kind="hang")
        answer = controller.control("load", "error")
        assert (answer["scenario"], answer["time"], answer["connections"]) == ("error", 0, 1)
        assert controller.control("fault", "--list")["faults"] == []
        assert client.read(STATE).records[0].int != 4
        refuse(controller, "load", str(folder / "none.json"), reason="cannot be read")
        assert controller.control("status")["scenario"] == "error"


def refuse(controller: Simulator, *verb: str, reason: str) -> None:
    """The remote control says why not, and nothing else."""
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
        (["fault", "{"], "no JSON value"),
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


def test_nobody_to_control(bin_dir: Path, folder: Path) -> None:
    path = folder / "none"
    status, stdout, stderr = run(bin_dir / "gc-simctl", "--control", path, "status")
    assert (status, stdout) == (1, "")
    assert stderr == f"gc-simctl: {path}: No such file or directory\n"


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
    written = {"channel": 1, "method": 0, "step": 0, "id": 202, "real": "NaN", "int": 0, "status": 0}
    asked = {"channel": 0, "method": 0, "step": 0, "id": 58, "real": 0, "int": 0, "status": 0}
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
