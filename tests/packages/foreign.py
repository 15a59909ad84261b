#!/usr/bin/python3 -B
"""Runs a command where programs for another processor run in qemu: tests/packages/foreign.py arm64|armhf COMMAND...

In a user namespace, which has registrations of its own: the machine's stay as they are.
"""

import ctypes
import os
import sys
from pathlib import Path

CLONE_NEWNS = 0x00020000
CLONE_NEWUSER = 0x10000000
# Of ELF: class, machine.
PROCESSORS = {"armhf": (1, 0x28, "qemu-arm-static"), "arm64": (2, 0xB7, "qemu-aarch64-static")}
BINFMT = Path("/proc/sys/fs/binfmt_misc")

libc = ctypes.CDLL(None, use_errno=True)


def checked(result: int) -> None:
    if result != 0:
        raise OSError(ctypes.get_errno(), os.strerror(ctypes.get_errno()))


def escaped(octets: bytes) -> str:
    return "".join(f"\\x{octet:02x}" for octet in octets)


def register(processor: str) -> None:
    """F: the interpreter is opened now, and need not be in the other's root."""
    size, machine, interpreter = PROCESSORS[processor]
    magic = b"\x7fELF" + bytes([size, 1, 1]) + bytes(9) + bytes([2, 0, machine, 0])
    mask = b"\xff" * 7 + b"\x00" + b"\xff" * 8 + b"\xfe\xff\xff\xff"
    line = f":{processor}:M::{escaped(magic)}:{escaped(mask)}:/usr/bin/{interpreter}:FP\n"
    (BINFMT / "register").write_text(line)


def main() -> None:
    processor, *command = sys.argv[1:]
    unshared, map_users = os.pipe()
    mapped, go_on = os.pipe()
    parent = os.getpid()
    if os.fork() == 0:
        # Only a process outside of the namespace may map users other than itself.
        os.close(map_users)
        os.read(unshared, 1)
        for name in ("uid_map", "gid_map"):
            Path(f"/proc/{parent}/{name}").write_text("0 0 4294967295\n")
        os.write(go_on, b"x")
        os._exit(0)
    checked(libc.unshare(CLONE_NEWUSER))
    os.write(map_users, b"x")
    os.read(mapped, 1)
    os.wait()
    checked(libc.unshare(CLONE_NEWNS))
    checked(libc.mount(b"none", b"/", None, 0x4000 | 0x40000, None))
    checked(libc.mount(b"binfmt_misc", str(BINFMT).encode(), b"binfmt_misc", 0, None))
    register(processor)
    os.execvp(command[0], command)


main()
