"""Fixtures: an address for each test, the tool, and simulated controllers."""

import json
import os
import shutil
import socket
import subprocess
import tempfile
from collections.abc import Callable, Iterator, Mapping
from contextlib import ExitStack
from pathlib import Path
from typing import Any

import pytest
from failures import write_table
from programs import (
    EMULATOR,
    INPUT_FILES,
    PORT,
    ROOT,
    Run,
    Simulator,
    Tool,
    free_address,
    is_valid,
    load_scenario,
)

StartSimulator = Callable[..., Simulator]
Traced = Callable[..., list[str]]
Download = Callable[..., Run]

BIN_DIR = Path(os.environ.get("GC_BIN_DIR", ROOT / "build" / "dev" / "bin")).resolve()
# The tool may be another build than the simulated controller: for another processor.
TOOL = Path(os.environ.get("GC_TOOL", BIN_DIR / "GC_Web")).resolve()


def pytest_configure() -> None:
    if not TOOL.is_file():
        raise pytest.UsageError(f"no {TOOL}: build it, or set GC_BIN_DIR")


def pytest_terminal_summary(terminalreporter: Any) -> None:
    """Prints the failure matrix that its tests sent along with their reports."""
    reports = [report for reports in terminalreporter.stats.values() for report in reports]
    properties = [
        (name, text)
        for report in reports
        if getattr(report, "when", "") == "call"
        for name, text in report.user_properties
        if name == "failure matrix"
    ]
    if properties:
        terminalreporter.write_line("")
        for line in write_table(properties):
            terminalreporter.write_line(line)


@pytest.fixture(scope="session")
def bin_dir() -> Path:
    """The folder of the programs under test."""
    return BIN_DIR


@pytest.fixture
def folder() -> Iterator[Path]:
    """A folder that is removed after the test."""
    with tempfile.TemporaryDirectory(prefix="gc-") as name:
        yield Path(name)


@pytest.fixture
def address() -> Iterator[str]:
    """A loopback address that is reserved for the duration of the test."""
    with free_address() as free:
        yield free


@pytest.fixture
def untouched(address: str) -> Iterator[str]:
    """An address that must not be connected to during the test."""
    with socket.create_server((address, PORT)) as listener:
        yield address
        listener.setblocking(False)
        with pytest.raises(BlockingIOError):
            listener.accept()


@pytest.fixture
def tool() -> Iterator[Tool]:
    with tempfile.TemporaryDirectory(prefix="gc-") as name:
        yield Tool(TOOL, Path(name))


@pytest.fixture
def simulator(bin_dir: Path, address: str, folder: Path) -> Iterator[StartSimulator]:
    """Starts a controller with a scenario at the test's address, with the clock stopped at 0.

    Takes the scenario's name and further options of gc-sim; `paused=False` starts the clock.
    `parts` replace those of the scenario; of its parameters, only the named ones.
    """
    with ExitStack() as running:

        def start(
            scenario: str = "everyday",
            *options: str,
            paused: bool = True,
            parts: Mapping[str, Any] | None = None,
        ) -> Simulator:
            if parts is not None:
                whole = load_scenario(scenario)
                parameters = {**whole["parameters"], **parts.get("parameters", {})}
                changed = {**whole, **parts, "parameters": parameters}
                path = folder / "scenario.json"
                path.write_text(json.dumps(changed), encoding="utf-8")
                scenario = str(path)
            every = ["--scenario", scenario, *(["--paused"] if paused else []), *options]
            started = Simulator(bin_dir, address, folder, every)
            running.callback(started.stop)
            return started

        yield start


@pytest.fixture
def download(tool: Tool, folder: Path) -> Download:
    """Runs the tool with a file, which is checked against its schema unless the tool rejects it."""

    def run(controller: Simulator, option: str, contents: object, sloppy: bool = False) -> Run:
        """`contents`: raw octets, or anything that JSON can hold.

        `sloppy`: the tool accepts the file although it does not match its schema.
        """
        octets = contents if isinstance(contents, bytes) else json.dumps(contents).encode()
        path = folder / "file.json"
        path.write_bytes(octets)
        done = tool("-s", controller.address, option, str(path))
        if not done.document["Msg"].startswith("Format"):
            assert is_valid(INPUT_FILES[option], json.loads(octets)) is not sloppy
        return done

    return run


@pytest.fixture
def traced(tool: Tool, folder: Path) -> Traced:
    """Runs the tool with its arguments and returns its calls of the named system calls."""
    strace = shutil.which("strace")
    if EMULATOR:
        pytest.skip("the trace would show the emulator's calls")
    if strace is None or subprocess.run([strace, "-qq", "-o", folder / "probe", "true"]).returncode:
        pytest.skip("processes cannot be traced here")

    def run(calls: str, *arguments: str) -> list[str]:
        log = folder / "calls"
        # The leak sanitizer uses ptrace too, and a process can have only one tracer.
        environment = {"ASAN_OPTIONS": "detect_leaks=0"}
        under = [strace, "-f", "-qq", "-o", str(log), "-e", f"trace={calls}"]
        tool(*arguments, under=under, environment=environment)
        return log.read_text().splitlines()

    return run
