"""The servers for the peers: each holds as many values as a status request reads."""

import json
import os
import socket
import subprocess
import sys
import tempfile
import time
from collections.abc import Callable, Iterator
from contextlib import ExitStack, contextmanager
from pathlib import Path
from typing import NamedTuple

from measuring import ROOT

VALUES = 71  # parameters of the status report
HOST = "127.0.10.1"
# A driver adds 13 values of its own to those in its file.
NUT_VALUES = [f"input.L{n}.voltage: {220 + n}.5" for n in range(1, VALUES - 13 + 1)]
OIDS = [f".1.3.6.1.4.1.8072.9999.{n}.0" for n in range(1, VALUES + 1)]
MODBUS_SERVER = """
import sys
from pymodbus.datastore import ModbusSequentialDataBlock, ModbusServerContext, ModbusSlaveContext
from pymodbus.server import StartTcpServer
registers = ModbusSequentialDataBlock(1, list(range(1001, 1001 + 125)))
context = ModbusServerContext(slaves=ModbusSlaveContext(hr=registers, zero_mode=False))
StartTcpServer(context=context, address=(sys.argv[1], int(sys.argv[2])))
"""
# The clients and the servers' libraries are installed. The packages of the servers would start
# services, so they are only unpacked, into the build folder.
INSTALLED = (
    "nut-client snmp redis-tools mbpoll curl "
    "python3-pymodbus python3-serial-asyncio libnss3 libwrap0 libpcre2-8-0 libnettle8 libxxhash0"
).split()
UNPACKED = ["nut-server", "snmpd", "lighttpd"]
FOLDER = ROOT / "build/peers"


class Peer(NamedTuple):
    """A client, and a function that counts the values it printed."""

    command: list[str]
    count: Callable[[str], int]


