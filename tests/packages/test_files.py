"""The packages as files: what Debian's own checks say, and what is in them."""

import re
import subprocess
from pathlib import Path

import pytest
from conftest import BUILT, DEMO, packages_for
from machine import ROOT
from packaged import field


def output_of(*command: str | Path) -> str:
    """Both outputs, whatever the exit status is."""
    done = subprocess.run(
        command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False
    )
    return done.stdout


@pytest.fixture(scope="module")
def unpacked(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """All packages in one folder, as on a machine."""
    folder = tmp_path_factory.mktemp("unpacked")
    for package in packages_for("amd64", DEMO):
        subprocess.run(["dpkg-deb", "--extract", package, folder], check=True)
    return folder


@pytest.fixture(scope="module")
def programs(unpacked: Path) -> list[Path]:
    """Programs and libraries."""
    files = [path for path in unpacked.rglob("*") if path.is_file() and not path.is_symlink()]
    found = [path for path in files if path.read_bytes()[:4] == b"\x7fELF" and path.suffix != ".o"]
    assert len(found) == 8
    return found


@pytest.mark.parametrize("kind", ["amd64.changes", "dsc"])
def test_lintian(kind: str) -> None:
    (file,) = BUILT.glob(f"gc-web_*{kind}")
    said = output_of("lintian", "--allow-root", "-EviIL", "+pedantic", file)
    assert [line for line in said.splitlines() if re.match("[EW]:", line)] == []


def test_compiled_with_all_protection() -> None:
    """blhc reads the log of the build."""
    log = BUILT / "log.amd64"
    done = subprocess.run(["blhc", "--all", "--arch=amd64", log], capture_output=True, text=True)
    assert (done.returncode, done.stdout) == (0, "")


def test_hardened(programs: list[Path]) -> None:
    # Nothing to protect cannot be told from not protected: tests/checks/hardening says where that is so.
    nothing = {"libgcerrortext.so": "--nostackprotector", "libgcclient.so": "--nofortify"}
    check = ROOT / "build" / "devscripts" / "usr" / "bin" / "hardening-check"
    for program in programs:
        options = ["--nocfprotection", *([nothing[program.name]] if program.name in nothing else [])]
        done = subprocess.run(["perl", check, *options, program], capture_output=True, text=True)
        assert done.returncode == 0, done.stdout


def test_no_path_leads_into_a_build(programs: list[Path]) -> None:
    for program in programs:
        dynamic = output_of("readelf", "-dW", program)
        paths = re.findall(r"\((?:RUNPATH|RPATH)\) .*\[(.*)\]", dynamic)
        assert paths == (["$ORIGIN"] if program.name == "GC_Web" else []), program
        assert b"/build/" not in program.read_bytes()


def test_gateway_can_be_linked_to_another_cgicc(unpacked: Path, tmp_path: Path) -> None:
    """With the commands in the file that explains it, as an owner would type them."""
    folder = unpacked / "usr" / "lib" / "gc-web" / "relink"
    for file in folder.iterdir():
        (tmp_path / file.name).write_bytes(file.read_bytes())
    (archive,) = Path("/usr/lib").glob("*/libcgicc.a")
    (tmp_path / archive.name).write_bytes(archive.read_bytes())
    commands = re.findall(r"^  (g\+\+ .*)$", (tmp_path / "README").read_text(), re.MULTILINE)
    assert len(commands) == 2
    for command in commands:
        subprocess.run(["sh", "-c", command], cwd=tmp_path, check=True)
    version = field(packages_for("amd64", DEMO)[1], "Version")
    for name in ("report", "command"):
        assert output_of(tmp_path / name, "--version") == f"{name} {version.partition('-')[0]}\n"


def test_every_program_has_a_manual_page(unpacked: Path) -> None:
    names = {path.name for folder in ("bin", "sbin") for path in (unpacked / "usr" / folder).iterdir()}
    pages = {path.name.split(".")[0] for path in (unpacked / "usr/share/man").rglob("*.gz")}
    completions = unpacked / "usr/share/bash-completion/completions"
    assert names == {"gc-sim", "gc-simctl", "gc-web-password", "gc-web-certificate"}
    assert pages == names | {"gc-web"}
    assert {path.name for path in completions.iterdir()} == names
