"""The web server's environment: log rotation, restarts, a missing folder, libraries."""

import fcntl
import gzip
import os
import random
import select
import signal
import subprocess
from pathlib import Path

import pytest
from conftest import StartServer, StartSimulator
from programs import LIMIT
from server import CONFIGURATION, HEADERS, PASSWORD, Browser, WebServer, wait_until


def starts(server: WebServer) -> int:
    return (server.logs / "error.log").read_text(encoding="utf-8").count(") server started ")


def test_new_logs(server: WebServer, browser: Browser) -> None:
    """After SIGHUP, as sent by logrotate."""
    assert browser.get("/").status == 200
    for path in ("access.log", "error.log"):
        (server.logs / path).rename(server.logs / f"{path}.1")
    os.kill(server.pid, signal.SIGHUP)
    wait_until(lambda: (server.logs / "error.log").exists())
    assert browser.get("/?new").status == 200
    server.stop()
    assert [line for line in server.accesses() if '"GET /?new HTTP/1.1" 200' in line]


def test_restart_during_a_command(
    simulator: StartSimulator, start_server: StartServer, folder: Path
) -> None:
    """After SIGUSR1 other requests are answered at once."""
    controller = simulator()
    server = start_server()
    browser = Browser(server.address, PASSWORD)
    controller.fault(kind="hang", call="Command")
    path = "/api/command/alarm-reset"
    login = {"Authorization": browser.authorization("POST", path)}
    head = {"Host": server.address, "Content-Length": "2", **HEADERS, **login}
    lines = "".join(f"{name}: {value}\r\n" for name, value in head.items())
    with browser.connect() as acting:
        acting.sendall(f"POST {path} HTTP/1.1\r\n{lines}\r\n{{}}".encode())
        wait_until(lambda: any(line["call"] == "Command" for line in controller.journal()))
        assert starts(server) == 1
        os.kill(server.pid, signal.SIGUSR1)
        wait_until(lambda: starts(server) == 2)
        for _ in range(3):
            assert browser.get("/").status == 200
            assert browser.get("/api/none").status == 404
        # None of them waited for the command to end. On a busy machine lighttpd sometimes closes
        # the command's connection: the new server's goodbye then arrives before the old one expects
        # it.
        assert not select.select([acting], [], [], 0)[0] or acting.recv(1) == b""
        controller.stop()


def is_awaited(lock: Path) -> bool:
    """Whether somebody waits for a lock on this file."""
    lines = Path("/proc/locks").read_text(encoding="ascii").splitlines()
    return any("->" in line and f":{lock.stat().st_ino} " in line for line in lines)


@pytest.mark.parametrize("name", ["command.lock", "abort-now.lock"])
def test_stop_waits_for_a_begun_command(start_server: StartServer, name: str) -> None:
    """Even if no browser waits for it any more, and the web server has therefore ended."""
    server = start_server()
    lock = server.state / name
    with lock.open("w") as tool:
        fcntl.flock(tool, fcntl.LOCK_EX)
        command = [CONFIGURATION / "finish", str(server.pid), server.state]
        with subprocess.Popen(command) as finishing:
            wait_until(server.has_ended)
            wait_until(lambda: is_awaited(lock))
            assert finishing.poll() is None
            fcntl.flock(tool, fcntl.LOCK_UN)
            assert finishing.wait(LIMIT) == 0
    # As after a web server that has ended by itself.
    assert subprocess.run([CONFIGURATION / "finish", server.state], check=False).returncode == 0


def test_state_that_is_gone(server: WebServer, browser: Browser) -> None:
    """Pages need nothing from it, whatever their length."""
    script = server.pages / "assets" / "long-Ab12.js"
    script.write_bytes(random.Random(1).randbytes(300_000).hex().encode())
    server.state.rename(server.state.with_name("gone"))
    # It cannot be created again either.
    server.state.write_bytes(b"")
    answer = browser.get("/assets/long-Ab12.js", **{"Accept-Encoding": "gzip"})
    assert (answer.status, answer.headers["Content-Encoding"]) == (200, "gzip")
    assert gzip.decompress(answer.body) == script.read_bytes()
    assert browser.get("/assets/long-Ab12.js").body == script.read_bytes()
    assert server.complaints() == []


def test_libraries_of_the_maker(start_server: StartServer, folder: Path) -> None:
    """They reach the tool through a setting, not through the web server's environment."""
    tool = folder / "tool"
    tool.write_text(f"#!/bin/sh\nenv | grep LIBRARY >{folder}/told\n")
    tool.chmod(0o755)
    os.environ["LD_LIBRARY_PATH"] = "/of-the-server"
    try:
        server = start_server(tool=tool, libraries="/first:/second")
    finally:
        del os.environ["LD_LIBRARY_PATH"]
    Browser(server.address).get("/api/config")
    assert (folder / "told").read_text() == "LD_LIBRARY_PATH=/first:/second\n"
