"""Fixtures: a web server for each test, in addition to those of the system tests."""

import importlib.util
from collections.abc import Callable, Iterator
from contextlib import ExitStack
from pathlib import Path
from typing import Any

import pytest
from programs import ROOT, Simulator
from server import (
    CONFIGURATION,
    LIGHTTPD,
    PASSWORD,
    Browser,
    WebServer,
    described,
    write_passwords,
)

# Loaded by path: two modules cannot both be called conftest.
_spec = importlib.util.spec_from_file_location("system", ROOT / "tests" / "system" / "conftest.py")
assert _spec is not None and _spec.loader is not None
system = importlib.util.module_from_spec(_spec)
_spec.loader.exec_module(system)

address = system.address
bin_dir = system.bin_dir
folder = system.folder
simulator = system.simulator
tool = system.tool
untouched = system.untouched

StartSimulator = Callable[..., Simulator]
StartServer = Callable[..., WebServer]


def pytest_configure() -> None:
    programs = [system.BIN_DIR.parent / "web" / name for name in ("report", "command")]
    for program in [*programs, Path(LIGHTTPD)]:
        if not program.is_file():
            raise pytest.UsageError(f"no {program}")
    system.pytest_configure()


@pytest.fixture(autouse=True)
def count_described(record_property: Callable[[str, object], None]) -> Iterator[None]:
    before = len(described)
    yield
    record_property("described", len(described) - before)


def pytest_terminal_summary(terminalreporter: Any) -> None:
    """Prints how many answers were checked against the interface description."""
    counts = [
        count
        for reports in terminalreporter.stats.values()
        for report in reports
        if getattr(report, "when", "") == "teardown"
        for name, count in report.user_properties
        if name == "described"
    ]
    terminalreporter.write_line("")
    terminalreporter.write_line(f"{sum(counts)} answers are as docs/openapi.json describes them")


@pytest.fixture
def start_server(address: str, bin_dir: Path, folder: Path) -> Iterator[StartServer]:
    """Starts a web server at the test's address, for the instrument at the same address."""
    with ExitStack() as running:

        def start(
            *lines: str,
            passwords: bool = True,
            tool: Path = system.TOOL,
            scripts: Path = CONFIGURATION,
            libraries: str = "",
            units: str = "",
        ) -> WebServer:
            """`lines`: added to the configuration. `passwords`: whether commands are allowed."""
            every = []
            if passwords:
                write_passwords(folder / "passwords")
                every += [f'var.passwords = "{folder}/passwords"']
                every += [f'include "{CONFIGURATION}/login.conf"']
            every += lines
            places = (folder / "web", bin_dir, tool, address)
            started = WebServer(*places, every, scripts, libraries, units)
            running.callback(started.stop)
            return started

        yield start


@pytest.fixture
def server(start_server: StartServer) -> WebServer:
    return start_server()


@pytest.fixture
def browser(server: WebServer) -> Browser:
    """A browser whose user has logged in."""
    return Browser(server.address, PASSWORD)
