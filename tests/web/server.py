"""The web server with the controllers' configuration, and a browser."""

import hashlib
import http.client
import json
import os
import re
import shutil
import signal
import socket
import ssl
import subprocess
import time
from collections.abc import Mapping
from dataclasses import dataclass
from pathlib import Path
from typing import Any

from interface import faults_of_answer, faults_of_request
from programs import LIMIT, ROOT, SCHEMAS

CONFIGURATION = ROOT / "web" / "server"
# Where packaging/unpack puts it, unless it is installed.
UNPACKED = ROOT / "build" / "lighttpd" / "usr"
LIGHTTPD = shutil.which("lighttpd", path="/usr/sbin") or str(UNPACKED / "sbin" / "lighttpd")
MODULES = [] if LIGHTTPD.startswith("/usr/sbin") else ["-m", str(UNPACKED / "lib" / "lighttpd")]
WEB_PORT = 8080
DIAGNOSIS = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ (.*)")
REALM = "Gas chromatograph"
USER = "operator"
PASSWORD = "pass word: ä"
# Headers that a page of this server sends with a command.
HEADERS = {"X-GC-Request": "1", "Content-Type": "application/json"}


def digest(*parts: str) -> str:
    return hashlib.sha256(":".join(parts).encode()).hexdigest()


def wait_until(done: Any) -> Any:
    """Repeats a call until its result is true, and returns the result."""
    deadline = time.monotonic() + LIMIT
    while not (answer := done()):
        assert time.monotonic() < deadline
        time.sleep(0.002)
    return answer


@dataclass(frozen=True)
class Answer:
    status: int
    headers: http.client.HTTPMessage
    body: bytes

    @property
    def document(self) -> Any:
        return json.loads(self.body)

    def expect_problem(self, status: int) -> dict[str, Any]:
        """Expects the gateway's own refusal, and returns it."""
        assert (self.status, self.headers["Content-Type"]) == (status, "application/problem+json")
        assert self.document["status"] == status
        assert self.headers["Link"] is None
        return self.document


# Statuses of all answers that were checked against the description.
described: list[int] = []


def expect_described(
    method: str, path: str, body: bytes | None, headers: Mapping[str, str], answer: Answer
) -> None:
    """Checks requests to the gateway, and their answers, against docs/openapi.json."""
    plain = path.partition("?")[0]
    if not (plain == "/api" or plain.startswith("/api/")):
        return
    described.append(answer.status)
    faults = faults_of_answer(method, plain, answer.status, answer.headers, answer.body)
    if answer.status in {200, 204}:
        faults += faults_of_request(method, plain, headers, body)
    assert not faults, f"{method} {path} {answer.status}: {faults}"


class Browser:
    """Sends requests to one server, each on a new connection; logged in if it has a password."""

    def __init__(
        self,
        address: str,
        password: str | None = None,
        port: int = WEB_PORT,
        context: ssl.SSLContext | None = None,
        source: str = "",
    ) -> None:
        """`context`: for HTTPS. `source`: the browser's own address."""
        self.address = address
        self._source = (source, 0)
        self._password = password
        self._port = port
        self._context = context
        self._nonce = ""

    def connect(self) -> socket.socket:
        return socket.create_connection((self.address, WEB_PORT), LIMIT, self._source)

    def authorization(self, method: str, path: str, user: str = USER) -> str:
        """The value of the Authorization header for this request."""
        if not self._nonce:
            challenge = self.request("POST", "/api/command", login=False).headers[
                "WWW-Authenticate"
            ]
            fields = re.fullmatch(
                rf'Digest realm="{REALM}", charset="UTF-8", algorithm=SHA-256, '
                r'nonce="([^"]+)", qop="auth"',
                challenge,
            )
            assert fields, challenge
            self._nonce = fields[1]
        secret = digest(user, REALM, self._password or "")
        response = digest(
            secret, self._nonce, "00000001", "abc", "auth", digest(method, path)
        )
        return (
            f'Digest username="{user}", realm="{REALM}", nonce="{self._nonce}", uri="{path}", '
            f'algorithm=SHA-256, qop=auth, nc=00000001, cnonce="abc", response="{response}"'
        )

    def request(
        self,
        method: str,
        path: str,
        body: bytes | None = None,
        headers: Mapping[str, str] | None = None,
        login: bool = True,
    ) -> Answer:
        """`login`: whether to send the login, if there is a password."""
        every = dict(headers or {})
        if login and self._password is not None:
            every["Authorization"] = self.authorization(method, path)
        if self._context is None:
            connection = http.client.HTTPConnection(
                self.address, self._port, timeout=LIMIT, source_address=self._source
            )
        else:
            connection = http.client.HTTPSConnection(
                self.address, self._port, timeout=LIMIT, context=self._context
            )
        try:
            connection.request(method, path, body, every)
            answer = connection.getresponse()
            received = Answer(answer.status, answer.headers, answer.read())
        finally:
            connection.close()
        expect_described(method, path, body, every, received)
        return received

    def get(self, path: str, **headers: str) -> Answer:
        return self.request("GET", path, headers=headers, login=False)

    def command(self, method: str, path: str, document: object = None, **headers: str) -> Answer:
        """Sends a command like a page of this server. `document`: JSON, or octets."""
        octets = document if isinstance(document, bytes) else json.dumps(document).encode()
        changed = {name.replace("_", "-"): text for name, text in headers.items()}
        return self.request(method, f"/api/command/{path}", octets, {**HEADERS, **changed})


