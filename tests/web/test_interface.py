"""The interface description: it is complete, and deviations from it are found."""

import json
import re
from typing import Any

import pytest
from conftest import StartServer, StartSimulator
from interface import DESCRIPTION, description, faults_of_answer, faults_of_request
from programs import ROOT, SCHEMAS
from server import Browser

ABOUT = b'{"version": "1.2.3"}'
HEADERS = {
    "Cache-Control": "no-store",
    "Content-Type": "application/json",
    "Link": '</schemas/about.schema.json>; rel="describedby"',
    "Content-Length": "20",
}


def answer_faults(status: int = 200, body: bytes = ABOUT, **headers: Any) -> list[str]:
    told = {**HEADERS, **{name.replace("_", "-"): text for name, text in headers.items()}}
    known = {name: text for name, text in told.items() if text is not None}
    return faults_of_answer("GET", "/api/about", status, known, body)


def test_answer_as_described() -> None:
    assert answer_faults() == []
    assert answer_faults(X_GC_Interrupted="2") == []


@pytest.mark.parametrize(
    ("fault", "changed"),
    [
        ("not described", {"status": 201}),
        ("'more' was unexpected", {"body": b'{"version": "1.2.3", "more": 1}'}),
        ("'version' is a required", {"body": b"{}"}),
        ("does not match", {"body": b'{"version": "new"}'}),
        ("no document", {"body": b""}),
        ("text/html: not described", {"Content_Type": "text/html"}),
        ("x-more: not described", {"X_More": "1"}),
        ("x-gc-interrupted: ", {"X_GC_Interrupted": "0"}),
        ("cache-control: missing", {"Cache_Control": None}),
        ("cache-control: ", {"Cache_Control": "public"}),
        ("age: not described", {"Age": "1"}),
    ],
)
def test_answer_that_departs(fault: str, changed: dict[str, Any]) -> None:
    assert any(fault in found for found in answer_faults(**changed)), answer_faults(**changed)


def request_faults(path: str, document: Any, **headers: str) -> list[str]:
    told = {"X-GC-Request": "1", "Content-Type": "application/json; charset=utf-8", **headers}
    body = json.dumps(document).encode()
    return faults_of_request("POST", f"/api/command/{path}", told, body)


def test_request_as_described() -> None:
    assert request_faults("run", {"type": "single", "stream": 2}) == []
    assert request_faults("run", {"type": "automation"}) == []


@pytest.mark.parametrize(
    ("path", "document", "headers"),
    [
        ("run", {"type": "automation", "stream": 2}, {}),
        ("run", {"type": "single"}, {}),
        ("run", {"type": "single", "stream": 47}, {}),
        ("abort", {"when": "later"}, {}),
        ("login", {"a": 1}, {}),
        ("login", {}, {"X-GC-Request": "0"}),
        ("login", {}, {"Content-Type": "text/plain"}),
        ("none", {}, {}),
    ],
)
def test_request_that_departs(path: str, document: Any, headers: dict[str, str]) -> None:
    assert request_faults(path, document, **headers) != []


def references(value: Any) -> set[str]:
    if isinstance(value, list):
        return set().union(*map(references, value))
    if not isinstance(value, dict):
        return set()
    inner = set().union(*map(references, value.values()))
    return inner | {value[key] for key in ("$ref", "externalValue") if key in value}


def test_every_file_is_there() -> None:
    files = {name for name in references(description()) if not name.startswith("#")}
    assert {name for name in files if not (DESCRIPTION.parent / name).is_file()} == set()
    schemas = {path.name for path in SCHEMAS.glob("*.schema.json")}
    assert schemas == {name.rpartition("/")[2] for name in files if "schema.json" in name}


def test_every_part_is_used() -> None:
    """Except for answers that the web server gives on any path, which belong to none."""
    parts = description()["components"]
    every = {f"#/components/{kind}/{name}" for kind, of in parts.items() for name in of}
    unused = {name.rpartition("/")[2] for name in every - references(description())}
    anywhere = {"MethodNotAllowed", "NoPlainRequest", "OtherName", "ToHttps", "GatewayEnded"}
    assert unused == anywhere | {"password"}


def test_same_version() -> None:
    cmake = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    version = re.findall(r"project\(GC_Web VERSION ([\d.]+)", cmake)
    assert version == [description()["info"]["version"]]


def test_every_path_answers(simulator: StartSimulator, start_server: StartServer) -> None:
    """Everything described exists: no path is unknown, and each accepts its methods."""
    simulator()
    browser = Browser(start_server().address)
    for template, item in description()["paths"].items():
        path = template.replace("{number}", "1")
        for method in ("get", "head", "post", "put"):
            answer = browser.request(method.upper(), path)
            is_backup = "{" in template and answer.status == 404
            is_refused = template.startswith("/api/command") and answer.status == 401
            expected = 405 if method not in item else 200
            assert answer.status == expected or is_backup or is_refused, (method, path)
