"""Limits on connections, requests and programs that keep some clients from blocking others."""

import contextlib
import select
import socket
from collections.abc import Iterator
from contextlib import ExitStack
from pathlib import Path

from conftest import StartServer, StartSimulator
from programs import Simulator
from server import CONFIGURATION, HEADERS, PASSWORD, WEB_PORT, Browser, WebServer, wait_until

SLOW = 300
# Replaces the controllers' limits by ones small enough to reach.
PLACES = {
    "reports = { all = 96, each = 72 }": "reports = { all = 3, each = 2 }",
    "strangers = { all = 8, each = 4 }": "strangers = { all = 1, each = 1 }",
}
ALARMS = b"GET /api/alarms HTTP/1.1\r\nHost: gc.example\r\n\r\n"


def has_ended(connection: socket.socket) -> bool:
    return bool(select.select([connection], [], [], 0)[0]) and connection.recv(1) == b""


def test_slow_clients(simulator: StartSimulator, server: WebServer) -> None:
    """A client that never completes its request blocks nobody else."""
    simulator()
    with ExitStack() as opened:
        slow = []
        for _ in range(SLOW):
            connection = socket.create_connection((server.address, WEB_PORT))
            opened.enter_context(connection)
            connection.sendall(b"GET /api/status HTTP/1.1\r\nHost: gc.example\r\nX: ")
            slow.append(connection)
        for path in ("/", "/api/status"):
            assert Browser(server.address).get(path).status == 200
        assert not any(has_ended(connection) for connection in slow)
        # An answer may arrive slightly before its program ends.
        wait_until(lambda: server.programs() == 0)
    assert server.complaints() == []


@contextlib.contextmanager
def waiting(controller: Simulator, server: WebServer, source: str) -> Iterator[socket.socket]:
    """A request that has passed the gate and that the instrument does not answer."""

    def reads() -> int:
        return sum(line["call"] == "Read" for line in controller.journal())

    before = reads()
    with socket.create_connection((server.address, WEB_PORT), source_address=(source, 0)) as asking:
        asking.sendall(ALARMS)
        wait_until(lambda: reads() > before)
        yield asking


def small(folder: Path) -> Path:
    """The web server's scripts, with lower limits."""
    scripts = folder / "scripts"
    scripts.mkdir()
    for path in CONFIGURATION.glob("*.lua"):
        text = path.read_text(encoding="utf-8")
        for ours, fewer in PLACES.items() if path.name == "gate.lua" else ():
            assert ours in text
            text = text.replace(ours, fewer)
        (scripts / path.name).write_text(text, encoding="utf-8")
    return scripts


def expect_busy(server: WebServer, source: str, path: str = "/api/alarms") -> None:
    answer = Browser(server.address, source=source).get(path)
    assert answer.expect_problem(429)["detail"] == (
        "The web server is busy with other requests. Nothing was done; try again."
    )
    assert (answer.headers["Retry-After"], answer.headers["Cache-Control"]) == ("1", "no-store")


def test_programs_at_a_time(
    simulator: StartSimulator, start_server: StartServer, folder: Path
) -> None:
    """One address leaves room for others; files and authorised users are not limited."""
    controller: Simulator = simulator()
    server = start_server(scripts=small(folder))
    controller.fault(kind="hang", call="Read", times=0)
    with ExitStack() as opened:
        asking = [
            opened.enter_context(waiting(controller, server, source))
            for source in ("127.0.0.2", "127.0.0.3", "127.0.0.2")
        ]
        expect_busy(server, "127.0.0.2")
        expect_busy(server, "127.0.0.4")
        expect_busy(server, "127.0.0.4", "/api/none")
        assert server.programs() == 3
        assert Browser(server.address).get("/").status == 200
        acting = Browser(server.address, PASSWORD, source="127.0.0.2")
        assert acting.command("POST", "alarm-reset", {}).status == 200
        assert acting.command("POST", "abort", {"when": "after-run"}).status == 200
        controller.stop()
        for connection in asking:
            assert connection.recv(9) == b"HTTP/1.1 "
    # Every answered client has freed its place.
    for _ in range(5):
        assert Browser(server.address, source="127.0.0.2").get("/api/alarms").status == 503
    server.stop()
    assert not [line for line in server.accesses() if " 429 " in line]


def test_bodies_that_never_end(
    simulator: StartSimulator, start_server: StartServer, folder: Path
) -> None:
    """Bodies from strangers take up only the strangers' places."""
    simulator()
    server = start_server(passwords=False, scripts=small(folder))
    head = "POST /api/command/login HTTP/1.1\r\nHost: gc.example\r\nContent-Length: 9\r\n"
    head += "".join(f"{name}: {value}\r\n" for name, value in HEADERS.items())
    with ExitStack() as opened:
        connection = opened.enter_context(socket.create_connection((server.address, WEB_PORT)))
        connection.sendall(f"{head}\r\n{{".encode())
        stranger = Browser(server.address)
        wait_until(lambda: stranger.command("POST", "login", {}).status == 429)
        for path in ("/", "/api/alarms", "/api/status"):
            assert stranger.get(path).status == 200
        wait_until(lambda: server.programs() == 0)
        connection.sendall(b"       }")
        assert connection.recv(12) == b"HTTP/1.1 403"
    assert stranger.command("POST", "login", {}).status == 403
