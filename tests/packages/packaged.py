"""Packages as files: an earlier version of one, made from a present one."""

import re
import subprocess
import tempfile
from pathlib import Path

EARLIER = "0.0.9"


def field(package: Path, name: str) -> str:
    command = ["dpkg-deb", "--field", package, name]
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()


def earlier(package: Path, folder: Path) -> Path:
    """The same package with a lower version, and with another text in each of its settings."""
    version = field(package, "Version")
    with tempfile.TemporaryDirectory(dir=folder) as name:
        unpacked = Path(name) / "package"
        subprocess.run(["dpkg-deb", "--raw-extract", package, unpacked], check=True)
        control = unpacked / "DEBIAN" / "control"
        text = control.read_text(encoding="utf-8")
        assert re.findall(r"^Version: (.*)$", text, re.MULTILINE) == [version]
        text = text.replace(f"Version: {version}\n", f"Version: {EARLIER}\n")
        control.write_text(text.replace(f"(= {version})", f"(= {EARLIER})"), encoding="utf-8")
        settings = unpacked / "DEBIAN" / "conffiles"
        for path in settings.read_text().split() if settings.exists() else []:
            with (unpacked / path.lstrip("/")).open("a", encoding="utf-8") as file:
                file.write("# This line was dropped later.\n")
        made = folder / f"{field(package, 'Package')}_{EARLIER}.deb"
        command = ["dpkg-deb", "--root-owner-group", "-Znone", "--build", unpacked, made]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return made
