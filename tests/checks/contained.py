#!/usr/bin/env -S /usr/bin/python3 -B
"""Runs a command and kills everything that it leaves running: tests/checks/contained.py COMMAND...

After the command has ended or a signal has arrived, none of its processes keeps running, whatever its
session or parent, and its temporary folder (TMPDIR) is gone.
"""

import ctypes
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

PR_SET_CHILD_SUBREAPER = 36
SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
# Seconds that processes have to clean up after themselves.
GRACE = 3


def children_of(process):
    """Empty for a process that has ended meanwhile."""
    found = []
    try:
        for task in os.listdir(f"/proc/{process}/task"):
            found += Path(f"/proc/{process}/task/{task}/children").read_text().split()
    except OSError:
        pass
    return [int(child) for child in found]


def descendants():
    """Including orphans: this process is their new parent."""
    found, asked = [], [os.getpid()]
    while asked:
        children = children_of(asked.pop())
        found += children
        asked += children
    return found


def reap():
    try:
        while os.waitpid(-1, os.WNOHANG)[0] != 0:
            pass
    except ChildProcessError:
        pass


def end_all():
    deadline = time.monotonic() + GRACE
    asked = set()
    while True:
        reap()
        left = descendants()
        if not left:
            return
        is_over = time.monotonic() > deadline
        for process in left:
            if is_over or process not in asked:
                asked.add(process)
                try:
                    os.kill(process, signal.SIGKILL if is_over else signal.SIGTERM)
                except ProcessLookupError:
                    pass
        signal.sigtimedwait([signal.SIGCHLD], 0.05)


def main():
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    before = signal.pthread_sigmask(signal.SIG_BLOCK, [*SIGNALS, signal.SIGCHLD])
    folder = tempfile.mkdtemp(prefix="gc-")
    try:
        command = subprocess.Popen(
            sys.argv[1:],
            env={**os.environ, "TMPDIR": folder, "TEST_TMPDIR": folder},
            preexec_fn=lambda: signal.pthread_sigmask(signal.SIG_SETMASK, before),
        )
        came = signal.SIGCHLD
        while came == signal.SIGCHLD and command.poll() is None:
            came = signal.sigwait([*SIGNALS, signal.SIGCHLD])
            # Not the command itself: its status is needed.
            for process in descendants():
                if process != command.pid and came == signal.SIGCHLD:
                    try:
                        os.waitpid(process, os.WNOHANG)
                    except ChildProcessError:
                        pass
    finally:
        end_all()
        shutil.rmtree(folder, ignore_errors=True)
    code = 128 + came if came in SIGNALS else command.returncode
    sys.exit(code if code >= 0 else 128 - code)


if __name__ == "__main__":
    main()
