"""Machines to install packages on: Debian systems in namespaces, with or without systemd running."""

import os
import select
import shutil
import signal
import socket
import subprocess
import tempfile
import time
from collections.abc import Iterator, Sequence
from contextlib import contextmanager
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
# Seconds; everything waits for the thing itself, this only ends what hangs.
LIMIT = 30


def children_of(process: int) -> list[int]:
    return [int(child) for child in Path(f"/proc/{process}/task/{process}/children").read_text().split()]


class Machine:
    """A copy of a Debian system that is running. What it changes is in `changes`."""

    def __init__(self, systems: Sequence[Path], folder: Path, command: Sequence[str]) -> None:
        """Starts systemd, or `command`, which says something and waits for its input to end."""
        self.changes = folder / "changes"
        self._folder = folder
        self._console = (folder / "console").open("wb")
        where = [HERE / "boot", ":".join(map(str, systems)), folder]
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as notify:
            notify.bind(str(folder / "notify"))
            self._process = subprocess.Popen(
                ["setpriv", "--pdeathsig", "KILL", *where, *command],
                stdin=subprocess.PIPE,
                stdout=subprocess.PIPE if command else self._console,
                stderr=self._console,
            )
            if command:
                is_up = self._process.stdout.readline() != b""
            else:
                is_up = self._is_up(notify)
            if not is_up:
                self.power_off()
                raise AssertionError((folder / "console").read_text(errors="replace"))

    def _is_up(self, notify: socket.socket) -> bool:
        """Waits for systemd to say so."""
        ended = os.pidfd_open(self._process.pid)
        try:
            while notify in select.select([notify, ended], [], [], LIMIT)[0]:
                if b"READY=1" in notify.recv(4096):
                    return True
        finally:
            os.close(ended)
        return False

    def _enter(self, *options: str) -> list[str]:
        """A command that enters the namespaces of the machine's first process."""
        first = children_of(self._process.pid)[0]
        return ["nsenter", "--target", str(first), *options]

    def beside(self, *command: str | Path) -> list[str | Path]:
        """A command of this machine's that uses the other's network."""
        return [*self._enter("--net"), *command]

    def start(self, *command: str, umask: str = "022", **options: object) -> subprocess.Popen:
        every = ("--mount", "--pid", "--net", "--cgroup", "--uts", "--ipc", "--root", "--wd")
        variables = ["env", "-i", "HOME=/root", "LC_ALL=C.UTF-8", "DEBIAN_FRONTEND=noninteractive"]
        variables += ["PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"]
        shell = ["sh", "-c", f'umask {umask}; exec "$@"', "sh"]
        return subprocess.Popen([*self._enter(*every), *variables, *shell, *command], **options)

    def attempt(
        self, *command: str, umask: str = "022", stdin: str = "", limit: int = LIMIT
    ) -> subprocess.CompletedProcess[str]:
        """Runs a command on the machine; both outputs are in `stdout`."""
        process = self.start(
            *command,
            umask=umask,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
        )
        try:
            said = process.communicate(stdin, timeout=limit)[0]
        except subprocess.TimeoutExpired:
            process.kill()
            said = process.communicate()[0]
            raise AssertionError(f"{command} hangs: {said}") from None
        return subprocess.CompletedProcess(command, process.returncode, said)

    def run(self, *command: str, umask: str = "022", stdin: str = "") -> str:
        """The output of a command that succeeds."""
        done = self.attempt(*command, umask=umask, stdin=stdin)
        assert done.returncode == 0, f"{' '.join(command)}: {done.returncode}\n{done.stdout}"
        return done.stdout

    def shell(self, script: str, *arguments: str) -> str:
        return self.run("sh", "-euc", script, "sh", *arguments)

    def copy(self, *files: Path, to: str = "/tmp") -> list[str]:
        """Copies files to the machine; returns their paths there."""
        folder = self.files / to.lstrip("/")
        return [f"{to}/{Path(shutil.copy(file, folder)).name}" for file in files]

    def install(self, *packages: Path, umask: str = "022", options: Sequence[str] = ()) -> str:
        """As its owner would, from files; what they depend on is in the machine's cache."""
        files = self.copy(*packages)
        return self.run("apt-get", "--yes", *options, "install", *files, umask=umask)

    @property
    def files(self) -> Path:
        """The machine's files, as its first process sees them."""
        return Path(f"/proc/{children_of(self._process.pid)[0]}/root")

    def wait(self, *command: str) -> None:
        """Until a command succeeds."""
        deadline = time.monotonic() + LIMIT
        while self.attempt(*command).returncode != 0:
            assert time.monotonic() < deadline, command

    def power_off(self) -> None:
        """At once. The kernel ends all processes of the machine with its first one."""
        if self._console.closed:
            return
        if self._process.poll() is None:
            first = children_of(self._process.pid)
            for process in [*first, self._process.pid]:
                os.kill(process, signal.SIGKILL)
        self._process.communicate()
        self._console.close()
        self._remove_group()

    def _remove_group(self) -> None:
        """The control groups that the machine has made stay until they are removed."""
        if not (self._folder / "group").exists():
            return
        group = Path((self._folder / "group").read_text().strip())
        script = """
          mount -t cgroup2 cgroup2 "$1"
          # Processes that were just killed may not have left yet.
          while [ -e "$2/cgroup.events" ] && grep -q "populated 1" "$2/cgroup.events"; do :; done
          [ ! -e "$2" ] || find "$2" -depth -type d -exec rmdir {} +
        """
        command = ["unshare", "--mount", "sh", "-euc", script, "sh", group.parent, group]
        subprocess.run(command, check=True, timeout=LIMIT)


@contextmanager
def running(*systems: Path, command: Sequence[str] = ()) -> Iterator[Machine]:
    """A machine that is powered off and forgotten in the end."""
    with tempfile.TemporaryDirectory(prefix="gc-") as folder:
        machine = Machine(systems, Path(folder), command)
        try:
            yield machine
        finally:
            machine.power_off()
