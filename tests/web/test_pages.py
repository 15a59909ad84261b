"""Static files, headers of all answers, and limits."""

import gzip
import socket
import ssl
import subprocess
from pathlib import Path

import pytest
from conftest import StartServer, StartSimulator
from programs import SCHEMAS
from server import (
    CONFIGURATION,
    HEADERS,
    PASSWORD,
    WEB_PORT,
    Browser,
    WebServer,
)

SCRIPT = "/assets/index-Ab12.js"
GUARDS = {
    "Content-Security-Policy": "default-src 'self'; base-uri 'none'; form-action 'none'; "
    "frame-ancestors 'none'; object-src 'none'",
    "X-Content-Type-Options": "nosniff",
    "X-Frame-Options": "DENY",
    "Referrer-Policy": "no-referrer",
    "Server": None,
    "Access-Control-Allow-Origin": None,
}


@pytest.mark.parametrize(
    ("path", "kind", "kept"),
    [
        ("/", "text/html; charset=utf-8", "no-cache"),
        ("/index.html", "text/html; charset=utf-8", "no-cache"),
        (SCRIPT, "text/javascript; charset=utf-8", "public, max-age=31536000, immutable"),
        ("/schemas/status.schema.json", "application/schema+json", "no-cache"),
        ("/schemas/examples/command-run.json", "application/json", "no-cache"),
        ("/openapi.json", "application/json", "no-cache"),
    ],
)
def test_file(server: WebServer, browser: Browser, path: str, kind: str, kept: str) -> None:
    answer = browser.get(path)
    assert (answer.status, answer.headers["Content-Type"]) == (200, kind)
    assert answer.headers.get_all("Cache-Control") == [kept]
    where = SCHEMAS.parent if path.startswith(("/schemas", "/openapi")) else server.pages
    file = where / (path[1:] or "index.html")
    assert answer.body == file.read_bytes()
    head = browser.request("HEAD", path)
    assert (head.status, head.body) == (200, b"")
    assert head.headers["Content-Length"] == answer.headers["Content-Length"]
    again = browser.get(path, **{"If-None-Match": answer.headers["ETag"]})
    assert (again.status, again.body) == (304, b"")


@pytest.mark.parametrize("path", ["/assets/index-Ab13.js", "/assets/none", "/assets/"])
@pytest.mark.parametrize("method", ["GET", "HEAD", "POST"])
def test_missing_file_is_not_kept(browser: Browser, method: str, path: str) -> None:
    """Otherwise a page of the next version would lack it for a year."""
    answer = browser.request(method, path)
    assert answer.status in (403, 404)
    assert answer.headers.get_all("Cache-Control") == ["no-store"]


def test_compressed(server: WebServer, browser: Browser) -> None:
    answer = browser.get(SCRIPT, **{"Accept-Encoding": "gzip"})
    assert answer.headers["Content-Encoding"] == "gzip"
    assert answer.headers["Vary"] == "Accept-Encoding"
    assert gzip.decompress(answer.body) == (server.pages / SCRIPT[1:]).read_bytes()
    assert browser.get(SCRIPT, **{"Accept-Encoding": "br"}).headers["Content-Encoding"] == "br"


def test_answers_are_not_compressed(simulator: StartSimulator, browser: Browser) -> None:
    simulator()
    answer = browser.get("/api/sequence", **{"Accept-Encoding": "gzip, br"})
    assert answer.headers["Content-Encoding"] is None


def test_guards_of_every_answer(simulator: StartSimulator, browser: Browser) -> None:
    simulator()
    answers = {
        200: [browser.get("/"), browser.get("/api/status"), browser.command("POST", "run", {})],
        401: [browser.request("POST", "/api/command/run", b"{}", HEADERS, login=False)],
        403: [browser.get("/assets/"), browser.request("POST", "/", b"")],
        404: [browser.get("/none"), browser.get("/api/none")],
    }
    for answer in (answer for some in answers.values() for answer in some):
        for name, value in GUARDS.items():
            assert answer.headers.get_all(name) == ([value] if value else None), answer
    del answers[200]
    for status, some in answers.items():
        assert [answer.status for answer in some] == [status] * len(some)


@pytest.mark.parametrize(
    ("host", "status"),
    [
        ("gc.example", 200),
        ("GC.example:8080", 200),
        ("192.0.2.1", 200),
        ("[::1]:80", 200),
        ("gcxexample", 403),
        ("evil.example", 403),
        ("1.evil.example", 403),
    ],
)
def test_name_of_the_server(browser: Browser, host: str, status: int) -> None:
    """A foreign name that resolves to this server may be a DNS rebinding attack."""
    assert browser.get("/", Host=host).status == status
    assert browser.get("/api/none", Host=host).status == (404 if status == 200 else 403)


