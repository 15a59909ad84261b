"""The programs under test: the tool, and the simulated controller."""

import getopt
import json
import os
import random
import re
import select
import shlex
import socket
import subprocess
import time
from collections.abc import Iterator, Mapping, Sequence
from contextlib import contextmanager
from dataclasses import dataclass
from decimal import Decimal
from pathlib import Path
from typing import Any

import jsonschema

PORT = 20047  # on which controllers listen
ROOT = Path(__file__).resolve().parents[2]
SCHEMAS = ROOT / "docs" / "schemas"
SCENARIOS = ROOT / "simulator" / "scenarios"
# The command that runs a tool built for another processor, if the tests are given one.
EMULATOR = shlex.split(os.environ.get("GC_EMULATOR", ""))
# Seconds until a hung program is killed; sanitized and emulated ones are slow.
LIMIT = 300.0 if EMULATOR else 60.0

# The report for each option; the other operations print only result objects.
REPORTS = {
    "-t": "status",
    "-g": "configuration",
    "-a": "alarms",
    "-q": "sequence",
    "-c": "calibration",
}
COMMANDS = ["-P", "-V", "-R", "-A", "-M", "-Q", "-C"]
# Reports that can be downloaded, and the options that take the file.
DOWNLOADABLE = {"sequence": "sequence-file", "calibration": "calibration-file"}
INPUT_FILES = {"-Q": "sequence-file", "-C": "calibration-file"}


def load_schema(name: str) -> dict[str, Any]:
    return json.loads((SCHEMAS / f"{name}.schema.json").read_text(encoding="utf-8"))


def load_scenario(name: str) -> dict[str, Any]:
    return json.loads((SCENARIOS / f"{name}.json").read_text(encoding="utf-8"))


def parse_strictly(text: bytes) -> dict[str, Any]:
    """Strict JSON, without two things that Python's parser accepts: NaN and duplicate keys."""

    def refuse(word: str) -> None:
        raise ValueError(f"{word} is not JSON")

    def members(pairs: list[tuple[str, Any]]) -> dict[str, Any]:
        assert len(pairs) == len(dict(pairs)), f"duplicate key: {pairs}"
        return dict(pairs)

    return json.loads(text.decode("utf-8"), parse_constant=refuse, object_pairs_hook=members)


def validate(name: str, document: Any) -> None:
    jsonschema.Draft4Validator(load_schema(name)).validate(document)


def is_valid(name: str, document: Any) -> bool:
    return jsonschema.Draft4Validator(load_schema(name)).is_valid(document)


def check_document(stdout: bytes, arguments: Sequence[str]) -> None:
    """Checks the tool's output: nothing, or one document of the requested kind."""
    if not stdout:
        return
    assert stdout.endswith(b"}\n"), stdout
    document = parse_strictly(stdout)
    if "ErrorCode" in document:
        validate("result", document)
        return
    options = getopt.gnu_getopt(list(arguments), "s:htgaqcv:A:V:R:M:Q:C:P")[0]
    asked = [option for option, _ in options if option in REPORTS or option in COMMANDS]
    name = REPORTS[asked[-1] if asked else "-t"]
    validate(name, document)
    if name in DOWNLOADABLE:
        validate(DOWNLOADABLE[name], document)


def printed(document: dict[str, Any]) -> str:
    """A document as the tool prints it, which uses exponents only below -7."""

    def number(match: re.Match[str]) -> str:
        value = Decimal(match[0])
        if -7 < value.adjusted() < 21:
            return f"{value:f}" if value % 1 else f"{value:.1f}"
        mantissa, exponent = match[0].split("e")
        return f"{mantissa}e{int(exponent)}"

    text = json.dumps(document, indent=4, ensure_ascii=False)
    return re.sub(r'(?<=": )-?[0-9.]+e[-+][0-9]+(?=,?$)', number, text, flags=re.MULTILINE) + "\n"


@contextmanager
def free_address() -> Iterator[str]:
    """A loopback address that nothing else uses in the meantime.

    The port below the controllers' is bound to mark the address as taken, so that concurrent tests,
    in this run or another, never get the same one.
    """
    while True:
        candidate = "127." + ".".join(str(random.randint(1, 254)) for _ in range(3))
        with socket.socket() as claim, socket.socket() as probe:
            try:
                claim.bind((candidate, PORT - 1))
                probe.bind((candidate, PORT))
            except OSError:
                continue
            probe.close()
            yield candidate
            return


