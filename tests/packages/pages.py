"""A browser of the pages on a machine: curl, in the machine's network."""

import json
import subprocess
import time
from collections.abc import Callable
from dataclasses import dataclass
from typing import Any

from machine import LIMIT, Machine

USER = "operator"
PASSWORD = "grün und blau"


@dataclass(frozen=True)
class Answer:
    status: int
    headers: dict[str, str]
    body: bytes

    @property
    def document(self) -> dict[str, Any]:
        return json.loads(self.body)


class Pages:
    def __init__(self, machine: Machine, https: int = 8443, http: int = 8080) -> None:
        self._machine = machine
        self._https = f"https://127.0.0.1:{https}"
        self._http = f"http://127.0.0.1:{http}"

    def _curl(self, *options: str) -> list[str]:
        # Self-signed, so nobody vouches for the certificate.
        every = ("--silent", "--show-error", "--insecure", "--include", "--max-time", str(LIMIT))
        return [str(word) for word in self._machine.beside("curl", *every, *options)]

    @staticmethod
    def _parse(said: bytes) -> Answer:
        """The last answer: a login takes two."""
        body = said
        while body.startswith(b"HTTP/"):
            head, _, body = body.partition(b"\r\n\r\n")
        first, *lines = head.decode().split("\r\n")
        headers = dict(line.split(": ", 1) for line in lines)
        return Answer(int(first.split()[1]), {k.lower(): v for k, v in headers.items()}, body)

    def get(self, path: str, plain: bool = False) -> Answer:
        address = self._http if plain else self._https
        done = subprocess.run(self._curl(address + path), capture_output=True, check=False)
        assert done.returncode == 0, done.stderr.decode()
        return self._parse(done.stdout)

    def answers(self) -> bool:
        done = subprocess.run(self._curl(self._https + "/"), capture_output=True, check=False)
        return done.returncode == 0

    def asks_for_password(self) -> bool:
        return self.answers() and self.command("login", {}, password="").status == 401

    def wait(self, until: Callable[["Pages"], bool] = answers) -> None:
        """The web server tells neither when it listens nor when it has read its settings again."""
        deadline = time.monotonic() + LIMIT
        while not until(self):
            assert time.monotonic() < deadline, self._machine.shell(
                "systemctl status --no-pager 'gc-*' || tail /var/log/gc-web*/error.log || true"
            )

    def begin(self, command: str, body: dict[str, Any], password: str = PASSWORD) -> subprocess.Popen:
        """A command that is being carried out; its answer is parsed by `end`."""
        login = ["--digest", "--user", f"{USER}:{password}"] if password else []
        headers = ["--header", "X-GC-Request: 1", "--header", "Content-Type: application/json"]
        data = ["--data", json.dumps(body)]
        address = f"{self._https}/api/command/{command}"
        return subprocess.Popen(
            self._curl(*login, *headers, *data, address),
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
        )

    def end(self, command: subprocess.Popen) -> Answer:
        said, wrong = command.communicate(timeout=LIMIT)
        assert command.returncode == 0, wrong.decode()
        return self._parse(said)

    def command(self, command: str, body: dict[str, Any], password: str = PASSWORD) -> Answer:
        return self.end(self.begin(command, body, password))


def set_password(machine: Machine, umask: str = "022") -> None:
    """As the owner does it, and waits until the pages ask for it."""
    machine.run("gc-web-password", USER, umask=umask, stdin=f"{PASSWORD}\n")
    Pages(machine).wait(Pages.asks_for_password)