@pytest.mark.parametrize("octets", [65536, 65537, 81921])
@pytest.mark.parametrize("pieces", [False, True], ids=["length", "pieces"])
def test_longest_body(untouched: str, browser: Browser, octets: int, pieces: bool) -> None:
    """The gateway rejects a body that is too long, unless it exceeds the server's own limit."""
    path = "/api/command/alarm-reset"
    lines = [f"POST {path} HTTP/1.1", f"Host: {untouched}", "Connection: close"]
    lines += [f"{name}: {value}" for name, value in HEADERS.items()]
    lines += [f"Authorization: {browser.authorization('POST', path)}"]
    body = b"x" * octets
    if pieces:
        lines += ["Transfer-Encoding: chunked"]
        body = f"{octets:x}\r\n".encode() + body + b"\r\n0\r\n\r\n"
    else:
        lines += [f"Content-Length: {octets}"]
    with browser.connect() as connection:
        connection.sendall("\r\n".join([*lines, "", ""]).encode() + body)
        with connection.makefile("rb") as stream:
            answer = stream.read()
    # At the limit the body is read, but it is not JSON.
    assert answer.startswith(b"HTTP/1.1 400 " if octets == 65536 else b"HTTP/1.1 413 ")
    assert (b"application/problem+json" in answer) is (octets < 81920)


def test_end_before_the_length(untouched: str, server: WebServer, browser: Browser) -> None:
    """A request cut off by a disconnecting browser has no effect."""
    path = "/api/command/alarm-reset"
    lines = [f"POST {path} HTTP/1.1", f"Host: {untouched}", "Content-Length: 3"]
    lines += [f"{name}: {value}" for name, value in HEADERS.items()]
    lines += [f"Authorization: {browser.authorization('POST', path)}"]
    with browser.connect() as connection:
        connection.sendall("\r\n".join([*lines, "", ""]).encode() + b"{}")
        connection.shutdown(socket.SHUT_WR)
        with connection.makefile("rb") as stream:
            assert not stream.read().startswith(b"HTTP/1.1 200")
    assert server.commands() == []


def test_logs(simulator: StartSimulator, start_server: StartServer) -> None:
    """Everything with the user's name, except reports, which are requested all the time."""
    simulator()
    server = start_server()
    browser = Browser(server.address, PASSWORD)
    for path in ("/", "/api/status", "/api/config", "/none%22%20x"):
        browser.get(path)
    browser.command("POST", "alarm-reset", {})
    wanted = [
        ('-', '"GET / HTTP/1.1" 200'),
        ('-', '"GET /none%22%20x HTTP/1.1" 404'),
        ('-', '"POST /api/command HTTP/1.1" 401'),
        ('operator', '"POST /api/command/alarm-reset HTTP/1.1" 200'),
    ]  # fmt: skip
    server.stop()
    for line, (user, request) in zip(server.accesses(), wanted, strict=True):
        assert f" {user} [" in line and f"] {request} " in line
    assert server.complaints() == []


def test_encrypted(simulator: StartSimulator, start_server: StartServer, folder: Path) -> None:
    """Over HTTP there is only the redirect to HTTPS; the Origin of a command must be of HTTPS."""
    address = simulator().address
    pem, port = folder / "server.pem", WEB_PORT + 1
    subprocess.run([CONFIGURATION / "gc-web-certificate", "--file", pem, address], check=True)
    settings = {"certificate": f'"{pem}"', "address": f'"{address}"', "https_port": port}
    lines = [f"var.{name} = {value}" for name, value in settings.items()]
    start_server(*lines, f'include "{CONFIGURATION}/tls.conf"')
    for host in ("gc.example", address):
        for authority in (host, f"{host}:{WEB_PORT}"):
            moved = Browser(address).get("/api/status?x", Host=authority)
            there = f"https://{host}:{port}/api/status?x"
            assert (moved.status, moved.headers["Location"]) == (301, there)
    unsafe = Browser(address).request("POST", "/api/command/alarm-reset", b"{}", HEADERS)
    assert unsafe.status == 301

    context = ssl.create_default_context(cafile=pem)
    browser = Browser(address, PASSWORD, port, context)
    assert browser.get("/").status == 200
    for origin, status in ((f"https://{address}:{port}", 200), (f"http://{address}:{port}", 403)):
        answer = browser.command("POST", "alarm-reset", {}, Origin=origin)
        assert answer.status == status
    for version, good in (("-tls1_1", False), ("-tls1_2", True), ("-tls1_3", True)):
        # At the lowest security level, otherwise this client would reject the old version itself.
        client = ["openssl", "s_client", "-connect", f"{address}:{port}", version]
        client += ["-cipher", "DEFAULT:@SECLEVEL=0"]
        done = subprocess.run(client, stdin=subprocess.DEVNULL, capture_output=True)
        assert (done.returncode == 0) is good, version
