"""Hostile requests: each is rejected, and none reaches the instrument."""

import json
import re
import socket
from typing import NamedTuple

import pytest
from conftest import StartSimulator
from server import Browser, WebServer

BIG = "9" * 400
SEQUENCE = {"Table_repeat": 1, "Continuous": False, "total": 0, "rows": []}
RESET = "/api/command/alarm-reset"
SECOND = b"GET /api/status HTTP/1.1\r\nHost: {host}\r\n\r\n"
MARKS = ["X-GC-Request: 1", "Content-Type: application/json"]


class Request(NamedTuple):
    """Octets to send. {host} is this server's, {login} an operator's."""

    name: str
    status: int  # 0: the connection is closed without an answer
    octets: bytes


def get(name: str, status: int, target: str, *headers: str) -> Request:
    lines = [f"GET {target} HTTP/1.1", "Host: {host}", *headers, "", ""]
    return Request(name, status, "\r\n".join(lines).encode("latin-1"))


def command(
    name: str,
    status: int,
    body: bytes = b"{}",
    *headers: str,
    path: str = RESET,
    method: str = "POST",
    mark: bool = True,
    length: bool = True,
) -> Request:
    """The login of an operator."""
    lines = [f"{method} {path} HTTP/1.1", "Host: {host}", "{login}"]
    lines += MARKS if mark else []
    lines += [f"Content-Length: {len(body)}"] if length else []
    head = "\r\n".join([*lines, *headers, "", ""])
    return Request(name, status, head.encode("latin-1") + body)


def put(name: str, status: int, path: str, body: object) -> Request:
    octets = body if isinstance(body, bytes) else json.dumps(body).encode()
    return command(name, status, octets, path=f"/api/command/{path}", method="PUT")


def post(name: str, status: int, path: str, body: object) -> Request:
    octets = body if isinstance(body, bytes) else json.dumps(body).encode()
    return command(name, status, octets, path=f"/api/command/{path}")


def raw(name: str, status: int, text: str) -> Request:
    return Request(name, status, text.encode("latin-1"))


