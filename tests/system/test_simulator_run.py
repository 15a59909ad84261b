"""The script that starts a simulated controller and runs the tool against it."""

import os
import subprocess
from pathlib import Path

import pytest
from conftest import BIN_DIR, StartSimulator
from programs import LIMIT, ROOT


@pytest.fixture
def script(folder: Path) -> Path:
    """`run` in a tree that is already built, with the programs under test."""
    (folder / "tree/packaging").mkdir(parents=True)
    for name in ("ensure-packages", "build"):
        step = folder / "tree/packaging" / name
        step.write_text("#!/bin/sh\n")
        step.chmod(0o755)
    (folder / "tree/build/release").mkdir(parents=True)
    (folder / "tree/build/release/bin").symlink_to(BIN_DIR)
    copy = folder / "tree/run"
    copy.write_bytes((ROOT / "run").read_bytes())
    copy.chmod(0o755)
    return copy


def run(script: Path, *arguments: str) -> subprocess.CompletedProcess[str]:
    return subprocess.run(
        [str(script), *arguments],
        env={**os.environ, "XDG_RUNTIME_DIR": str(script.parent)},
        stdin=subprocess.DEVNULL,
        capture_output=True,
        timeout=LIMIT,
        text=True,
        check=False,
    )


def test_a_scenario_is_played_at_a_free_address(script: Path, address: str) -> None:
    done = run(script, "--scenario", "bare", "-s", address, "-g")
    assert (done.returncode, done.stderr) == (0, "")
    assert '"Inst_name": "gc-simulated"' in done.stdout


@pytest.mark.parametrize("scenario", ["four-channel", "everyday"])
def test_a_scenario_is_ignored_at_an_address_that_is_taken(
    script: Path, simulator: StartSimulator, scenario: str
) -> None:
    controller = simulator("bare")
    done = run(script, "--scenario", scenario, "-s", controller.address, "-g")
    assert done.returncode == 0
    assert '"Inst_name": "gc-simulated"' in done.stdout
    assert done.stderr == (
        f"A controller is already running at {controller.address}: it keeps its own scenario, and\n"
        f"--scenario {scenario} is ignored.\n"
    )


def test_nothing_is_said_when_no_scenario_was_asked_for(
    script: Path, simulator: StartSimulator
) -> None:
    controller = simulator("bare")
    done = run(script, "-s", controller.address, "-g")
    assert (done.returncode, done.stderr) == (0, "")
    assert '"Inst_name": "gc-simulated"' in done.stdout