@dataclass(frozen=True)
class Run:
    """One completed run of the tool."""

    stdout: bytes
    stderr: bytes
    status: int
    began: int  # clock time in seconds when the run began and ended
    ended: int
    seconds: float  # duration

    @property
    def document(self) -> dict[str, Any]:
        return parse_strictly(self.stdout)


def signed(status: int) -> int:
    """A status as shown in diagnostics."""
    return status - 2**32 if status >= 2**31 else status


def expect(run: Run, stdout: str, stderr: str = "") -> None:
    """Expects a run that accepted its command line, with exactly these outputs."""
    assert (run.stdout.decode(), run.stderr.decode(), run.status) == (stdout, stderr, 0)


def expect_verdict(run: Run, code: int, words: str, stderr: str = "") -> None:
    result = f'{{\n    "ErrorCode": {code},\n    "Msg": "{words}"\n}}\n'
    expect(run, result, stderr)


def expect_failed(run: Run, status: int) -> None:
    """Expects a run that connected but got no report."""
    expect(run, "", f"Execute failed {signed(status)}.\n")


class Tool:
    """Runs GC_Web in a folder that must stay empty."""

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
        """`name`: the tool's argv[0]. `under`: a command that runs the tool."""
        program = str(self._program)
        if under:
            command = [*under, program]
        elif EMULATOR:
            command = [*EMULATOR, "-0", name, program]
        else:
            command = [name]
        # The clock of whole seconds may lag behind this one by a tick of 10 ms.
        began = int(time.time() - 0.01)
        start = time.monotonic()
        done = subprocess.run(
            [*command, *arguments],
            executable=None if under or EMULATOR else program,
            cwd=self._folder,
            env={**os.environ, **(environment or {})},
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=LIMIT,
            check=False,
        )
        seconds = time.monotonic() - start
        ended = int(time.time())
        check_document(done.stdout, arguments)
        left = list(self._folder.iterdir())
        assert not left, f"the tool left files behind: {left}"
        return Run(done.stdout, done.stderr, done.returncode, began, ended, seconds)


class Simulator:
    """A simulated controller, which runs until it is stopped."""

    def __init__(self, bin_dir: Path, address: str, folder: Path, options: list[str]) -> None:
        self.address = address
        self._socket = str(folder / "control.sock")
        where = ["--listen", address, "--control", self._socket]
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
        """Passes a verb to gc-simctl and returns the controller's answer."""
        done = subprocess.run(
            [*self._control, *verb], capture_output=True, timeout=LIMIT, check=False
        )
        assert done.returncode == 0 and done.stderr == b"", (verb, done.stderr.decode())
        return json.loads(done.stdout)

    def ask(self, **request: Any) -> dict[str, Any]:
        """Does what gc-simctl does, without starting a process: most tests read the journal."""
        with socket.socket(socket.AF_UNIX) as client:
            client.settimeout(LIMIT)
            client.connect(self._socket)
            client.sendall(json.dumps(request).encode() + b"\n")
            with client.makefile("rb") as answers:
                answer = json.loads(answers.readline())
        assert answer["ok"], (request, answer)
        return answer

    def fault(self, **fault: Any) -> None:
        self.ask(verb="fault", fault=fault)

    def journal(self) -> list[dict[str, Any]]:
        """The calls made by clients so far, oldest first."""
        return self.ask(verb="journal")["lines"]

    def called(self) -> list[str]:
        """The calls of the tool's last run, between Connect and Disconnect."""
        calls = [line["call"] for line in self.last_run()]
        assert (calls[0], calls[-1]) == ("Connect", "Disconnect"), calls
        return calls[1:-1]

    def last_run(self) -> list[dict[str, Any]]:
        """The journal of the last connection."""
        lines = self.journal()
        return [line for line in lines if line["connection"] == lines[-1]["connection"]]

    def parameters(self) -> dict[str, float]:
        """All parameters by name."""
        return self.ask(verb="snapshot")["parameters"]

    def stop(self) -> None:
        self._process.terminate()
        try:
            stdout, stderr = self._process.communicate(timeout=LIMIT)
        finally:
            self._process.kill()
        end = (self._process.returncode, stdout, stderr.decode())
        assert end == (0, b"", ""), f"gc-sim ended with {end}"
