"""Where the programs, their manual pages and their completions are."""

import os
import re
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BIN_DIR = Path(os.environ.get("GC_BIN_DIR", ROOT / "build" / "dev" / "bin")).resolve()
WEB_DIR = BIN_DIR.parent / "web"
MANUAL = Path(os.environ.get("GC_MANUAL", BIN_DIR.parent / "man")).resolve()
COMPLETIONS = ROOT / "completions"

PROGRAMS = ["GC_Web", "gc-sim", "gc-simctl"]


def version() -> str:
    text = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    found = re.findall(r"^project\(GC_Web VERSION (\d+\.\d+\.\d+) ", text, re.MULTILINE)
    assert len(found) == 1, found
    return found[0]


def output_of(program: Path, *arguments: str, **variables: str) -> str:
    """Both outputs of a program that succeeds."""
    done = subprocess.run(
        [program, *arguments],
        env={**os.environ, **variables},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        timeout=60,
        check=False,
    )
    assert done.returncode == 0, done
    return done.stdout.decode()


def usage_of(program: str, *verb: str) -> str:
    return output_of(BIN_DIR / program, *verb, "-h")
