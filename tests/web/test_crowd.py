"""Many browsers at once: the tool runs once a second for all of them."""

import http.client
import threading
import time
from collections import Counter

from conftest import StartSimulator
from server import WEB_PORT, WebServer

BROWSERS = 64
SECONDS = 5.0


def poll(address: str, end: float, seen: Counter[object]) -> None:
    """Requests the status every second on one connection, like a page."""
    connection = http.client.HTTPConnection(address, WEB_PORT, timeout=30)
    due = time.monotonic()
    while due < end:
        try:
            connection.request("GET", "/api/status")
            answer = connection.getresponse()
            body = answer.read()
            seen[answer.status, body.startswith(b"{") and body.endswith(b"}\n")] += 1
        except OSError as error:
            seen[repr(error)] += 1
        # A page does not catch up: missed requests are not repeated later.
        due = max(due + 1, time.monotonic())
        threading.Event().wait(due - time.monotonic())
    connection.close()


def test_status(simulator: StartSimulator, server: WebServer) -> None:
    controller = simulator(paused=False)
    seen: Counter[object] = Counter()
    began = time.monotonic()
    each = [Counter() for _ in range(BROWSERS)]
    threads = [
        threading.Thread(target=poll, args=(server.address, began + SECONDS, counter))
        for counter in each
    ]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    seconds = time.monotonic() - began
    for counter in each:
        seen += counter
    assert set(seen) == {(200, True)}
    assert all(each)
    runs = len({line["connection"] for line in controller.journal()})
    # An answer is shared for a second after the tool has ended.
    assert 2 <= runs <= seconds + 1
    assert server.complaints() == []
