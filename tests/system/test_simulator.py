"""The simulated controller as a program: options, addresses, sockets, signals."""

import json
import os
import signal
import socket
import stat
import subprocess
from collections.abc import Iterator, Mapping
from contextlib import ExitStack, contextmanager, suppress
from pathlib import Path

import pytest
from conftest import StartSimulator
from programs import LIMIT, PORT
from simulator_client import STATE, connected


def run(*command: str | Path, environment: Mapping[str, str] | None = None) -> tuple[int, str, str]:
    """Exit status, standard output and standard error of a program that exits by itself."""
    done = subprocess.run(
        [str(word) for word in command],
        env={**os.environ, **(environment or {})},
        stdin=subprocess.DEVNULL,
        capture_output=True,
        timeout=LIMIT,
        check=False,
    )
    return done.returncode, done.stdout.decode(), done.stderr.decode()


@contextmanager
def running(
    *command: str | Path, environment: Mapping[str, str] | None = None
) -> Iterator[subprocess.Popen[bytes]]:
    """A gc-sim that is ready; killed at the end, unless it has exited by itself."""
    with subprocess.Popen(
        [str(word) for word in command],
        env={**os.environ, **(environment or {})},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
    ) as process:
        try:
            assert process.stdout is not None
            assert process.stdout.readline() == b"ready\n"
            yield process
        finally:
            process.kill()


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT])
def test_ready_and_clean_end(
    bin_dir: Path, address: str, folder: Path, number: signal.Signals
) -> None:
    control = folder / "control"
    with running(bin_dir / "gc-sim", "--listen", address, "--control", control) as process:
        # Clients of both kinds are connected when it ends.
        with connected(address, 1), socket.socket(socket.AF_UNIX) as remote:
            remote.connect(str(control))
            process.send_signal(number)
            assert process.communicate(timeout=LIMIT) == (b"", b"")
    assert process.returncode == 0
    assert not list(folder.iterdir())


@pytest.mark.parametrize(
    "options",
    [
        ["--listen", "192.0.2.1"],
        ["--listen", "0.0.0.0"],
        ["--listen", "localhost"],
        ["--listen", "128.0.0.1"],
        ["--speed", "0"],
        ["--speed", "-1"],
        ["--speed", "nan"],
        ["--speed", "1e9"],
        ["--seed", "-1"],
        ["--seed", "4294967296"],
        ["--journal", "/nonexistent/journal"],
        ["--unknown"],
        ["argument"],
    ],
)
def test_bad_options(bin_dir: Path, options: list[str]) -> None:
    status, stdout, stderr = run(bin_dir / "gc-sim", *options)
    assert (status, stdout) == (1, "")
    assert stderr


SCENARIOS = Path(__file__).resolve().parents[2] / "simulator" / "scenarios"


@pytest.mark.parametrize(
    ("faults", "reason"),
    [
        ([{"kind": "miracle"}], "/faults/0/kind: "),
        ([{"kind": "delay"}], "/faults/0/seconds: missing\n"),
        ([{"kind": "hang"}, {"kind": "text"}], "/faults/1: one of text, hex, length expected\n"),
        (None, ""),
    ],
)
def test_bad_scenario(
    bin_dir: Path, address: str, folder: Path, faults: list[dict[str, str]] | None, reason: str
) -> None:
    path = folder / "scenario.json"
    if faults is not None:
        scenario = json.loads((SCENARIOS / "bare.json").read_text("utf-8"))
        path.write_text(json.dumps({**scenario, "faults": faults}), "utf-8")
    options = ["--listen", address, "--control", folder / "control", "--scenario", path]
    status, stdout, stderr = run(bin_dir / "gc-sim", *options)
    assert (status, stdout) == (2, "")
    assert stderr.startswith(f"gc-sim: {path}: {reason}")
    assert stderr.count("\n") == 1 and stderr.endswith("\n")


@pytest.fixture
def second_address(address: str) -> str:
    *net, last = address.split(".")
    return ".".join([*net, str(int(last) % 254 + 1)])


def test_two_instruments(
    simulator: StartSimulator, bin_dir: Path, folder: Path, second_address: str
) -> None:
    first = simulator()
    options = ["--listen", second_address, "--control", folder / "second", "--paused"]
    with (
        running(bin_dir / "gc-sim", *options),
        connected(first.address, 0) as here,
        connected(second_address, 1) as there,
    ):
        assert here.command(0) == 0
        assert here.read(STATE).records[0].integer == 2
        assert there.read(STATE).records[0].integer == 4


