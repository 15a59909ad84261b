"""Failed connections: what the page is told when no instrument can be reached."""

import errno
import select
import socket
from collections.abc import Callable, Iterator
from contextlib import ExitStack
from threading import Thread

import pytest
from conftest import StartSimulator
from programs import PORT, Run, Tool, expect_failed

# Statuses of the stand-in client library.
ANSWER_TIMEOUT = 107
CONNECTION_LOST = 108
ANSWER_INVALID = 109


def expect_not_started(run: Run) -> None:
    assert run.stdout == b"""\
{
    "ErrorCode": 1,
    "Msg": "GC DLL error!"
}
"""
    assert run.stderr == b"startupGC An error occured.\n"
    assert run.status == 0


def expect_not_connected(run: Run) -> None:
    assert run.stdout == b"""\
{
    "ErrorCode": 10053,
    "Msg": "Unable to connect to GC!"
}
"""
    assert run.stderr == b"EstablishConnection An error occured while connecting to the GC.\n"
    assert run.status == 0


@pytest.mark.parametrize("unusable", ["224.0.0.1", "239.255.0.1", "240.0.0.1", "254.255.255.254"])
def test_address_that_no_instrument_has(tool: Tool, unusable: str) -> None:
    expect_not_started(tool("-s", unusable))


def test_nothing_listens(tool: Tool, address: str) -> None:
    expect_not_connected(tool("-s", address))


@pytest.fixture
def full_address(address: str) -> Iterator[str]:
    """An address that does not answer connection requests, as if no host were there."""
    with ExitStack() as sockets:
        listener = sockets.enter_context(socket.create_server((address, PORT), backlog=0))
        # The first connection fills the queue; the kernel drops what comes after it.
        for expected in [True, False]:
            client = sockets.enter_context(socket.socket())
            client.setblocking(False)
            assert client.connect_ex((address, PORT)) == errno.EINPROGRESS
            connected = bool(select.select([], [client], [], 0.2)[1])
            assert connected is expected, "the kernel queues connections differently"
        yield listener.getsockname()[0]


def test_nothing_answers(tool: Tool, full_address: str) -> None:
    """The web server gives up long before the kernel would."""
    run = tool("-s", full_address)
    expect_not_connected(run)
    assert run.seconds < 3.5


@pytest.fixture
def serve(address: str) -> Iterator[Callable[[bytes | None], str]]:
    """Starts a listener that is not a controller, and returns its address.

    It accepts one connection and closes it after sending the octets; without octets it keeps it
    open.
    """
    with ExitStack() as ending:

        def start(octets: bytes | None) -> str:
            listener = ending.enter_context(socket.create_server((address, PORT)))
            listener.settimeout(60)

            def answer() -> None:
                connection = listener.accept()[0]
                if octets is None:
                    ending.enter_context(connection)
                    return
                with connection:
                    connection.recv(4096)
                    connection.sendall(octets)

            thread = Thread(target=answer)
            thread.start()
            ending.callback(thread.join)
            return address

        yield start


@pytest.mark.parametrize(
    "octets",
    [
        b"",
        b"HTTP/1.1 400 Bad Request\r\nConnection: close\r\n\r\n",
        b"\0" * 4096,
        b"\xff" * 4096,
        b"GCW1",
        bytes.fromhex("47435731 00000001 00000001 ffffffff") + b"x" * 4096,
        bytes.fromhex("47435731 00000001 00000001 00000004"),
        bytes.fromhex("47435731 00000001 00000001 00000000"),
        bytes.fromhex("47435731 00000007 00000001 00000004 00000000"),
        bytes.fromhex("47435731 00000001 ffffffff 00000004 00000000"),
        bytes.fromhex("47435731 00000001 00000001 00000008 00000000 00000000"),
    ],
    ids=[
        "closes",
        "web server",
        "zeros",
        "ones",
        "half a header",
        "endless answer",
        "answer without its body",
        "empty answer",
        "answer to something else",
        "answer to another request",
        "answer that is too long",
    ],
)
def test_not_a_controller(tool: Tool, serve: Callable[[bytes | None], str], octets: bytes) -> None:
    expect_not_connected(tool("-s", serve(octets)))


def test_connects_and_is_silent(tool: Tool, serve: Callable[[bytes | None], str]) -> None:
    run = tool("-s", serve(None))
    expect_not_connected(run)
    assert run.seconds < 20


def test_controller_refuses(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="refuse")
    expect_not_connected(tool("-s", controller.address))


def test_controller_has_too_many_connections(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="status", call="Connect", status=211)
    expect_not_connected(tool("-s", controller.address))


@pytest.mark.parametrize(
    "fault, status",
    [
        ({"kind": "drop"}, CONNECTION_LOST),
        ({"kind": "drop", "when": "after"}, CONNECTION_LOST),
        ({"kind": "truncate"}, CONNECTION_LOST),
        ({"kind": "short"}, ANSWER_INVALID),
    ],
)
def test_connection_breaks_during_the_batch(
    tool: Tool, simulator: StartSimulator, fault: dict[str, str], status: int
) -> None:
    controller = simulator()
    controller.fault(call="Read", **fault)
    expect_failed(tool("-s", controller.address), status)


def test_batch_is_never_answered(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="hang", call="Read")
    run = tool("-s", controller.address)
    expect_failed(run, ANSWER_TIMEOUT)
    assert run.seconds < 20


def test_controller_that_comes_back(tool: Tool, simulator: StartSimulator) -> None:
    """A failure leaves nothing behind: the next run reaches the instrument as usual."""
    controller = simulator()
    controller.fault(kind="drop", call="Read")
    expect_failed(tool("-s", controller.address), CONNECTION_LOST)
    assert "GC_time" in tool("-s", controller.address).document