class WebServer:
    """lighttpd, which runs until it is stopped.

    `folder`: for all its files. `instrument`: the address of the controller and of the web server.
    `lines`: additional configuration lines. `scripts`: folder of its Lua scripts. `libraries`: the
    path to the maker's libraries. `units`: of the instrument's values.
    """

    def __init__(
        self,
        folder: Path,
        bin_dir: Path,
        tool: Path,
        instrument: str,
        lines: list[str],
        scripts: Path = CONFIGURATION,
        libraries: str = "",
        units: str = "",
    ) -> None:
        self.address = instrument
        self.state = folder / "state"
        self.data = folder / "data"
        self.pages = folder / "pages"
        self.logs = folder / "logs"
        self.log_path = self.logs / "commands.log"
        for part in (self.state, self.data, folder / "cache", self.logs, self.pages / "assets"):
            part.mkdir(parents=True)
        (self.pages / "index.html").write_text("<!doctype html>")
        (self.pages / "assets" / "index-Ab12.js").write_text("// " + 1000 * "x")
        variables = {
            "pages": self.pages,
            "schemas": SCHEMAS,
            "programs": bin_dir.parent / "web",
            "tool": tool,
            "instrument": instrument,
            "state": self.state,
            "data": self.data,
            "cache": folder / "cache",
            "logs": self.logs,
            "scripts": scripts,
            "libraries": libraries,
            "units": units,
            "names": r"gc\.example",
        }
        settings = [f'var.{name} = "{value}"' for name, value in variables.items()]
        settings += [f'server.bind = "{instrument}"', f"server.port = {WEB_PORT}"]
        settings += [f'include "{CONFIGURATION}/server.conf"', *lines]
        path = folder / "lighttpd.conf"
        path.write_text("\n".join(settings) + "\n", encoding="utf-8")
        self._process = subprocess.Popen(
            [LIGHTTPD, *MODULES, "-D", "-f", str(path)],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
        )
        try:
            wait_until(self._answers)
        except BaseException:
            # No caller has the object yet, so nothing else could stop it.
            self._process.kill()
            self._process.communicate()
            raise

    @property
    def pid(self) -> int:
        return self._process.pid

    def _answers(self) -> bool:
        if self._process.poll() is not None:
            assert self._process.stdout is not None
            raise AssertionError(f"no web server: {self._process.stdout.read().decode()}")
        with socket.socket() as client:
            return client.connect_ex((self.address, WEB_PORT)) == 0

    def has_ended(self) -> bool:
        return self._process.poll() is not None

    def programs(self) -> int:
        """The number of its child processes."""
        tasks = Path(f"/proc/{self.pid}/task")
        children = [(task / "children").read_text(encoding="ascii") for task in tasks.iterdir()]
        return len(" ".join(children).split())

    def log(self) -> list[dict[str, Any]]:
        """The log of commands."""
        path = self.log_path
        lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
        return [json.loads(line) for line in lines]

    def commands(self) -> list[dict[str, Any]]:
        """The log lines about commands that have ended."""
        return [line for line in self.log() if line["event"] == "ended"]

    def complaints(self) -> list[str]:
        """The errors in lighttpd's error log, without timestamps."""
        told = [line.split(": ", 1)[1] for line in self._errors() if not DIAGNOSIS.match(line)]
        comings = re.compile(r"\(server\.c\.\d+\) (server|\[note\]) ")
        return [line for line in told if not comings.match(line)]

    def diagnoses(self) -> list[str]:
        """The gateway's lines there about failures, without timestamps."""
        found = [DIAGNOSIS.match(line) for line in self._errors()]
        return [match[1] for match in found if match]

    def _errors(self) -> list[str]:
        return (self.logs / "error.log").read_text(encoding="utf-8").splitlines()

    def accesses(self) -> list[str]:
        """The access log, which is complete once the server has stopped."""
        return (self.logs / "access.log").read_text(encoding="utf-8").splitlines()

    def stop(self) -> None:
        if self._process.returncode is not None:
            return
        # Gracefully: the exit status would tell of connections that are still open.
        self._process.send_signal(signal.SIGINT)
        try:
            said = self._process.communicate(timeout=LIMIT)[0]
        finally:
            self._process.kill()
        assert (self._process.returncode, said) == (0, b""), said


def write_passwords(path: Path, password: str = PASSWORD) -> None:
    path.write_text(f"{USER}:{REALM}:{digest(USER, REALM, password)}\n")
    os.chmod(path, 0o600)
