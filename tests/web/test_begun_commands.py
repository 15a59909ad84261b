"""Commands that are killed, signalled, refused halfway or sent twice: none is left in doubt."""

import os
import signal
import socket
from collections.abc import Iterator
from contextlib import contextmanager
from typing import Any

import pytest
from conftest import StartSimulator
from processes import Tree
from programs import Simulator, Tool
from server import HEADERS, Browser, WebServer, wait_until

ACCEPTED = {"ErrorCode": 0, "Msg": "Accepted"}
ABORTS = ["now", "after-run"]


@contextmanager
def sent(browser: Browser, method: str, name: str, body: bytes) -> Iterator[socket.socket]:
    """Sends a command without reading its answer."""
    path = f"/api/command/{name}"
    headers = {**HEADERS, "Authorization": browser.authorization(method, path)}
    lines = [f"{method} {path} HTTP/1.1", f"Host: {browser.address}", "Connection: close"]
    lines += [f"Content-Length: {len(body)}", *(f"{n}: {text}" for n, text in headers.items())]
    with browser.connect() as connection:
        connection.sendall("\r\n".join([*lines, "", ""]).encode() + body)
        yield connection


def wait_for_call(controller: Simulator, call: str, count: int = 1) -> None:
    def has_come() -> bool:
        return sum(line["call"] == call for line in controller.journal()) >= count

    wait_until(has_come)


@pytest.mark.parametrize("when", ABORTS)
def test_abort_beside_a_slow_command(
    simulator: StartSimulator, server: WebServer, browser: Browser, when: str
) -> None:
    """The abort is complete while the instrument is still busy with the other command."""
    controller: Simulator = simulator()
    controller.control("command", "0")
    controller.fault(kind="delay", call="Command", seconds=1000)
    with sent(browser, "POST", "alarm-reset", b"{}"):
        wait_for_call(controller, "Command")
        answer = browser.command("POST", "abort", {"when": when})
        assert (answer.status, answer.document) == (200, ACCEPTED)
        assert [line["command"][0] for line in server.commands()] == ["-A"]
        Tree(server.pid).kill("GC_Web")
        wait_until(lambda: len(server.commands()) == 2)


def test_aborts_share_an_answer(
    simulator: StartSimulator, server: WebServer, browser: Browser
) -> None:
    controller: Simulator = simulator()
    controller.control("command", "0")
    controller.fault(kind="delay", call="Command", seconds=0.5)
    body = b'{"when": "now"}'
    with sent(browser, "POST", "abort", body) as first:
        wait_for_call(controller, "Command")
        with sent(browser, "POST", "abort", body) as second:
            answers = [connection.makefile("rb").read() for connection in (first, second)]
    for answer in answers:
        assert answer.startswith(b"HTTP/1.1 200 ")
    # On a slow machine the second may have arrived after the end of the first.
    assert len({line["id"] for line in server.log()}) in (1, 2)


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGPIPE])
def test_signal_to_every_process(
    tool: Tool,
    simulator: StartSimulator,
    server: WebServer,
    browser: Browser,
    number: signal.Signals,
) -> None:
    """As from a service manager: a download is carried out to the end, and logged."""
    controller: Simulator = simulator()
    file = tool("-s", controller.address, "-c").stdout
    peaks = len(browser.get("/api/calibration").document["rows"])
    before = sum(line["call"] == "Write" for line in controller.journal())
    controller.fault(kind="delay", call="Write", nth=3, seconds=0.5)
    with sent(browser, "PUT", "calibration", file):
        wait_for_call(controller, "Write", before + 2)
        tree = Tree(server.pid)
        assert sorted(tree.names()) == ["GC_Web", "command"]
        for process in tree.processes:
            os.kill(process.pid, number)
        wait_until(server.commands)
    (line,) = server.commands()
    assert (line["status"], line["document"]["ErrorCode"]) == (200, 0)
    assert sum(line["call"] == "Write" for line in controller.journal()) - before == peaks


