"""Runs tests that may do anything: in a sandbox, until they end, hang or cost too much."""

import os
import re
import select
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

# Limits for mutants that never end, or that use up all memory or disk space.
LONGEST_RUN = 300.0
LARGEST_MEMORY = 4 << 30
LARGEST_FILE = 64 << 20
LARGEST_FOLDER = 1 << 30
# A program hangs if none of its processes has wanted a processor for this many looks in a row.
SECONDS_A_LOOK = 0.2
IDLE_LOOKS = 40
# Nothing outside is accessible: no processes, no network, and no writable files except in its own /tmp.
SANDBOX = ["bwrap", "--unshare-all", "--die-with-parent", "--ro-bind", "/", "/", "--dev", "/dev"]
SANDBOX += ["--proc", "/proc", "--size", str(LARGEST_FOLDER), "--tmpfs", "/tmp", "--chdir", "/tmp"]


@dataclass(frozen=True)
class Run:
    """How a run of tests ended."""

    passed: bool
    test: str | None
    """The first that did not pass."""
    slow: list[str]
    seconds: float
    """Of processor time."""


def run_tests(
    program: Path, arguments: list[str], cpu_limit: int, seen: Path, address_limit: bool
) -> Run:
    """Runs tests up to the first that fails. A run that takes many times as long as that of the
    unchanged code is killed; processor time counts, so that a busy machine makes no difference.
    `seen`: a folder visible in the sandbox, with the program in it."""
    limits = [f"--cpu={cpu_limit}", f"--fsize={LARGEST_FILE}", "--core=0"]
    limits += [f"--as={LARGEST_MEMORY}"] if address_limit else []
    # Signals are ignored if this was started in the background.
    command = ["env", "--default-signal", *SANDBOX, "--ro-bind", seen, seen]
    command += ["prlimit", *limits, program]
    command += ["--gtest_fail_fast", "--gtest_color=no", *arguments]
    with tempfile.TemporaryFile() as log:
        environment = {**os.environ, "TMPDIR": "/tmp", "TEST_TMPDIR": "/tmp"}
        process = subprocess.Popen(
            command,
            stdin=subprocess.DEVNULL,
            stdout=log,
            stderr=subprocess.DEVNULL,
            env=environment,
        )
        _wait(process.pid)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        log.seek(0)
        text = log.read().decode(errors="replace")
    failed = re.findall(r"^\[  FAILED  \] ([\w./]+)", text, re.MULTILINE)
    begun = re.findall(r"^\[ RUN      \] ([\w./]+)", text, re.MULTILINE)
    slow = re.findall(r"^\[       OK \] ([\w./]+) \(\d{2,} ms\)", text, re.MULTILINE)
    seconds = usage.ru_utime + usage.ru_stime
    return Run(process.returncode == 0, (failed or begun[-1:] or [None])[0], slow, seconds)


def _wait(process: int) -> None:
    """Waits until the process has ended, or kills it if it hangs."""
    end = os.pidfd_open(process)
    try:
        seen, looks, last = [], 0, time.monotonic() + LONGEST_RUN
        while not select.select([end], [], [], SECONDS_A_LOOK)[0]:
            before, seen = seen, _activity(process)
            # Sleeping, or dead and waiting for a parent that sleeps.
            idle = seen == before and all(state in "SZ" for _, state, _ in seen)
            looks = looks + 1 if idle else 0
            if looks == IDLE_LOOKS or time.monotonic() > last:
                # Everything in the sandbox dies with it.
                os.kill(process, signal.SIGKILL)
                return
    finally:
        os.close(end)


def _activity(process: int) -> list[tuple[int, str, int]]:
    """Number, state and processor time of all threads of a process and its descendants."""
    found: list[tuple[int, str, int]] = []
    try:
        threads = os.listdir(f"/proc/{process}/task")
    except (FileNotFoundError, ProcessLookupError):  # ended meanwhile
        return found
    for thread in threads:
        folder = Path(f"/proc/{process}/task/{thread}")
        try:
            # The name, in brackets, may contain anything.
            fields = (folder / "stat").read_text().rpartition(")")[2].split()
            children = (folder / "children").read_text().split()
        except (FileNotFoundError, ProcessLookupError):
            continue
        found.append((int(thread), fields[0], int(fields[11]) + int(fields[12])))
        found += [entry for child in children for entry in _activity(int(child))]
    return found
