"""The demonstration on a bare machine: installed with one command, operated after one more."""

from pathlib import Path

from machine import Machine
from pages import Pages, set_password

RUN = {"type": "single", "stream": 2}


def test_installed_with_one_command_and_operated_after_one_more(bare: Machine, demo: list[Path]) -> None:
    bare.install(*demo)
    pages = Pages(bare)
    pages.wait()
    index = pages.get("/")
    assert index.status == 200 and b"<script" in index.body
    status = pages.get("/api/status")
    assert status.status == 200 and "simulated" in status.document["Application"]
    moved = pages.get("/api/status", plain=True)
    assert (moved.status, moved.headers["location"]) == (301, "https://127.0.0.1:8443/api/status")

    refused = pages.command("run", RUN, password="")
    assert refused.status == 403 and "gc-web-password" in refused.document["detail"]
    set_password(bare)
    assert pages.command("run", RUN, password="wrong").status == 401
    accepted = pages.command("run", RUN)
    assert (accepted.status, accepted.document["ErrorCode"]) == (200, 0)
    # Status reports are shared for a second.
    pages.wait(lambda pages: pages.get("/api/status").document["GC_state"].startswith("Running"))


def test_comes_back_after_the_machine_was_switched_off(installed: Machine) -> None:
    assert Pages(installed).get("/api/status").status == 200
    assert installed.attempt("systemctl", "--failed", "--quiet").stdout == ""