def test_gateway_that_is_killed(
    tool: Tool, simulator: StartSimulator, server: WebServer, browser: Browser
) -> None:
    """Its tool blocks other commands until it ends; then the command counts as interrupted."""
    controller: Simulator = simulator()
    file = tool("-s", controller.address, "-c").stdout
    controller.fault(kind="delay", call="Write", nth=3, seconds=1.5)
    with sent(browser, "PUT", "calibration", file):
        wait_for_call(controller, "Write", 2)
        Tree(server.pid).kill("command")
        second = browser.command("PUT", "calibration", file)
        assert second.status == 200
    writers = [line["connection"] for line in controller.journal() if line["call"] == "Write"]
    assert writers == sorted(writers), "two downloads were interleaved"
    assert len(set(writers)) == 2
    begun, _, ended = server.log()
    assert begun["id"] != ended["id"]
    answer = browser.get("/api/status")
    assert answer.headers["X-GC-Interrupted"] == "1"
    assert browser.get("/api/unfinished").document == {"going_on": [], "interrupted": [begun]}
    assert browser.command("POST", "seen", {"id": begun["id"]}).status == 204
    assert browser.get("/api/status").headers["X-GC-Interrupted"] is None
    assert server.log()[-1]["event"] == "seen"


def test_tool_that_is_killed(
    simulator: StartSimulator, server: WebServer, browser: Browser
) -> None:
    controller: Simulator = simulator()
    controller.fault(kind="delay", call="Command", seconds=1000)
    with sent(browser, "POST", "alarm-reset", b"{}") as connection:
        wait_for_call(controller, "Command")
        assert browser.get("/api/unfinished").document["going_on"] == server.log()
        Tree(server.pid).kill("GC_Web")
        answer = connection.makefile("rb").read()
    assert answer.startswith(b"HTTP/1.1 502 ")
    assert b'"outcome":"unknown"' in answer
    assert server.commands()[0]["document"]["outcome"] == "unknown"
    assert browser.get("/api/unfinished").document == {"going_on": [], "interrupted": []}


@pytest.mark.parametrize("log", ["/dev/full", "/proc/version", "/nowhere/commands.log"])
def test_log_that_takes_nothing(
    simulator: StartSimulator, server: WebServer, browser: Browser, log: str
) -> None:
    """A full disk, a file without write permission, a missing folder."""
    controller: Simulator = simulator()
    server.log_path.symlink_to(log)
    for method, path, body in [
        ("POST", "alarm-reset", {}),
        ("POST", "abort", {"when": "now"}),
        ("PUT", "stream", {"stream": 1}),
    ]:
        problem = browser.command(method, path, body).expect_problem(500)
        assert "nothing was done" in problem["detail"]
    assert controller.journal() == []
    assert browser.get("/api/unfinished").document == {"going_on": [], "interrupted": []}


def test_table_that_is_refused_halfway(
    simulator: StartSimulator, server: WebServer, browser: Browser
) -> None:
    """The previous table is available as a backup, and can be sent back."""
    controller: Simulator = simulator()
    before = browser.get("/api/calibration").document
    bad: dict[str, Any] = {"total": before["total"], "rows": [dict(row) for row in before["rows"]]}
    bad["rows"][5]["Level_amt"] = 2_000_000
    refused = browser.command("PUT", "calibration", bad)
    assert (refused.status, refused.document["ErrorCode"]) == (409, 206)
    assert browser.get("/api/calibration").document != before
    (backup,) = browser.get("/api/backups/calibration").document["backups"]
    assert (backup["number"], backup["user"]) == (1, "operator")
    assert backup["command"] == server.commands()[0]["id"]
    kept = browser.get("/api/backups/calibration/1")
    assert kept.headers["Link"].startswith("</schemas/calibration-file.schema.json>")
    assert browser.command("PUT", "calibration", kept.body).status == 200
    assert browser.get("/api/calibration").document == before


def test_sequence_that_is_restored(
    simulator: StartSimulator, server: WebServer, browser: Browser
) -> None:
    simulator("four-channel")
    before = browser.get("/api/sequence").document
    empty = {"Table_repeat": 1, "Continuous": False, "total": 1, "rows": [{"Repeat": 3}]}
    assert browser.command("PUT", "sequence", empty).status == 200
    assert browser.get("/api/sequence").document != before
    kept = browser.get("/api/backups/sequence/1")
    assert browser.command("PUT", "sequence", kept.body).status == 200
    assert browser.get("/api/sequence").document == before
    numbers = [row["number"] for row in browser.get("/api/backups/sequence").document["backups"]]
    assert numbers == [2, 1]


def test_table_that_cannot_be_kept(
    simulator: StartSimulator, server: WebServer, browser: Browser
) -> None:
    """In that case it is not replaced either."""
    simulator()
    before = browser.get("/api/sequence").document
    (server.data / "backups").write_text("no folder")
    browser.command("PUT", "sequence", {"Table_repeat": 1, "total": 0}).expect_problem(500)
    assert browser.get("/api/sequence").document == before
    assert server.log() == []
