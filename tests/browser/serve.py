"""One instrument with its pages, until standard input ends: gc-sim behind lighttpd and the gateway.

The first line on standard output gives all addresses and folders as JSON. After that, each line on
standard input is answered: `stop` and `start` end the simulated controller and start it again,
`kill-gateway` ends the gateway of the command under way.
Uses the modules of the system tests and of the web server's tests, from `PYTHONPATH`.
"""

import argparse
import json
import os
import shutil
import sys
import tempfile
from contextlib import ExitStack
from pathlib import Path

from processes import Tree
from programs import ROOT, Simulator, free_address
from server import CONFIGURATION, PASSWORD, USER, WEB_PORT, WebServer, write_passwords

BIN_DIR = Path(os.environ.get("GC_BIN_DIR", ROOT / "build" / "dev" / "bin")).resolve()


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("pages", type=Path, help="folder of the built pages")
    parser.add_argument("--no-passwords", action="store_true", help="nobody may act")
    parser.add_argument("--units", default="", help="of the instrument's values")
    options = parser.parse_args()
    with ExitStack() as running:
        folder = Path(running.enter_context(tempfile.TemporaryDirectory(prefix="gc-browser-")))
        address = running.enter_context(free_address())
        lines = []
        if not options.no_passwords:
            passwords = folder / "passwords"
            write_passwords(passwords)
            lines += [f'var.passwords = "{passwords}"', f'include "{CONFIGURATION}/login.conf"']
        tool = BIN_DIR / "GC_Web"
        server = WebServer(folder / "web", BIN_DIR, tool, address, lines, units=options.units)
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
        does = {
            "start": start,
            "stop": controller.close,
            "kill-gateway": lambda: Tree(server.pid).kill("command"),
        }
        for line in sys.stdin:
            does[line.strip()]()
            print("done", flush=True)


if __name__ == "__main__":
    main()
