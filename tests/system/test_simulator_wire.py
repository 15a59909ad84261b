"""The simulated controller's protocol, followed and violated."""

import random
import socket
import struct
import time
from collections.abc import Callable
from contextlib import ExitStack, suppress
from pathlib import Path

import pytest
from conftest import StartSimulator
from programs import LIMIT, PORT
from simulator_client import (
    COMMAND,
    CONNECT,
    DISCONNECT,
    HEADER,
    MAGIC,
    OBJECT,
    PROGRAM_INFO,
    READ,
    STATE,
    WRITE,
    Client,
    Record,
    batch_body,
    connect_body,
    connected,
    frame,
)

SETPOINT = Record(1, 0, 0, 202, real=61.5)
NOT_PERMITTED = 203
TOO_MANY_CONNECTIONS = 211
MAX_BODY = 256 * 1024
MAX_RECORDS = 4096


def test_exchange(simulator: StartSimulator) -> None:
    controller = simulator()
    with connected(controller.address, 0) as client:
        answer = client.read(STATE, Record(9, 8, 7, 6, 5.0, 4, 3))
        assert answer.status == 28
        assert answer.records == [STATE._replace(integer=4), Record(9, 8, 7, 6, status=204)]
        assert client.read().records == []
        assert client.write(SETPOINT).status == 0
        assert client.read(SETPOINT._replace(real=0)).records == [SETPOINT]
        refused = client.write(SETPOINT._replace(real=1e9))
        assert (refused.status, refused.records) == (206, [])
        assert client.object(4).text == b"Natural gas C6+ (simulated)"
        assert client.object(99).status == 209
        info = client.program_info(2)
        assert (info.status, len(info.body)) == (0, 24)
        assert struct.unpack_from(">Q", info.body, 8) == (7,)  # calibrated peaks
        assert client.program_info(9).status == 210
        assert client.command(0) == 207  # not yet at the new setpoint
        assert client.disconnect() == 0
        assert client.is_closed()


def test_reports_may_change_nothing(simulator: StartSimulator) -> None:
    controller = simulator()
    with connected(controller.address, 1) as client:
        assert client.write(SETPOINT).status == NOT_PERMITTED
        assert client.command(0) == NOT_PERMITTED
        state, setpoint = client.read(STATE, SETPOINT).records
        assert (state.integer, setpoint.real) == (4, 60.0)


def test_connection_modes(simulator: StartSimulator) -> None:
    controller = simulator()
    with Client(controller.address) as client:
        assert client.connect(2) == 202
        assert client.connect(0xFFFFFFFF) == 202
        assert client.connect(0) == 0
        client.send(CONNECT, connect_body(0))
        assert client.is_closed()


@pytest.mark.parametrize(
    "kind", [READ, WRITE, COMMAND, OBJECT, PROGRAM_INFO, DISCONNECT, 0, 8, 0xFFFFFFFF]
)
def test_connect_comes_first(simulator: StartSimulator, kind: int) -> None:
    controller = simulator()
    with Client(controller.address) as client:
        client.send(kind, bytes(12))
        assert client.is_closed()
    assert controller.journal() == []


@pytest.mark.parametrize("kind", [0, 8, 0x80000001, 0xFFFFFFFF])
def test_unknown_message(simulator: StartSimulator, kind: int) -> None:
    controller = simulator()
    with connected(controller.address, 1) as client:
        answer = client.call(kind, b"whatever")
        assert answer.body == struct.pack(">I", 201)
        assert client.read(STATE).status == 0


@pytest.mark.parametrize(
    "octets",
    [
        HEADER.pack(MAGIC + 1, READ, 2, 8) + bytes(8),
        HEADER.pack(MAGIC, READ, 2, MAX_BODY + 1),
        HEADER.pack(MAGIC, READ, 2, 0xFFFFFFFF),
        frame(READ, b""),
        frame(READ, bytes(7)),
        frame(READ, bytes(9)),
        frame(READ, struct.pack(">II", 0, 1)),
        frame(READ, struct.pack(">II", 0, 0xFFFFFFFF) + bytes(64)),
        frame(READ, batch_body([STATE])[:-1]),
        frame(READ, batch_body([STATE] * (MAX_RECORDS + 1))),
        frame(COMMAND, bytes(4)),
        frame(COMMAND, bytes(12)),
        frame(OBJECT, bytes(5)),
        frame(PROGRAM_INFO, bytes(11)),
        frame(DISCONNECT, bytes(3)),
    ],
    ids=range(15),
)
def test_no_message(simulator: StartSimulator, octets: bytes) -> None:
    controller = simulator()
    with connected(controller.address, 0) as other, connected(controller.address, 0) as client:
        client.socket.sendall(octets)
        assert client.is_closed()
        assert other.read(STATE).status == 0
    assert [line["call"] for line in controller.journal()[:3]] == ["Connect", "Connect", "Lost"]


@pytest.mark.parametrize(
    "body",
    [
        b"",
        struct.pack(">I", 1),
        struct.pack(">II", 1, 0),
        struct.pack(">II", 1, 5) + b"test",
        struct.pack(">II", 1, 4) + b"test",
        struct.pack(">II", 1, 0xFFFFFFFF) + b"test\\0",
        connect_body(1, b"x" * 4097),
    ],
    ids=range(7),
)
def test_no_connect(simulator: StartSimulator, body: bytes) -> None:
    controller = simulator()
    with Client(controller.address) as client:
        client.send(CONNECT, body)
        assert client.is_closed()
    assert controller.journal() == []


