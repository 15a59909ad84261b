"""What the benchmarks share: building programs, running a controller, counting instructions."""

import os
import re
import subprocess
import sys
import time
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BIN = ROOT / "build/release/bin"


def prepare(bin_dir: Path, *targets: str) -> None:
    """Installs what the measurements need, and builds the targets if `bin_dir` is the default."""
    packaging = ROOT / "packaging"
    subprocess.run([packaging / "ensure-packages", "valgrind", "strace", "time"], check=True)
    if bin_dir == BIN:
        subprocess.run([packaging / "build", "release", "GC_Web", "gc-sim", *targets], check=True)


@contextmanager
def running_controller(bin_dir: Path, folder: str, scenario: str) -> Iterator[str]:
    """Runs a paused instrument on the first free loopback address, and yields the address."""
    for last in range(1, 255):
        address = f"127.0.9.{last}"
        where = ["--listen", address, "--control", f"{folder}/control"]
        controller = subprocess.Popen(
            [bin_dir / "gc-sim", *where, "--paused", "--scenario", scenario],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
        )
        if controller.stdout.readline() == "ready\n":
            try:
                yield address
            finally:
                controller.terminate()
                controller.communicate()
            return
        message = controller.communicate()[1]
        if controller.returncode != 3:  # 3: the address is in use
            sys.exit(message)
    sys.exit("no free loopback address")


def count_instructions(command: list[str], profile: str) -> int:
    """The instructions of one run, including the loader; callgrind writes its profile to `profile`."""
    done = subprocess.run(
        ["valgrind", "--tool=callgrind", f"--callgrind-out-file={profile}", *command],
        capture_output=True,
        text=True,
        check=True,
    )
    return int(re.search(r"Collected : (\d+)", done.stderr)[1])


def peak_memory(command: list[str]) -> int:
    """In kilobytes, by GNU time: a parent so small that its own peak is not taken for the child's."""
    done = subprocess.run(["/usr/bin/time", "-f", "%M", *command], capture_output=True, text=True)
    return int(done.stderr.splitlines()[-1])


def wall_and_cpu(command: list[str], null: int) -> tuple[float, float]:
    """Milliseconds of one run that prints to `null`, including the creation of the process."""
    actions = [(os.POSIX_SPAWN_DUP2, null, 1), (os.POSIX_SPAWN_DUP2, null, 2)]
    start = time.perf_counter()
    process = os.posix_spawn(command[0], command, os.environ, file_actions=actions)
    _, status, usage = os.wait4(process, 0)
    wall = time.perf_counter() - start
    if status != 0:
        sys.exit(f"{command[0]} failed")
    return wall * 1e3, (usage.ru_utime + usage.ru_stime) * 1e3
