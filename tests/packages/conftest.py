"""Fixtures: the packages, and machines on which they are or are not installed."""

import os
import subprocess
from collections.abc import Iterator
from pathlib import Path

import pytest
from machine import HERE, ROOT, Machine, running
from pages import Pages

BUILT = Path(os.environ.get("GC_PACKAGES", ROOT / "build" / "deb")).resolve()
SYSTEMS = ROOT / "build" / "packages"
DEMO = ["gc-web-demo", "gc-web-server", "gc-web-pages"]


def packages_for(architecture: str, names: list[str]) -> list[Path]:
    found = []
    for name in names:
        files = [*BUILT.glob(f"{name}_*_{architecture}.deb"), *BUILT.glob(f"{name}_*_all.deb")]
        assert len(files) == 1, f"{name}: {files}"
        found += files
    return found


def system_for(architecture: str, packages: list[Path]) -> Path:
    """A bare Debian system, with everything in its cache that the packages depend on."""
    system = SYSTEMS / architecture
    subprocess.run([HERE / "root", architecture, system, *packages], check=True)
    return system


@pytest.fixture(scope="session")
def demo() -> list[Path]:
    """The packages of the demonstration."""
    return packages_for("amd64", DEMO)


@pytest.fixture(scope="session")
def system(demo: list[Path]) -> Path:
    return system_for("amd64", demo)


@pytest.fixture
def bare(system: Path) -> Iterator[Machine]:
    """A machine on which nothing is installed yet."""
    with running(system) as machine:
        yield machine


@pytest.fixture(scope="session")
def with_demo(system: Path, demo: list[Path]) -> Iterator[Path]:
    """What a machine has more than a bare one after the installation of the demonstration."""
    with running(system) as machine:
        machine.install(*demo)
        machine.power_off()
        yield machine.changes


@pytest.fixture
def installed(system: Path, with_demo: Path) -> Iterator[Machine]:
    """A machine that was switched off after the installation, and on again."""
    with running(with_demo, system) as machine:
        Pages(machine).wait()
        yield machine
