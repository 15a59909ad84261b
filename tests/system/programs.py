"""The programs under test as the tests use them: the tool, and the simulated controller."""

import json
import os
import select
import subprocess
import time
from collections.abc import Mapping
from dataclasses import dataclass
from pathlib import Path
from typing import Any

import jsonschema

PORT = 20047  # the one on which controllers listen
SCHEMAS = Path(__file__).resolve().parents[2] / "docs" / "schemas"
LIMIT = 60.0  # seconds until a program that hangs is killed; sanitized ones are slow


def load_schema(name: str) -> dict[str, Any]:
    return json.loads((SCHEMAS / f"{name}.schema.json").read_text(encoding="utf-8"))


def parse_strictly(text: bytes) -> dict[str, Any]:
    """JSON without the liberties that Python's parser takes: NaN, and a key given twice."""

    def refuse(word: str) -> None:
        raise ValueError(f"{word} is no JSON")

    def members(pairs: list[tuple[str, Any]]) -> dict[str, Any]:
        assert len(pairs) == len(dict(pairs)), f"a key given twice: {pairs}"
        return dict(pairs)

    return json.loads(text.decode("utf-8"), parse_constant=refuse, object_pairs_hook=members)


def check_document(stdout: bytes) -> None:
    """Checks what the tool printed: nothing, or one document of a known format and a newline."""
    if not stdout:
        return
    assert stdout.endswith(b"}\n"), stdout
    document = parse_strictly(stdout)
    schema = load_schema("result" if "ErrorCode" in document else "status")
    jsonschema.Draft4Validator(schema).validate(document)


@dataclass(frozen=True)
class Run:
    """One finished run of the tool."""

    stdout: bytes
    stderr: bytes
    status: int
    began: int  # seconds of the clock at which the run began and ended
    ended: int
    seconds: float  # how long it took

    @property
    def document(self) -> dict[str, Any]:
        return parse_strictly(self.stdout)


class Tool:
    """Runs GC_Web in a folder that it must leave empty."""

    def __init__(self, program: Path, folder: Path) -> None:
        self._program = program
        self._folder = folder

    def __call__(
        self,
        *arguments: str,
        name: str = "GC_Web",
        environment: Mapping[str, str] | None = None,
        under: list[str] | None = None,
    ) -> Run:
        """`name`: under which the tool is invoked. `under`: a command that runs the tool."""
        command = [*under, str(self._program)] if under else [name]
        # The clock of whole seconds changes up to a tick of 10 ms later than this one.
        began = int(time.time() - 0.01)
        start = time.monotonic()
        done = subprocess.run(
            [*command, *arguments],
            executable=None if under else self._program,
            cwd=self._folder,
            env={**os.environ, **(environment or {})},
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=LIMIT,
            check=False,
        )
        seconds = time.monotonic() - start
        ended = int(time.time())
        check_document(done.stdout)
        left = list(self._folder.iterdir())
        assert not left, f"the tool left files behind: {left}"
        return Run(done.stdout, done.stderr, done.returncode, began, ended, seconds)


class Simulator:
    """A simulated controller, which runs until it is stopped."""

    def __init__(self, bin_dir: Path, address: str, folder: Path, options: list[str]) -> None:
        self.address = address
        where = ["--listen", address, "--control", str(folder / "control.sock")]
        self._control = [str(bin_dir / "gc-simctl"), *where]
        self._process = subprocess.Popen(
            [str(bin_dir / "gc-sim"), *where, *options],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
        )
        assert self._process.stdout is not None
        said = b""
        if select.select([self._process.stdout], [], [], LIMIT)[0]:
            said = self._process.stdout.readline()
        if said != b"ready\n":
            self._process.kill()
            stderr = self._process.communicate()[1]
            raise AssertionError(f"gc-sim is not ready: {said!r} {stderr.decode()}")

    def control(self, *verb: str) -> dict[str, Any]:
        """Gives gc-simctl a verb and returns the controller's answer."""
        done = subprocess.run(
            [*self._control, *verb], capture_output=True, timeout=LIMIT, check=False
        )
        assert done.returncode == 0 and done.stderr == b"", (verb, done.stderr.decode())
        return json.loads(done.stdout)

    def fault(self, **fault: Any) -> None:
        self.control("fault", json.dumps(fault))

    def journal(self) -> list[dict[str, Any]]:
        """What clients called so far, oldest first."""
        return self.control("journal")["lines"]

    def stop(self) -> None:
        self._process.terminate()
        try:
            stdout, stderr = self._process.communicate(timeout=LIMIT)
        finally:
            self._process.kill()
        end = (self._process.returncode, stdout, stderr.decode())
        assert end == (0, b"", ""), f"gc-sim ended with {end}"
