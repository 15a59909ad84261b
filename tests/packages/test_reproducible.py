"""Two builds of the same sources, in different folders and at different times, are equal bit for bit."""

import hashlib
import os
import subprocess
from pathlib import Path

import pytest
from conftest import BUILT
from machine import ROOT


def digests(folder: Path) -> dict[str, str]:
    return {
        package.name: hashlib.sha256(package.read_bytes()).hexdigest()
        for package in folder.glob("*.deb")
    }


@pytest.mark.long
def test_two_builds(demo: list[Path], tmp_path: Path) -> None:
    clone = tmp_path / "another folder"
    subprocess.run(["git", "clone", "--quiet", ROOT, clone], check=True)
    # The Debian root in which packages are built is no part of them.
    (clone / "build").mkdir()
    (clone / "build/roots").symlink_to(ROOT / "build/roots")
    odd = {"TZ": "Pacific/Kiritimati", "LC_ALL": "C.UTF-8", "CCACHE_DIR": str(tmp_path / "ccache")}
    subprocess.run([clone / "packaging/deb"], env={**os.environ, **odd}, check=True)
    again = digests(clone / "build/deb")
    first = {name: digest for name, digest in digests(BUILT).items() if name in again}
    assert {package.name for package in demo} <= set(first)
    assert again == first
