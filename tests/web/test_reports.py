"""Reports through the web server: the tool's output octet by octet, or what went wrong."""

import re
from pathlib import Path

import pytest
from conftest import StartServer, StartSimulator
from programs import REPORTS, SCHEMAS, Tool, validate
from server import Browser, WebServer

# Written out here, not taken from the gateway.
PATHS = {
    "/api/status": "-t",
    "/api/config": "-g",
    "/api/alarms": "-a",
    "/api/sequence": "-q",
    "/api/calibration": "-c",
}
CLOCK = re.compile(rb'"GC_time": "[^"]*"')


def without_clock(document: bytes) -> bytes:
    return CLOCK.sub(b"CLOCK", document)


@pytest.mark.parametrize("scenario", ["everyday", "four-channel", "bare", "error"])
def test_what_the_tool_prints(
    tool: Tool, simulator: StartSimulator, browser: Browser, scenario: str
) -> None:
    controller = simulator(scenario)
    for path, option in PATHS.items():
        answer = browser.get(path)
        assert answer.status == 200, path
        printed = tool("-s", controller.address, option).stdout
        assert without_clock(answer.body) == without_clock(printed)
        assert answer.headers["Content-Type"] == "application/json"
        assert answer.headers["Content-Length"] == str(len(answer.body))
        link = f'</schemas/{REPORTS[option]}.schema.json>; rel="describedby"'
        assert answer.headers["Link"] == link
        assert answer.headers["Cache-Control"] == "no-store"


def test_units(tool: Tool, simulator: StartSimulator, start_server: StartServer) -> None:
    """The configured units follow the tool's output of this report only."""
    controller = simulator()
    browser = Browser(start_server(units="temperature=°C, amount=mol %").address)
    answer = browser.get("/api/config")
    validate("configuration", answer.document)
    assert answer.document["units"] == {"temperature": "°C", "amount": "mol %"}
    printed = tool("-s", controller.address, "-g").stdout
    units = ',"units":{"temperature":"°C","amount":"mol %"}'.encode()
    assert answer.body.replace(units, b"") == printed
    assert b"units" not in browser.get("/api/status").body


def test_units_that_cannot_be_read(simulator: StartSimulator, start_server: StartServer) -> None:
    simulator()
    browser = Browser(start_server(units="temperature: °C").address)
    answer = browser.get("/api/config")
    assert "GC_WEB_UNITS" in answer.expect_problem(500)["detail"]
    assert browser.get("/api/status").status == 200


def test_version(untouched: str, browser: Browser) -> None:
    answer = browser.get("/api/about")
    validate("about", answer.document)
    cmake = (SCHEMAS.parents[1] / "CMakeLists.txt").read_text(encoding="utf-8")
    assert answer.document["version"] == re.findall(r"project\(GC_Web VERSION ([\d.]+)", cmake)[0]


def test_schema_that_an_answer_names(simulator: StartSimulator, browser: Browser) -> None:
    simulator()
    for path in PATHS:
        link = browser.get(path).headers["Link"]
        schema = browser.get(re.findall("<(.*)>", link)[0])
        assert (schema.status, schema.headers["Content-Type"]) == (200, "application/schema+json")
        assert schema.document["$schema"] == "http://json-schema.org/draft-04/schema#"


def test_head(simulator: StartSimulator, browser: Browser) -> None:
    simulator()
    for path in PATHS:
        whole, head = browser.get(path), browser.request("HEAD", path)
        assert (head.status, head.body) == (200, b"")
        for name in ("Content-Type", "Content-Length", "Link", "Cache-Control"):
            assert head.headers[name] == whole.headers[name]


@pytest.mark.parametrize("method", ["POST", "PUT", "DELETE", "PATCH", "OPTIONS"])
def test_other_methods(untouched: str, browser: Browser, method: str) -> None:
    for path in PATHS:
        answer = browser.request(method, path)
        answer.expect_problem(405)
        assert answer.headers["Allow"] == "GET, HEAD"


@pytest.mark.parametrize("path", ["/api", "/api/", "/api/statu", "/api/status/", "/api/Status"])
def test_no_such_report(untouched: str, browser: Browser, path: str) -> None:
    browser.get(path).expect_problem(404)


def test_query_and_body(untouched: str, browser: Browser) -> None:
    for path in PATHS:
        browser.get(f"{path}?x=1").expect_problem(400)
    # The web server itself accepts no GET with a body.
    assert browser.request("GET", "/api/status", b"{}").status == 400


def test_shared_status(simulator: StartSimulator, browser: Browser) -> None:
    controller = simulator()
    first = browser.get("/api/status")
    second = browser.get("/api/status")
    assert first.headers["Age"] is None
    # On a slow machine a second may have passed: then the tool was run again.
    runs = {line["connection"] for line in controller.journal()}
    if len(runs) == 1:
        assert second.headers["Age"] == "0"
        assert second.body == first.body
    else:
        assert second.headers["Age"] is None


def test_no_controller(browser: Browser) -> None:
    for path in PATHS:
        answer = browser.get(path)
        assert (answer.status, answer.headers["Retry-After"]) == (503, "5")
        assert answer.document == {"ErrorCode": 10053, "Msg": "Unable to connect to GC!"}
        assert answer.headers["Link"] == '</schemas/result.schema.json>; rel="describedby"'


@pytest.mark.parametrize("path", PATHS)
def test_read_refused(
    simulator: StartSimulator, server: WebServer, browser: Browser, path: str
) -> None:
    """Also written to the error log, once a minute."""
    simulator().fault(kind="status", call="Read", status=207, times=0)
    for _ in range(2):
        assert browser.get(path).expect_problem(502)["status-of-instrument"] == 207
    assert server.diagnoses() == [f"GET {path} 502: Execute failed 207."]


def test_instrument_that_hangs(simulator: StartSimulator, browser: Browser) -> None:
    """The tool gives up before the gateway does, and says so."""
    simulator().fault(kind="hang", call="Read")
    assert browser.get("/api/alarms").expect_problem(504)["status-of-library"] == 107


def test_tool_that_is_missing(start_server: StartServer, folder: Path) -> None:
    server: WebServer = start_server(tool=folder / "none")
    for path in PATHS:
        Browser(server.address).get(path).expect_problem(502)
