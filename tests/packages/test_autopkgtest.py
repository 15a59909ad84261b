"""The tests that Debian's own infrastructure would run, in debian/tests."""

import os
import shutil
import subprocess
from pathlib import Path

import pytest
from conftest import SYSTEMS
from machine import HERE, ROOT, running


# Seconds: it installs everything once more for each test.
LONG = 300


@pytest.mark.long
def test_autopkgtest(demo: list[Path]) -> None:
    system = SYSTEMS / "autopkgtest"
    environment = {**os.environ, "GC_INCLUDE": "autopkgtest,curl,dpkg-dev"}
    subprocess.run([HERE / "root", "amd64", system, *demo], env=environment, check=True)
    with running(system) as machine:
        files = machine.copy(*demo)
        shutil.copytree(ROOT / "debian", machine.files / "tmp/source/debian")
        command = ["autopkgtest", *files, "/tmp/source/", "--", "null"]
        said = machine.attempt(*command, limit=LONG).stdout
    results = [line.split() for line in said.splitlines()]
    assert ["demo", "PASS"] in results and ["versions", "PASS"] in results, said