def install() -> list[str]:
    """Fetches clients and servers; returns their names and versions."""
    subprocess.run([ROOT / "packaging/ensure-packages", *INSTALLED], check=True)
    subprocess.run([ROOT / "packaging/unpack", FOLDER, *UNPACKED], check=True)
    query = ["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *INSTALLED[:6]]
    installed = subprocess.run(query, capture_output=True, text=True, check=True).stdout
    archives = (FOLDER / "archives").read_text().replace("%3a", ":").splitlines()
    return installed.splitlines() + [" ".join(name.split("_")[:2]) for name in archives]


def free_port(kind: socket.SocketKind) -> str:
    with socket.socket(type=kind) as probe:
        probe.bind((HOST, 0))
        return str(probe.getsockname()[1])


class Servers:
    """Starts servers in the foreground, in their own folder, and stops them."""

    def __init__(self, folder: Path) -> None:
        self._folder = folder
        self._running = ExitStack()

    def __enter__(self) -> "Servers":
        return self

    def __exit__(self, *_: object) -> None:
        self._running.close()

    def write(self, name: str, *lines: str) -> str:
        path = self._folder / name
        path.write_text("\n".join(lines) + "\n")
        path.chmod(0o600)
        return str(path)

    def start(self, *command: str | Path, executable: str | None = None) -> None:
        log = self._running.enter_context(open(self._folder / "log", "a"))
        process = subprocess.Popen(
            [str(word) for word in command],
            executable=executable,
            cwd=self._folder,
            stdin=subprocess.DEVNULL,
            stdout=log,
            stderr=log,
        )
        self._running.callback(process.wait)
        self._running.callback(process.terminate)

    def ups(self) -> Peer:
        port = free_port(socket.SOCK_STREAM)
        self.write("ups.conf", "[gc]", "driver = dummy-ups", "port = gc.dev")
        self.write("upsd.conf", f"LISTEN {HOST} {port}")
        self.write("upsd.users")
        self.write("gc.dev", *NUT_VALUES)
        as_user = ["-u", "root"] if os.geteuid() == 0 else []
        self.start(FOLDER / "lib/nut/dummy-ups", "-a", "gc", *as_user, "-F")
        self.start(FOLDER / "lib/nut/upsd", *as_user, "-F")
        return Peer(["/usr/bin/upsc", f"gc@{HOST}:{port}"], lambda text: text.count(": "))

    def snmp(self) -> Peer:
        port = free_port(socket.SOCK_DGRAM)
        values = [f"override {oid} integer {1000 + n}" for n, oid in enumerate(OIDS)]
        reach = [f"agentAddress udp:{HOST}:{port}", "rocommunity public 127.0.0.0/8"]
        configuration = self.write("snmpd.conf", *reach, *values)
        options = ["-f", "-Lo", "-m", "", "-C", "-c", configuration]
        self.start(FOLDER / "usr/sbin/snmpd", *options)
        how = ["-v2c", "-c", "public", "-m", "", "-On"]
        command = ["/usr/bin/snmpget", *how, f"{HOST}:{port}", *OIDS]
        return Peer(command, lambda text: text.count("= INTEGER: "))

    def redis(self) -> Peer:
        port = free_port(socket.SOCK_STREAM)
        # The server comes with the client's package, and is selected by the name it is called with.
        server = ["redis-server", "--bind", HOST, "--port", port, "--save", ""]
        self.start(*server, executable="/usr/bin/redis-check-rdb")
        client = ["/usr/bin/redis-cli", "-h", HOST, "-p", port]
        fields = [text for n in range(VALUES) for text in (f"parameter{n}", f"{1000 + n}.5")]
        until(lambda: run([*client, "HSET", "gc", *fields]).strip() == str(VALUES), "redis-server")
        return Peer([*client, "--json", "HGETALL", "gc"], lambda text: len(json.loads(text)))

    def modbus(self) -> Peer:
        port = free_port(socket.SOCK_STREAM)
        self.start("/usr/bin/python3", "-c", MODBUS_SERVER, HOST, port)
        what = ["-a", "1", "-r", "1", "-c", str(VALUES), "-t", "4", "-1"]
        command = ["/usr/bin/mbpoll", "-m", "tcp", "-p", port, *what, HOST]
        return Peer(command, lambda text: text.count("]: \t"))

    def http(self, document: bytes) -> Peer:
        """The status report as a file: as many octets as the tool prints."""
        port = free_port(socket.SOCK_STREAM)
        (self._folder / "status.json").write_bytes(document)
        where = [f'server.bind = "{HOST}"', f"server.port = {port}"]
        root = f'server.document-root = "{self._folder}"'
        configuration = self.write("lighttpd.conf", *where, root)
        modules = FOLDER / "usr/lib/lighttpd"
        self.start(FOLDER / "usr/sbin/lighttpd", "-D", "-f", configuration, "-m", modules)
        command = ["/usr/bin/curl", "-q", "-s", "-S", f"http://{HOST}:{port}/status.json"]
        return Peer(command, lambda text: VALUES if text.encode() == document else 0)


def run(command: list[str]) -> str:
    return subprocess.run(command, capture_output=True, text=True).stdout


def until(done: Callable[[], bool], name: str) -> None:
    """Servers have no common way to report that they are ready: asks until the answer is right."""
    deadline = time.monotonic() + 20
    while not done():
        if time.monotonic() > deadline:
            sys.exit(f"{name} does not answer correctly")
        time.sleep(0.05)


def has_all(peer: Peer) -> bool:
    text = run(peer.command)
    return bool(text) and peer.count(text) == VALUES


@contextmanager
def running_peers(document: bytes) -> Iterator[dict[str, list[str]]]:
    """The clients' commands by name, once each has printed all values."""
    with (
        tempfile.TemporaryDirectory(prefix="gc-peers-") as folder,
        Servers(Path(folder)) as servers,
    ):
        # Where servers and clients look for their settings instead of the system's folders.
        names = ["NUT_CONFPATH", "NUT_STATEPATH", "NUT_ALTPIDPATH"]
        names += ["SNMPCONFPATH", "SNMP_PERSISTENT_DIR", "HOME"]
        os.environ.update({name: folder for name in names})
        peers = {
            "upsc": servers.ups(),
            "redis-cli --json": servers.redis(),
            "snmpget": servers.snmp(),
            "mbpoll": servers.modbus(),
            "curl": servers.http(document),
        }
        for name, peer in peers.items():
            until(lambda peer=peer: has_all(peer), name)
        yield {name: peer.command for name, peer in peers.items()}
