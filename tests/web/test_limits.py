"""Connections that only stay open keep nobody away for ever."""

import select
import socket

from conftest import StartSimulator
from server import WEB_PORT, WebServer

CONNECTIONS = 100  # the server's limit
PATIENCE = 30  # seconds; the server closes a connection on which nothing comes after half of them


def has_ended(connection: socket.socket) -> bool:
    return bool(select.select([connection], [], [], 0)[0]) and connection.recv(1) == b""


def test_silent_connections(simulator: StartSimulator, server: WebServer) -> None:
    simulator()
    address = (server.address, WEB_PORT)
    silent = [socket.create_connection(address) for _ in range(CONNECTIONS)]
    with socket.create_connection(address, PATIENCE) as late:
        late.sendall(b"GET /api/status HTTP/1.0\r\nHost: gc.example\r\n\r\n")
        answer = late.recv(100)
    # It had to wait until one of them was closed.
    ended = [connection for connection in silent if has_ended(connection)]
    for connection in silent:
        connection.close()
    assert answer.startswith(b"HTTP/1.0 200 OK\r\n")
    assert ended
