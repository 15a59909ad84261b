"""A client of the simulated controller that can send anything, well-formed or not."""

import socket
import struct
from collections.abc import Sequence
from typing import NamedTuple

from programs import LIMIT, PORT

MAGIC = 0x47435731
CONNECT, READ, WRITE, COMMAND, OBJECT, PROGRAM_INFO, DISCONNECT = range(1, 8)

HEADER = struct.Struct(">IIII")
RECORD = struct.Struct(">IIIIdiI")


class Record(NamedTuple):
    channel: int
    method: int
    step: int
    id: int
    real: float = 0.0
    integer: int = 0
    status: int = 0


# Parameters of the whole instrument, by number.
STATE = Record(0, 0, 0, 102)
STREAM = Record(0, 0, 0, 58)
RUN_TIME = Record(0, 0, 0, 161)


class Answer(NamedTuple):
    type: int
    sequence: int
    body: bytes

    @property
    def status(self) -> int:
        return int(struct.unpack_from(">I", self.body)[0])

    @property
    def records(self) -> list[Record]:
        (count,) = struct.unpack_from(">I", self.body, 4)
        assert len(self.body) == 8 + count * RECORD.size
        return [Record(*fields) for fields in RECORD.iter_unpack(self.body[8:])]

    @property
    def text(self) -> bytes:
        """The body of an object that consists of one text."""
        assert self.body[8:20] == b"SiteInfoTag\0"
        length, size = struct.unpack_from(">II", self.body, 20)
        text = self.body[28:]
        assert (length, size) == (len(text) + 4, len(text)) and text.endswith(b"\0")
        return text[:-1]


def frame(kind: int, body: bytes, sequence: int = 1) -> bytes:
    return HEADER.pack(MAGIC, kind, sequence, len(body)) + body


def connect_body(mode: int, name: bytes = b"test") -> bytes:
    return struct.pack(">II", mode, len(name) + 1) + name + b"\0"


def batch_body(records: Sequence[Record]) -> bytes:
    return struct.pack(">II", 0, len(records)) + b"".join(RECORD.pack(*r) for r in records)


class Client:
    """One connection, closed at the end of its `with` block."""

    def __init__(self, address: str) -> None:
        self.socket = socket.create_connection((address, PORT), timeout=LIMIT)
        self._sequence = 0

    def __enter__(self) -> "Client":
        return self

    def __exit__(self, *_: object) -> None:
        self.socket.close()

    def send(self, kind: int, body: bytes) -> None:
        self._sequence += 1
        self.socket.sendall(frame(kind, body, self._sequence))

    def receive(self) -> Answer:
        """The next answer; EOFError if the connection is closed instead."""
        _, kind, sequence, length = HEADER.unpack(self._take(HEADER.size))
        return Answer(kind, sequence, self._take(length))

    def _take(self, length: int) -> bytes:
        octets = b""
        while len(octets) < length:
            try:
                more = self.socket.recv(length - len(octets))
            except ConnectionError:
                more = b""
            if not more:
                raise EOFError(octets)
            octets += more
        return octets

    def call(self, kind: int, body: bytes) -> Answer:
        self.send(kind, body)
        answer = self.receive()
        assert (answer.type, answer.sequence) == (kind, self._sequence)
        return answer

    def connect(self, mode: int, name: bytes = b"test") -> int:
        return self.call(CONNECT, connect_body(mode, name)).status

    def read(self, *records: Record) -> Answer:
        return self.call(READ, batch_body(records))

    def write(self, *records: Record) -> Answer:
        return self.call(WRITE, batch_body(records))

    def command(self, number: int, channel: int = 0) -> int:
        return self.call(COMMAND, struct.pack(">II", channel, number)).status

    def object(self, number: int) -> Answer:
        return self.call(OBJECT, struct.pack(">I", number))

    def program_info(self, channel: int) -> Answer:
        return self.call(PROGRAM_INFO, struct.pack(">III", 0, channel, 0))

    def disconnect(self) -> int:
        return self.call(DISCONNECT, struct.pack(">I", 0)).status

    def is_closed(self) -> bool:
        """Waits for the controller to close the connection; False if it answers instead."""
        try:
            self.receive()
        except EOFError as end:
            assert end.args == (b"",), "part of an answer arrived"
            return True
        return False


def connected(address: str, mode: int) -> Client:
    client = Client(address)
    assert client.connect(mode) == 0
    return client
