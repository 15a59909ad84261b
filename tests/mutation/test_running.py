"""Tests of the sandbox for mutants: it notices every kind of end, and nothing gets out."""

import os
import subprocess
from pathlib import Path

import pytest

import running
from running import Run, run_tests

BEGUN = "echo '[ RUN      ] A.Waits'\n"


def run(folder: Path, script: str, cpu_limit: int = 60) -> Run:
    program = folder / "tests"
    program.write_text(f"#!/bin/sh\n{script}\n")
    program.chmod(0o755)
    return run_tests(program, [], cpu_limit, folder, address_limit=True)


def test_a_run_ends_as_its_program_does(tmp_path: Path) -> None:
    assert run(tmp_path, "exit 0").passed
    assert not run(tmp_path, "exit 1").passed
    assert not run(tmp_path, "kill -9 $$").passed


def test_a_run_names_what_failed_and_what_is_slow(tmp_path: Path) -> None:
    lines = "[       OK ] A.Slow (10 ms)\n[       OK ] A.Quick (9 ms)\n[  FAILED  ] A.b/1 (0 ms)"
    ended = run(tmp_path, f"echo '{lines}'; exit 1")
    assert (ended.test, ended.slow) == ("A.b/1", ["A.Slow"])
    assert run(tmp_path, BEGUN + "kill -11 $$").test == "A.Waits"


def test_what_waits_for_ever_is_ended(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(running, "IDLE_LOOKS", 3)
    ended = run(tmp_path, BEGUN + "setsid sleep 1000; exit 0")
    assert (ended.passed, ended.test) == (False, "A.Waits")


def test_what_waits_beside_a_dead_child_is_ended(
    tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    monkeypatch.setattr(running, "IDLE_LOOKS", 3)
    monkeypatch.setattr(running, "LONGEST_RUN", 1e9)
    parent = "import os, signal\nos.fork() or os._exit(0)\nsignal.pause()"
    assert not run(tmp_path, f"exec /usr/bin/python3 -c '{parent}'").passed


def test_what_is_busy_does_not_wait(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(running, "IDLE_LOOKS", 2)
    busy = "import time\nwhile time.process_time() < 1: pass"
    assert run(tmp_path, f"/usr/bin/python3 -c '{busy}'").passed


def test_what_has_ended_is_not_looked_at() -> None:
    ended = subprocess.Popen(["true"])
    ended.wait()
    assert running._activity(ended.pid) == []
    assert [state for _, state, _ in running._activity(os.getpid())]


def test_what_never_ends_is_ended(tmp_path: Path) -> None:
    assert not run(tmp_path, "while :; do :; done", cpu_limit=1).passed


def test_nothing_is_left_running(tmp_path: Path) -> None:
    # Held open by any process that is left; end of file shows that there is none.
    os.mkfifo(tmp_path / "life")
    reader = os.open(tmp_path / "life", os.O_RDONLY | os.O_NONBLOCK)
    assert run(tmp_path, f"setsid sleep 1000 >{tmp_path}/life & exit 0").passed
    os.set_blocking(reader, True)
    assert os.read(reader, 1) == b""
    os.close(reader)


def test_nothing_outside_is_in_reach(tmp_path: Path) -> None:
    (tmp_path / "file").write_text("mine")
    assert not run(tmp_path, f"rm -f {tmp_path}/file").passed
    assert (tmp_path / "file").read_text() == "mine"
    assert run(tmp_path, "touch /tmp/file; kill -9 -1 || exit 0").passed
    assert not Path("/tmp/file").exists() or (tmp_path / "file").exists()
