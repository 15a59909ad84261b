"""One instrument with its pages, until standard input ends: gc-sim behind lighttpd and the gateway.

The first line on standard output says, as JSON, where everything is. After that each line on
standard input, `stop` or `start`, ends the simulated controller or starts it anew, and is answered.
Takes the modules of the system tests and of the web server's tests, which are in `PYTHONPATH`.
"""

import argparse
import json
import os
import random
import shutil
import socket
import sys
import tempfile
from collections.abc import Iterator
from contextlib import ExitStack, contextmanager
from pathlib import Path

from programs import PORT, ROOT, Simulator
from server import CONFIGURATION, PASSWORD, USER, WEB_PORT, WebServer, write_passwords

BIN_DIR = Path(os.environ.get("GC_BIN_DIR", ROOT / "build" / "dev" / "bin")).resolve()


@contextmanager
def free_address() -> Iterator[str]:
    """A loopback address that nobody else has meanwhile; claimed as the system tests claim theirs."""
    while True:
        candidate = "127." + ".".join(str(random.randint(1, 254)) for _ in range(3))
        with socket.socket() as claim, socket.socket() as probe:
            try:
                claim.bind((candidate, PORT - 1))
                probe.bind((candidate, PORT))
            except OSError:
                continue
            probe.close()
            yield candidate
            return


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("pages", type=Path, help="folder of the built pages")
    parser.add_argument("--no-passwords", action="store_true", help="nobody may act")
    options = parser.parse_args()
    with ExitStack() as running:
        folder = Path(running.enter_context(tempfile.TemporaryDirectory(prefix="gc-browser-")))
        address = running.enter_context(free_address())
        lines = []
        if not options.no_passwords:
            passwords = folder / "passwords"
            write_passwords(passwords)
            lines += [f'var.passwords = "{passwords}"', f'include "{CONFIGURATION}/login.conf"']
        server = WebServer(folder / "web", BIN_DIR, BIN_DIR / "GC_Web", address, lines)
        running.callback(server.stop)
        shutil.copytree(options.pages, server.pages, dirs_exist_ok=True)

        controller = running.enter_context(ExitStack())

        def start() -> None:
            started = Simulator(BIN_DIR, address, folder, ["--paused"])
            controller.callback(started.stop)

        start()
        where = {
            "origin": f"http://{address}:{WEB_PORT}",
            "user": USER,
            "password": PASSWORD,
            "state": str(server.state),
            "control": [str(BIN_DIR / "gc-simctl"), "--control", str(folder / "control.sock")],
        }
        print(json.dumps(where), flush=True)
        for line in sys.stdin:
            {"start\n": start, "stop\n": controller.close}[line]()
            print("done", flush=True)


if __name__ == "__main__":
    main()
