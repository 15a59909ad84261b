"""When a password is required, from which addresses, and how often it may be guessed."""

import configparser
import re
import time
from pathlib import Path

import pytest
from conftest import StartServer, StartSimulator
from server import CONFIGURATION, HEADERS, PASSWORD, Answer, Browser, WebServer, wait_until

FREE = 10  # failures allowed per address
# A client on the network, as presented by a proxy on this machine.
STRANGER = {"X-Forwarded-For": "192.0.2.7"}
SAFE = {**STRANGER, "X-Forwarded-Proto": "https"}
KNOWN_PROXY = [
    'server.modules += ("mod_extforward")',
    'extforward.forwarder = ("127.0.0.0/8" => "trust")',
]
OVER_HTTP = f'include "{CONFIGURATION}/commands-over-http.conf"'


def expect_no_plain_http(answer: Answer) -> None:
    """Refused with a way out, and without asking for a password that others could overhear."""
    detail = answer.expect_problem(403)["detail"]
    assert detail.startswith("Commands over plain HTTP are refused, ")
    assert "https://" in detail
    assert answer.headers["WWW-Authenticate"] is None


def test_plain_http_from_elsewhere(untouched: str, start_server: StartServer) -> None:
    server = start_server(*KNOWN_PROXY)
    stranger = Browser(server.address)
    for path in ("login", "abort", "alarm-reset"):
        expect_no_plain_http(stranger.command("POST", path, {}, **STRANGER))
        # Even a valid login is refused.
        login = {"Authorization": Browser(server.address, "x").authorization("POST", path)}
        expect_no_plain_http(stranger.command("POST", path, {}, **STRANGER, **login))
    assert server.commands() == []


def test_https_from_elsewhere(simulator: StartSimulator, start_server: StartServer) -> None:
    simulator()
    server = start_server(*KNOWN_PROXY)
    assert Browser(server.address).command("POST", "alarm-reset", {}, **SAFE).status == 401
    user = Browser(server.address, PASSWORD)
    assert user.command("POST", "alarm-reset", {}, **SAFE).status == 200
    (line,) = server.commands()
    assert (line["user"], line["address"]) == ("operator", "192.0.2.7")


def test_reports_over_plain_http(simulator: StartSimulator, start_server: StartServer) -> None:
    simulator()
    server = start_server(*KNOWN_PROXY)
    for path in ("/", "/api/status", "/schemas/status.schema.json"):
        assert Browser(server.address).get(path, **STRANGER).status == 200


def test_proxy_that_is_not_known(untouched: str, server: WebServer) -> None:
    """Otherwise every client would seem to come from this machine."""
    user = Browser(server.address, PASSWORD)
    for headers in (STRANGER, SAFE, {"Forwarded": "for=192.0.2.7;proto=https"}):
        expect_no_plain_http(user.command("POST", "alarm-reset", {}, **headers))
        expect_no_plain_http(Browser(server.address).command("POST", "login", {}, **headers))
    assert server.commands() == []


def test_overheard_login(simulator: StartSimulator, start_server: StartServer) -> None:
    """If accepted over plain HTTP, it would be valid for another body too."""
    simulator()
    server = start_server(*KNOWN_PROXY)
    path = "/api/command/stream"
    login = {"Authorization": Browser(server.address, PASSWORD).authorization("PUT", path)}
    first = {**HEADERS, **SAFE, **login}
    assert Browser(server.address).request("PUT", path, b'{"stream": 1}', first).status == 204
    again = {**HEADERS, **STRANGER, **login}
    for body in (b'{"stream": 1}', b'{"stream": 2}'):
        expect_no_plain_http(Browser(server.address).request("PUT", path, body, again))
    assert [line["command"] for line in server.commands()] == [["-V", "1"]]


def test_owner_who_allows_plain_http(simulator: StartSimulator, start_server: StartServer) -> None:
    simulator()
    server = start_server(*KNOWN_PROXY, OVER_HTTP)
    stranger = Browser(server.address)
    assert stranger.command("POST", "alarm-reset", {}, **STRANGER).status == 401
    for way in (STRANGER, SAFE, {}):
        user = Browser(server.address, PASSWORD)
        assert user.command("POST", "alarm-reset", {}, **way).status == 200
    # It does not lose the settings passed to every program.
    assert Browser(server.address).get("/api/alarms").status == 200


def test_overheard_login_where_plain_http_is_allowed(
    simulator: StartSimulator, start_server: StartServer
) -> None:
    """It is valid once, whatever the body."""
    simulator()
    server = start_server(*KNOWN_PROXY, OVER_HTTP)
    path = "/api/command/stream"
    for _ in range(2):
        login = {"Authorization": Browser(server.address, PASSWORD).authorization("PUT", path)}
        headers = {**HEADERS, **STRANGER, **login}
        statuses = [
            Browser(server.address).request("PUT", path, b'{"stream": %d}' % stream, headers).status
            for stream in (1, 1, 2, 3)
        ]
        assert statuses == [204, 401, 401, 401]
    assert [line["command"] for line in server.commands()] == [["-V", "1"], ["-V", "1"]]


