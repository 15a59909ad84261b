"""The version is stated once, in CMakeLists.txt; whatever else shows it shows the same."""

import json
import re

import pytest
from places import BIN_DIR, MANUAL, ROOT, WEB_DIR, output_of, version


@pytest.mark.parametrize("program", ["gc-sim", "gc-simctl"])
def test_simulator(program: str) -> None:
    assert output_of(BIN_DIR / program, "--version") == f"{program} {version()}\n"


@pytest.mark.parametrize("program", ["report", "command"])
def test_gateway_started_by_hand(program: str) -> None:
    assert output_of(WEB_DIR / program, "--version") == f"{program} {version()}\n"


@pytest.mark.parametrize("program", ["report", "command"])
def test_gateway_started_by_a_web_server(program: str) -> None:
    """A web server makes a query without "=" an argument: that is no question of a person."""
    answer = output_of(WEB_DIR / program, "--version", GATEWAY_INTERFACE="CGI/1.1")
    assert answer.startswith("Status: "), answer


def test_tool_has_it_as_a_string() -> None:
    strings = re.findall(rb"[ -~]{4,}", (BIN_DIR / "GC_Web").read_bytes())
    assert [text for text in strings if re.fullmatch(rb"GC_Web \d.*", text)] == [
        f"GC_Web {version()}".encode()
    ]


def test_manual() -> None:
    pages = sorted(MANUAL.glob("man*/*.[1-8]"))
    assert len(pages) == len(list((ROOT / "man").glob("*.in"))) == 6
    for page in pages:
        text = page.read_text(encoding="utf-8")
        assert re.findall(r"^\.Os (.*)$", text, re.MULTILINE) == [f"GC_Web {version()}"], page


def test_changelog() -> None:
    text = (ROOT / "CHANGELOG.md").read_text(encoding="utf-8")
    assert re.findall(r"^## (\S+)", text, re.MULTILINE)[0] == version()


def test_package() -> None:
    text = (ROOT / "debian" / "changelog").read_text(encoding="utf-8")
    found = re.match(r"gc-web \((\d+\.\d+\.\d+)(-[\w.+~]+)?\) ", text)
    assert found is not None and found[1] == version(), text[:60]


def test_interface() -> None:
    described = json.loads((ROOT / "docs" / "openapi.json").read_text(encoding="utf-8"))
    assert described["info"]["version"] == version()
