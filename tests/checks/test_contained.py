"""A contained command leaves nothing behind when it ends or is interrupted."""

import os
import signal
import subprocess
import uuid
from collections.abc import Iterator
from pathlib import Path

import pytest

CONTAINED = Path(__file__).with_name("contained.py")
# A daemon in its own session, a process that ignores signals, a file, and then the rest of the script.
SCRIPT = """
setsid sh -c 'sleep 1000 & exec sleep 1000' &
(trap '' INT TERM HUP; sleep 1000) &
mkdir "$TMPDIR/left" && touch "$TMPDIR/left/file"
echo "$TMPDIR"
"""


@pytest.fixture
def mark() -> Iterator[str]:
    """A value in the environment of every process of a test."""
    mark = uuid.uuid4().hex
    yield mark
    for process in marked(mark):
        os.kill(process, signal.SIGKILL)


def marked(mark: str) -> list[int]:
    found = []
    for file in Path("/proc").glob("[0-9]*/environ"):
        try:
            if mark.encode() in file.read_bytes():
                found.append(int(file.parent.name))
        except OSError:
            pass
    return found


def start(mark: str, script: str) -> tuple[subprocess.Popen[str], Path]:
    process = subprocess.Popen(
        [CONTAINED, "bash", "-c", SCRIPT + script],
        env={**os.environ, "GC_MARK": mark},
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        text=True,
        start_new_session=True,
    )
    assert process.stdout is not None
    folder = Path(process.stdout.readline().strip())
    assert len(marked(mark)) > 2
    return process, folder


@pytest.mark.parametrize("sent", [signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
@pytest.mark.parametrize("to", [os.kill, os.killpg])
def test_an_interrupt_ends_everything(mark: str, sent: signal.Signals, to: object) -> None:
    """Sent to the whole process group, or to the first process alone."""
    process, folder = start(mark, "wait")
    assert (folder / "left").is_dir()
    to(process.pid, sent)  # type: ignore[operator]
    assert process.wait(60) == 128 + sent
    assert marked(mark) == []
    assert not folder.exists()


@pytest.mark.parametrize(("end", "status"), [("exit 0", 0), ("exit 7", 7), ("kill -9 $$", 137)])
def test_an_end_ends_everything(mark: str, end: str, status: int) -> None:
    process, folder = start(mark, f"read; {end}")
    process.communicate("\n")
    assert process.wait(60) == status
    assert marked(mark) == []
    assert not folder.exists()
