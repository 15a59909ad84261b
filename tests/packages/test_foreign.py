"""The packages for other processors, installed on Debian systems for these processors, in qemu."""

import json
import subprocess
from pathlib import Path

import pytest
from conftest import DEMO, packages_for, system_for
from machine import HERE


def documents(text: str) -> list[dict[str, object]]:
    """The JSON documents that follow each other in a text."""
    decoder, found = json.JSONDecoder(), []
    while text := text.lstrip():
        document, end = decoder.raw_decode(text)
        found.append(document)
        text = text[end:]
    return found


@pytest.mark.long
@pytest.mark.parametrize("architecture", ["armhf", "arm64"])
def test_page_status_and_command(architecture: str, tmp_path: Path) -> None:
    packages = packages_for(architecture, DEMO)
    system = system_for(architecture, packages)
    enter = [HERE / "foreign.py", architecture, "unshare", "--pid", "--fork", "--kill-child"]
    enter += ["--mount", "--mount-proc", "--net", HERE / "foreign"]
    done = subprocess.run(
        [*enter, system, tmp_path, *packages], capture_output=True, text=True, timeout=900
    )
    assert done.returncode == 0, done.stdout + done.stderr
    page, rest = done.stdout.split("\n", 1)
    status, answer, again, simulator = documents(rest)
    assert page == "<script"
    assert status["GC_state"] == "Ready"
    assert answer == {"ErrorCode": 0, "Msg": "Accepted"}
    assert str(again["GC_state"]).startswith("Running")
    assert simulator["ok"] is True