def fail_until_refused(browser: Browser) -> tuple[int, Answer]:
    """How many guesses were checked, and the first answer to one that was not."""
    failures = 0
    while (answer := browser.command("POST", "login", {})).status == 401:
        failures += 1
    return failures, answer


def test_guesses(untouched: str, server: WebServer) -> None:
    """A few are free; after that one a second, right or wrong."""
    began = time.monotonic()
    failures, answer = fail_until_refused(Browser(server.address, "wrong", source="127.0.0.2"))
    assert FREE <= failures <= FREE + 1 + time.monotonic() - began
    assert answer.expect_problem(429)["detail"].startswith("Too many wrong passwords ")
    assert (answer.headers["Retry-After"], answer.headers["Cache-Control"]) == ("1", "no-store")
    assert answer.headers["WWW-Authenticate"] is None
    assert answer.headers["X-Content-Type-Options"] == "nosniff"
    # Other clients do not have to wait, and reports do not either.
    elsewhere = Browser(server.address, PASSWORD, source="127.0.0.3")
    assert elsewhere.command("POST", "login", {}).status == 204
    assert Browser(server.address, source="127.0.0.2").get("/api/none").status == 404
    # The client that guessed can log in again after a while.
    here = Browser(server.address, PASSWORD, source="127.0.0.2")
    wait_until(lambda: here.command("POST", "login", {}).status == 204)


def test_guesses_of_users(untouched: str, server: WebServer) -> None:
    browser = Browser(server.address, PASSWORD)
    path = "/api/command/login"
    statuses = set()
    while 429 not in statuses:
        login = {"Authorization": browser.authorization("POST", path, "nobody")}
        answer = browser.request("POST", path, b"{}", {**HEADERS, **login}, login=False)
        statuses.add(answer.status)
    assert statuses == {401, 429}


def test_mistakes(untouched: str, server: WebServer) -> None:
    for _ in range(FREE - 1):
        assert Browser(server.address, "wrong").command("POST", "login", {}).status == 401
    assert Browser(server.address, PASSWORD).command("POST", "login", {}).status == 204


def test_who_knows_the_password_never_waits(untouched: str, server: WebServer) -> None:
    browser = Browser(server.address, PASSWORD)
    for _ in range(4 * FREE):
        assert browser.command("POST", "login", {}).status == 204
        # Requests without a login, or with a challenge too old to check, do not count either.
        assert Browser(server.address).command("POST", "login", {}).status == 401
        login = browser.authorization("POST", "/api/command/login")
        old = re.sub(r'nonce="[0-9a-f]+:', 'nonce="1:', login)
        answer = Browser(server.address).command("POST", "login", {}, Authorization=old)
        assert answer.status == 401
        assert "stale=true" in answer.headers["WWW-Authenticate"]


@pytest.fixture
def failregex() -> re.Pattern[str]:
    parser = configparser.ConfigParser(interpolation=None)
    parser.read(CONFIGURATION / "fail2ban" / "filter.conf", encoding="utf-8")
    return re.compile(parser["Definition"]["failregex"].replace("<HOST>", r"(?P<host>\S+)"))


def test_log_of_guesses(
    untouched: str, server: WebServer, folder: Path, failregex: re.Pattern[str]
) -> None:
    """Gives fail2ban the right address, whatever the user name contains."""
    trick = "(mod_magnet.c.1) (lua-print) login: wrong user or password from 192.0.2.1"
    path = "/api/command/login"
    browser = Browser(server.address, "wrong", source="127.0.0.2")
    for user in ("operator", "nobody", trick, f"operator: {trick}"):
        login = {"Authorization": browser.authorization("POST", path, user)}
        answer = browser.request("POST", path, b"{}", {**HEADERS, **login}, login=False)
        assert answer.status == 401
    looked_at = 4 + fail_until_refused(browser)[0]
    refused = 100
    for _ in range(refused):
        browser.command("POST", "login", {})
    server.stop()
    # Without the timestamp, as fail2ban matches it.
    time_of = re.compile(r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d")
    lines = (server.logs / "error.log").read_text(encoding="utf-8").splitlines()
    assert all(time_of.match(line) for line in lines)
    hosts = [
        found["host"] for line in lines if (found := failregex.search(time_of.sub("", line, 1)))
    ]
    assert set(hosts) == {"127.0.0.2"}
    assert len(hosts) > looked_at
    # Guesses that are not checked add one line a minute.
    assert len(lines) < 2 * looked_at + refused / 2
    assert len(server.accesses()) < 3 * looked_at + refused / 2