def test_address_in_use(simulator: StartSimulator, bin_dir: Path, folder: Path) -> None:
    first = simulator()
    options = ["--listen", first.address, "--control", folder / "other"]
    reason = f"gc-sim: {first.address}:{PORT}: Address already in use\n"
    assert run(bin_dir / "gc-sim", *options) == (3, "", reason)
    assert not (folder / "other").exists()
    with connected(first.address, 1) as client:
        assert client.read(STATE).status == 0


def test_address_is_free_again_at_once(bin_dir: Path, address: str, folder: Path) -> None:
    command = [bin_dir / "gc-sim", "--listen", address, "--control", folder / "control"]
    for _ in range(3):
        with running(*command) as process, connected(address, 1) as client:
            assert client.disconnect() == 0
            assert client.is_closed()  # the controller closes first: its end waits for stragglers
            process.terminate()
            assert process.wait(LIMIT) == 0


def test_control_socket_is_private(bin_dir: Path, address: str, folder: Path) -> None:
    mask = os.umask(0)
    try:
        with running(
            bin_dir / "gc-sim", "--listen", address, environment={"XDG_RUNTIME_DIR": str(folder)}
        ):
            mode = (folder / f"gc-sim-{address}.sock").stat().st_mode
            assert stat.S_ISSOCK(mode) and stat.S_IMODE(mode) == 0o600
    finally:
        os.umask(mask)


def test_control_socket_in_a_folder_of_its_own(bin_dir: Path, address: str) -> None:
    own = Path(f"/tmp/gc-sim-{os.getuid()}")
    path = own / f"gc-sim-{address}.sock"
    environment = {"XDG_RUNTIME_DIR": ""}
    was_there = own.exists()
    try:
        with running(bin_dir / "gc-sim", "--listen", address, environment=environment) as process:
            assert stat.S_IMODE(own.stat().st_mode) == 0o700
            assert stat.S_IMODE(path.stat().st_mode) == 0o600
            status, stdout, _ = run(
                bin_dir / "gc-simctl", "--listen", address, "status", environment=environment
            )
            assert (status, json.loads(stdout)["ok"]) == (0, True)
            process.terminate()
            assert process.wait(LIMIT) == 0
        assert not path.exists()
    finally:
        path.unlink(missing_ok=True)
        if not was_there:
            with suppress(OSError):  # another process has started to use it
                own.rmdir()


def test_control_socket_of_a_dead_controller(bin_dir: Path, address: str, folder: Path) -> None:
    command = [bin_dir / "gc-sim", "--listen", address, "--control", folder / "control"]
    with running(*command) as process:
        process.kill()
        process.wait(LIMIT)
    assert (folder / "control").is_socket()
    with running(*command):
        status, _, _ = run(bin_dir / "gc-simctl", "--control", folder / "control", "status")
        assert status == 0


def test_control_socket_in_use(bin_dir: Path, address: str, folder: Path) -> None:
    path = folder / "control"
    command = [bin_dir / "gc-sim", "--listen", address, "--control", path]
    with socket.socket(socket.AF_UNIX) as live:
        live.bind(str(path))
        live.listen()
        reason = f"gc-sim: {path}: Address already in use\n"
        assert run(*command) == (3, "", reason)
        assert path.is_socket()
    path.unlink()
    path.write_text("precious")
    assert run(*command) == (3, "", reason)
    assert path.read_text() == "precious"
    too_long = folder / ("x" * 108)
    assert run(*command[:-1], too_long)[0] == 3


def test_few_open_files_are_allowed(bin_dir: Path, address: str, folder: Path) -> None:
    command = [bin_dir / "gc-sim", "--listen", address, "--control", folder / "control"]
    with running("prlimit", "--nofile=32:", *command), ExitStack() as stack:
        clients = [stack.enter_context(connected(address, 1)) for _ in range(100)]
        assert clients[-1].read(STATE).status == 0
    (folder / "control").unlink()
    status, stdout, stderr = run("prlimit", "--nofile=300:300", *command)
    assert (status, stdout) == (3, "")
    assert stderr.endswith("gc-sim: 1024 open files expected to be allowed\n")


def test_nobody_to_control(bin_dir: Path, folder: Path) -> None:
    path = folder / "none"
    status, stdout, stderr = run(bin_dir / "gc-simctl", "--control", path, "status")
    assert (status, stdout) == (1, "")
    assert stderr == f"gc-simctl: {path}: No such file or directory\n"