def test_largest_batch(simulator: StartSimulator) -> None:
    controller = simulator()
    with connected(controller.address, 1) as client:
        answer = client.read(*[STATE] * MAX_RECORDS)
        assert answer.records == [STATE._replace(integer=4)] * MAX_RECORDS


def test_octet_by_octet(simulator: StartSimulator) -> None:
    controller = simulator()
    with Client(controller.address) as client:
        client.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        for octet in frame(CONNECT, connect_body(1)) + frame(READ, batch_body([STATE])):
            client.socket.sendall(bytes([octet]))
        assert client.receive().status == 0
        assert client.receive().records == [STATE._replace(integer=4)]


def test_frames_in_one_piece(simulator: StartSimulator) -> None:
    controller = simulator()
    with Client(controller.address) as client:
        reads = b"".join(frame(READ, batch_body([STATE]), n) for n in range(100))
        client.socket.sendall(frame(CONNECT, connect_body(1)) + reads)
        assert client.receive().status == 0
        assert [client.receive().sequence for _ in range(100)] == list(range(100))


def test_client_that_does_not_read(simulator: StartSimulator) -> None:
    controller = simulator()
    with connected(controller.address, 1) as deaf, connected(controller.address, 1) as client:
        request = frame(READ, batch_body([STATE] * MAX_RECORDS))
        with pytest.raises(ConnectionError):
            for _ in range(1000):  # 128 MB of answers: more than all buffers together
                deaf.socket.sendall(request)
        assert client.read(STATE).status == 0


def test_silent_client_is_dropped(simulator: StartSimulator) -> None:
    controller = simulator()
    start = time.monotonic()
    with connected(controller.address, 1) as idle, Client(controller.address) as silent:
        silent.socket.sendall(HEADER.pack(MAGIC, CONNECT, 1, 100))
        assert silent.is_closed()
        assert time.monotonic() - start >= 4.9
        assert idle.read(STATE).status == 0


def test_oldest_silent_client_makes_room(simulator: StartSimulator) -> None:
    controller = simulator()
    with ExitStack() as stack:
        silent = [stack.enter_context(Client(controller.address)) for _ in range(257)]
        assert silent[0].is_closed()
        assert [silent[1].connect(1), silent[256].connect(1)] == [0, 0]


def test_as_many_clients_as_there_may_be(simulator: StartSimulator) -> None:
    controller = simulator()
    with ExitStack() as stack:
        clients = [stack.enter_context(connected(controller.address, 1)) for _ in range(256)]
        with Client(controller.address) as late:
            assert late.connect(1) == TOO_MANY_CONNECTIONS
            assert late.is_closed()
        assert clients[0].read(STATE).status == 0
        assert clients[0].disconnect() == 0
        stack.enter_context(connected(controller.address, 1))
        assert controller.control("status")["connections"] == 256


def random_frame(source: random.Random) -> bytes:
    """Something between a valid frame and noise."""
    well_formed = [
        (READ, batch_body([STATE] * source.randrange(4))),
        (WRITE, batch_body([SETPOINT])),
        (COMMAND, struct.pack(">II", 0, source.randrange(20))),
        (OBJECT, struct.pack(">I", source.randrange(9))),
        (PROGRAM_INFO, struct.pack(">III", 0, source.randrange(6), 0)),
    ]
    kind, body = source.choice(well_formed)
    ruin: list[Callable[[], bytes]] = [
        lambda: frame(kind, body),
        lambda: frame(source.getrandbits(32), body),
        lambda: frame(kind, source.randbytes(source.randrange(100))),
        lambda: frame(kind, body[: source.randrange(len(body))]),
        lambda: frame(kind, bytes(octet ^ (source.random() < 0.1) for octet in body)),
        lambda: HEADER.pack(MAGIC, kind, 1, source.getrandbits(32)) + body,
        lambda: source.randbytes(source.randrange(1, 100)),
    ]
    return source.choice(ruin)()


def open_handles(control: Path) -> int:
    """Open descriptors of the process listening on a Unix socket, including this connection."""
    with socket.socket(socket.AF_UNIX) as remote:
        remote.connect(str(control))
        credentials = remote.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, 12)
        process = struct.unpack("iII", credentials)[0]
        return len(list(Path(f"/proc/{process}/fd").iterdir()))


def test_abuse(simulator: StartSimulator, folder: Path) -> None:
    controller = simulator()
    source = random.Random(20047)
    handles = open_handles(folder / "control.sock")
    for _ in range(10_000):
        with Client(controller.address) as client, suppress(ConnectionError):
            client.socket.sendall(
                frame(CONNECT, connect_body(source.randrange(2))) + random_frame(source)
            )
            client.socket.shutdown(socket.SHUT_WR)
            while client.socket.recv(65536):  # until it has been handled
                pass
    with ExitStack() as stack:
        for n in range(1000):
            half_open = stack.enter_context(socket.create_connection((controller.address, PORT)))
            with suppress(ConnectionError):
                half_open.sendall(HEADER.pack(MAGIC, CONNECT, 1, 100)[: n % 17])
        controller.control("load", "everyday")
        with connected(controller.address, 1) as client:
            assert client.read(STATE).records == [STATE._replace(integer=4)]
            assert client.disconnect() == 0
    deadline = time.monotonic() + LIMIT
    while open_handles(folder / "control.sock") > handles:
        assert time.monotonic() < deadline, "connections are left over"
    assert controller.control("status")["connections"] == 0