PATHS = [
    get("out of the pages", 400, "/../lighttpd.conf"),
    get("out of the pages, deep", 400, "/assets/../../passwords"),
    get("out of the pages, encoded dots", 400, "/%2e%2e/lighttpd.conf"),
    get("out of the pages, half encoded dots", 400, "/.%2E/passwords"),
    get("out of the pages, encoded slash", 400, "/..%2flighttpd.conf"),
    get("out of the pages, all encoded", 400, "/%2e%2e%2fpasswords"),
    get("out of the pages, encoded twice", 404, "/%252e%252e%252fpasswords"),
    get("out of the pages, backslash", 404, "/..\\passwords"),
    get("out of the pages, encoded backslash", 404, "/..%5cpasswords"),
    get("out of the pages, overlong slash", 400, "/..%c0%afpasswords"),
    get("out of the pages, wide slash", 404, "/..%ef%bc%8fpasswords"),
    get("out of the pages, semicolon", 404, "/..;/passwords"),
    get("the system's passwords", 400, "//etc/passwd"),
    get("out of the schemas", 400, "/schemas/../gateway.md"),
    get("out of the schemas, no slash", 404, "/schemas../gateway.md"),
    get("beside the schemas", 403, "/schemas/README.md"),
    get("folder of the schemas", 403, "/schemas/"),
    get("folder of the pages", 403, "/assets/"),
    get("a schema and more", 403, "/schemas/status.schema.json/x"),
    get("a page and more", 403, "/index.html/x"),
    get("NUL", 400, "/index.html%00.js"),
    get("CR LF in the path", 400, "/%0d%0aSet-Cookie:%20a=b"),
    get("control character", 400, "/%01"),
    get("no UTF-8", 400, "/%ff"),
    get("half an escape", 404, "/%"),
    get("no escape", 404, "/%zz"),
    get("long path", 404, "/" + 4000 * "a"),
    get("longer than all headers may be", 431, "/" + 9000 * "a"),
    get("no slash", 400, "api/status"),
    get("fragment", 404, "/api#/status"),
]
REPORTS = [
    get("program itself", 404, "/api"),
    get("other case", 404, "/API/status"),
    get("report and more", 404, "/api/status/x"),
    get("report, NUL", 400, "/api/status%00"),
    get("report, dots", 400, "/api/./status"),
    get("report, dots to a command", 400, "/api/status/../command/run"),
    get("report, dots encoded", 400, "/api/x/%2e%2e/status"),
    get("report, slash encoded", 400, "/api%2fstatus"),
    get("report, slashes", 400, "/api//status"),
    get("beside the program", 404, "/api../report"),
    get("beside the program, like its name", 404, "/apix/status"),
    get("options", 400, "/api/status?-s+1.2.3.4"),
    get("options, encoded", 400, "/api/status?-s%201.2.3.4%20-R%20auto"),
    get("options as a path", 404, "/api/-R%20auto"),
    get("option without a word", 400, "/api/config?-h"),
    get("query", 400, "/api/alarms?stream=1"),
    get("query, shell", 400, "/api/alarms?;reboot"),
    get("shell in the path", 404, "/api/status;reboot"),
    get("shell in the path, encoded", 404, "/api/$(reboot)%60reboot%60"),
    get("body without its length", 400, "/api/status", "Transfer-Encoding: chunked"),
    get("body", 400, "/api/status", "Content-Length: 2", "", "{}"),
    raw("report, DELETE", 405, "DELETE /api/status HTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("report, TRACE", 405, "TRACE /api/status HTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("report, PROPFIND", 405, "PROPFIND /api/status HTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("made-up method", 501, "STATUS /api/status HTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("method in small letters", 501, "get /api/status HTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("page, POST", 403, "POST / HTTP/1.1\r\nHost: {host}\r\nContent-Length: 0\r\n\r\n"),
    raw("page, PUT", 403, "PUT /index.html HTTP/1.1\r\nHost: {host}\r\nContent-Length: 1\r\n\r\nx"),
    raw("page, DELETE", 403, "DELETE /index.html HTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("page, TRACE", 403, "TRACE / HTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("proxy", 403, "CONNECT {host} HTTP/1.1\r\nHost: {host}\r\n\r\n"),
]
HEADERS = [
    raw("no host", 400, "GET /api/status HTTP/1.1\r\n\r\n"),
    raw("no host, old", 403, "GET /api/status HTTP/1.0\r\n\r\n"),
    raw("oldest", 0, "GET /api/status\r\n"),
    raw("next version", 505, "GET /api/status HTTP/3.7\r\nHost: {host}\r\n\r\n"),
    raw("no version", 400, "GET /api/status XTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("another name", 403, "GET /api/status HTTP/1.1\r\nHost: evil.example\r\n\r\n"),
    raw("longer name", 403, "GET /api/status HTTP/1.1\r\nHost: gc.example.org\r\n\r\n"),
    raw("name and address", 400, "GET /api/status HTTP/1.1\r\nHost: {host}@evil.example\r\n\r\n"),
    raw("absolute", 400, "GET http://evil.example/api/status HTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("other scheme", 400, "GET file:///etc/passwd HTTP/1.1\r\nHost: {host}\r\n\r\n"),
    raw("two hosts", 400, "GET /api/status HTTP/1.1\r\nHost: {host}\r\nHost: a\r\n\r\n"),
    raw("empty host", 400, "GET /api/status HTTP/1.1\r\nHost: \r\n\r\n"),
    raw("path as a host", 400, "GET /api/status HTTP/1.1\r\nHost: ../x\r\n\r\n"),
    get("NUL in a header", 400, "/api/status", "X: a\0b"),
    get("header without a colon", 400, "/api/status", "X"),
    get("blank before the colon", 400, "/api/status", "X : a"),
    get("CR alone", 400, "/api/status", "X: a\rY: b"),
    get("header of 9 kB", 431, "/api/status", "X: " + 9000 * "a"),
    get("2000 headers", 431, "/api/status", *(f"X{n}: a" for n in range(2000))),
    Request("no HTTP", 400, bytes(range(1, 32)) + b"\r\n\r\n"),
    Request("TLS", 400, bytes.fromhex("160301003d0100003903030a0d0a0d0a")),
]
COMMANDS = [
    command("command with options", 400, path=f"{RESET}?-s+1.2.3.4"),
    command("no mark", 403, mark=False),
    command("mark twice", 403, b"{}", "X-GC-Request: 1"),
    command("mark in another header", 403, b"{}", "GC-Request: 1", mark=False),
    command("other origin", 403, b"{}", "Origin: http://evil.example"),
    command("origin like this one", 403, b"{}", "Origin: http://{host}.evil.example"),
    command("no origin", 403, b"{}", "Origin: null"),
    command("two origins", 403, b"{}", "Origin: http://{host}", "Origin: http://evil.example"),
    command("other site", 403, b"{}", "Sec-Fetch-Site: cross-site"),
    command("two types", 400, b"{}", "Content-Type: text/plain"),
    *(
        command(f"type: {kind}", 415, b"{}", MARKS[0], f"Content-Type: {kind}", mark=False)
        for kind in (
            "text/plain; charset=utf-8",
            "text/plain; charset=utf-8; application/json",
            "multipart/form-data; charset=utf-8",
            "application/json; charset=utf-16",
        )
    ),
    command("no type", 415, b"{}", MARKS[0], mark=False),
    command("GET", 405, b"", method="GET"),
    command("other method by a header", 405, b"", "X-HTTP-Method-Override: POST", method="GET"),
    command("no length", 411, b"", length=False),
    command("two lengths", 400, b"{}", "Content-Length: 3"),
    command("length of signs", 400, b"{}", "Content-Length: +2", length=False),
    command("length of less than nothing", 400, b"{}", "Content-Length: -1", length=False),
    command("length in hex", 400, b"{}", "Content-Length: 0x2", length=False),
    command("length of 2^64 + 2", 400, b"", "Content-Length: 18446744073709551618", length=False),
    command("length of a number", 400, b"", f"Content-Length: {BIG}", length=False),
    command("length and pieces", 400, b"2\r\n{}\r\n0\r\n\r\n", "Transfer-Encoding: chunked"),
    command("request after the end", 400, b"0\r\n\r\n" + SECOND, "Transfer-Encoding: chunked"),
    command("pieces, twice", 501, b"", "Transfer-Encoding: chunked, chunked", length=False),
    command("pieces, hidden", 501, b"0\r\n\r\n", "Transfer-Encoding: xchunked", length=False),
    command("piece without a size", 400, b"x\r\n", "Transfer-Encoding: chunked", length=False),
    command("huge piece", 400, b"f" * 20 + b"\r\n", "Transfer-Encoding: chunked", length=False),
    command("piece over the limit", 413, b"100000\r\n", "Transfer-Encoding: chunked", length=False),
    command("65,537 octets", 413, b'"' + 65535 * b"x" + b'"'),
    command("a megabyte", 413, b"", "Content-Length: 1048576", length=False),
    command("nothing", 400, b""),
    command("half of it", 400, b"{"),
    command("more than one", 400, b"{} {}"),
    command("NUL after it", 400, b"{}\0"),
    command("body that is no UTF-8", 400, b'{"\xff": 1}'),
    command("UTF-16", 400, "{}".encode("utf-16")),
    command("word that is no JSON", 400, b'{"a": NaN}'),
    command("60,000 levels", 422, 30000 * b"[" + 30000 * b"]"),
    command("20,000 members", 422, json.dumps({f"{n}": 0 for n in range(6000)}).encode()),
    command("a list", 422, b"[]"),
    command("a member", 422, b'{"a": 1}'),
    post("run of nothing", 422, "run", {}),
    post("run of what it is not", 422, "run", {"type": "SINGLE", "stream": 1}),
    post("run with options", 422, "run", {"type": "single -s 1.2.3.4", "stream": 1}),
    post("run with a text", 422, "run", {"type": "single", "stream": "1"}),
    post("run with a list", 422, "run", {"type": ["single"], "stream": 1}),
    post("run without a stream", 422, "run", {"type": "single"}),
    post("automation with a stream", 422, "run", {"type": "automation", "stream": 1}),
    post("run and more", 422, "run", {"type": "single", "stream": 1, "-s": "1.2.3.4"}),
    post("run twice", 422, "run", b'{"type": "single", "type": "automation", "stream": 1}'),
    post("abort some time", 422, "abort", {"when": "later"}),
    put("stream 47", 422, "stream", {"stream": 47}),
    put("stream below 0", 422, "stream", {"stream": -1}),
    put("half a stream", 422, "stream", {"stream": 1.5}),
    put("stream of a number", 400, "stream", f'{{"stream": {BIG}}}'.encode()),
    put("stream of a real", 400, "stream", b'{"stream": 1e999}'),
    put("stream and stream", 422, "stream", b'{"stream": 1, "stream": 2}'),
    put("no stream", 422, "stream", {"stream": None}),
    put("solution 11", 422, "solution", {"solution": 11}),
    put("sequence that is none", 422, "sequence", {"rows": "x"}),
    put("sequence of a word", 422, "sequence", {**SEQUENCE, "rows": [{"Type": 7}]}),
    put("calibration of a list", 422, "calibration", []),
    command("command that is none", 404, path="/api/command/reboot"),
    command("command itself", 404, path="/api/command"),
    command("command, slash", 404, path=f"{RESET}/"),
    command("command, other case", 404, path="/api/command/Alarm-Reset"),
    command("command as a report", 404, path="/api/alarm-reset"),
]
EVERY = [*PATHS, *REPORTS, *HEADERS, *COMMANDS]


def exchange(browser: Browser, octets: bytes) -> tuple[int, bytes]:
    """Status and the whole answer; 0 if there is none."""
    with browser.connect() as connection:
        connection.sendall(octets)
        connection.shutdown(socket.SHUT_WR)
        answer = b""
        while part := connection.recv(65536):
            answer += part
    status = re.match(rb"HTTP/1\.[01] (\d{3}) ", answer)
    return (int(status[1]) if status else 0), answer


def complete(request: Request, browser: Browser) -> bytes:
    octets = request.octets.replace(b"{host}", f"{browser.address}:8080".encode())
    if b"{login}" not in octets:
        return octets
    method, path, _ = octets.decode("latin-1").split(" ", 2)
    login = f"Authorization: {browser.authorization(method, path)}"
    return octets.replace(b"{login}", login.encode())


@pytest.mark.parametrize("request_", EVERY, ids=lambda request: request.name)
def test_refused(untouched: str, server: WebServer, browser: Browser, request_: Request) -> None:
    status, answer = exchange(browser, complete(request_, browser))
    assert status == request_.status, answer[:2000]
    # No part of it was taken for a second request.
    assert answer.count(b"HTTP/1.") == (0 if status == 0 else 1)
    assert b"Set-Cookie" not in answer
    assert server.commands() == []


def test_accepted(simulator: StartSimulator, server: WebServer, browser: Browser) -> None:
    """The table's requests without the malicious parts; otherwise they would prove nothing."""
    simulator()
    for request in (
        get("report", 200, "/api/alarms"),
        command("command", 200),
        command("pieces", 200, b"2\r\n{}\r\n0\r\n\r\n", "Transfer-Encoding: chunked", length=False),
        command("mark", 200, b"{}", *MARKS, mark=False),
        post("run", 200, "run", {"type": "single", "stream": 1}),
    ):
        octets = complete(request, browser).replace(b"\r\n", b"\r\nConnection: close\r\n", 1)
        assert exchange(browser, octets)[0] == request.status, request.name
