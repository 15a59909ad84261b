"""Installation on machines that are not as one would like them to be."""

import json
import re
import subprocess
import sys
from pathlib import Path

import pytest
from machine import ROOT, Machine, running
from pages import Pages, set_password

RUN = {"type": "single", "stream": 2}
COMMANDS = "/var/log/gc-web-demo/commands.log"
SECRETS = ["/etc/gc-web/certificate.pem", "/etc/gc-web/passwords"]
HOLD_PORT = """
import socket
with socket.create_server(("0.0.0.0", 8443)):
    print("held", flush=True)
    input()
"""


def test_port_taken(bare: Machine, demo: list[Path]) -> None:
    """The installation succeeds, the log tells why there are no pages, and they come when it is free."""
    other = subprocess.Popen(
        [str(word) for word in bare.beside(sys.executable, "-c", HOLD_PORT)],
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
    )
    assert other.stdout is not None and other.stdout.readline() == b"held\n"
    bare.install(*demo)
    state = ("systemctl", "show", "--property=Result", "gc-web-demo.service")
    bare.wait("sh", "-c", 'test "$("$@")" != Result=success', "sh", *state)
    said = bare.run("journalctl", "--unit=gc-web-demo.service", "--output=cat")
    assert "Address already in use" in said and "8443" in said
    other.communicate(b"\n")
    bare.run("systemctl", "restart", "gc-web-demo.service")
    Pages(bare).wait()


def test_without_systemd(system: Path, demo: list[Path]) -> None:
    with running(system, command=["sh", "-c", "echo up; cat"]) as machine:
        machine.install(*demo)
        machine.run("test", "-s", "/etc/gc-web/certificate.pem")
        machine.run("gc-web-password", "operator", stdin="secret\n")
        machine.run("apt-get", "--yes", "purge", "gc-web-demo", "gc-web-server", "gc-web-pages")


def test_read_only_usr(installed: Machine) -> None:
    installed.shell("mount --bind /usr /usr && mount -o remount,bind,ro /usr; ! touch /usr/x 2>/dev/null")
    installed.run("systemctl", "restart", "gc-sim.service", "gc-web-demo.service")
    Pages(installed).wait()
    set_password(installed)
    installed.run("gc-web-certificate", "gc.example")
    assert Pages(installed).command("run", RUN).status == 200


def test_strict_umask(bare: Machine, demo: list[Path]) -> None:
    bare.install(*demo, umask="077")
    Pages(bare).wait()
    set_password(bare, umask="077")
    assert Pages(bare).command("run", RUN).status == 200
    assert bare.run("stat", "--format=%a %U:%G", *SECRETS) == "640 root:gc-web\n" * 2


def test_generous_umask(bare: Machine, demo: list[Path]) -> None:
    """Secrets are nobody's business all the same."""
    bare.install(*demo, umask="000")
    set_password(bare, umask="000")
    assert bare.run("stat", "--format=%a %U:%G", *SECRETS) == "640 root:gc-web\n" * 2
    ours = "/etc/gc-web* /var/lib/gc-web* /var/cache/gc-web* /var/log/gc-web* /run/gc-web*"
    assert bare.shell(f"find {ours} ! -type l -perm /022") == ""
    assert bare.shell(f"find {ours} ! -type d -perm /004 | sort").split() == [
        "/etc/gc-web-demo/lighttpd.conf",
        "/etc/gc-web/lighttpd.conf",
    ]


@pytest.mark.parametrize("verb", ["restart", "stop"])
def test_a_command_that_has_begun_is_finished(installed: Machine, verb: str) -> None:
    set_password(installed)
    control = ("gc-simctl", "--control", "/run/gc-sim/control")
    fault = {"kind": "delay", "call": "Command", "seconds": 3}
    installed.run(*control, "fault", json.dumps(fault))
    slow = Pages(installed).begin("run", RUN)
    installed.wait("grep", "--quiet", '"begun"', COMMANDS)
    assert "ended" not in installed.run("cat", COMMANDS)
    installed.run("systemctl", verb, "gc-web-demo.service")
    # Not before the command has ended.
    ended = json.loads(installed.run("tail", "-n", "1", COMMANDS))
    assert (ended["event"], ended["status"]) == ("ended", 200)
    assert Pages(installed).end(slow).status == 200
    if verb == "stop":
        assert not Pages(installed).answers()
    else:
        Pages(installed).wait()
        assert Pages(installed).get("/api/unfinished").document == {"going_on": [], "interrupted": []}


@pytest.mark.parametrize("unit", ["gc-web-demo.service", "gc-web.service", "gc-sim.service"])
def test_exposure(installed: Machine, unit: str) -> None:
    """At most 2.5 of 10; what it costs to have less stands in the unit."""
    installed.run("systemd-analyze", "security", "--no-pager", "--threshold=25", unit)


def test_wrong_passwords_are_found(installed: Machine, tmp_path: Path) -> None:
    """By fail2ban, with the filter that is installed, in the log of a real web server."""
    set_password(installed)
    for word in ("wrong", "grün", ""):
        Pages(installed).command("login", {}, password=word)
    assert Pages(installed).command("login", {}).status == 204
    log = tmp_path / "error.log"
    log.write_text(installed.run("cat", "/var/log/gc-web-demo/error.log"), encoding="utf-8")
    examples = installed.files / "usr/share/doc/gc-web-server/examples/fail2ban"
    jail = (examples / "jail.conf").read_text()
    assert "logpath  = /var/log/gc-web/error.log" in jail
    filter_of_ours = tmp_path / "filter.conf"
    filter_of_ours.write_text((examples / "filter.conf").read_text())

    unpacked = ROOT / "build" / "fail2ban" / "usr"
    done = subprocess.run(
        ["/usr/bin/python3", "-B", unpacked / "bin" / "fail2ban-regex", log, filter_of_ours],
        env={"PYTHONPATH": str(unpacked / "lib/python3/dist-packages"), "LC_ALL": "C.UTF-8"},
        capture_output=True,
        text=True,
        check=False,
    )
    # Two wrong passwords; no password is only asked for.
    assert re.search(r"^Lines: \d+ lines, 0 ignored, 2 matched", done.stdout, re.MULTILINE), (
        done.stdout + log.read_text()
    )
