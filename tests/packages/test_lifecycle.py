"""What an owner has set outlives upgrades, removal and reinstallation, and nothing outlives a purge."""

from pathlib import Path

import pytest
from machine import Machine
from packaged import EARLIER, earlier
from pages import Pages, set_password

RUN = {"type": "single", "stream": 2}
NAMES = ["gc-web-demo", "gc-web-server", "gc-web-pages"]
SETTINGS = "/etc/gc-web-demo/lighttpd.conf"
COMMANDS = "/var/log/gc-web-demo/commands.log"
# As an upgrade without anybody at the keyboard: settings that the owner has changed are kept.
UNATTENDED = ["-o", "DPkg::Options::=--force-confold"]
# What dpkg, apt, systemd and other packages write while packages come and go.
OTHERS = r"""
  find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /run -o -path /tmp \
    -o -path /var/lib/dpkg -o -path /var/lib/apt -o -path /var/cache -o -path /var/log/apt \
    -o -path /var/log/journal \) -prune -o -print | sort
"""


def is_active(machine: Machine, unit: str) -> bool:
    return machine.attempt("systemctl", "is-active", "--quiet", unit).returncode == 0


def run_was_accepted(machine: Machine) -> bool:
    return Pages(machine).command("run", RUN).status == 200


def test_upgrade(bare: Machine, demo: list[Path], tmp_path: Path) -> None:
    bare.install(*[earlier(package, tmp_path) for package in demo])
    pages = Pages(bare)
    pages.wait()
    assert EARLIER in bare.run("dpkg-query", "--show", "gc-web-demo")
    set_password(bare)
    assert run_was_accepted(bare)
    bare.shell('sed -i "s/^var.https_port .*/var.https_port = 9443/" "$1"', SETTINGS)
    kept = f"{SETTINGS} /etc/gc-web/passwords /etc/gc-web/certificate.pem {COMMANDS}".split()
    before = bare.run("sha256sum", *kept)

    bare.install(*demo, options=UNATTENDED)
    assert bare.run("sha256sum", *kept) == before
    moved = Pages(bare, https=9443)
    moved.wait(Pages.asks_for_password)
    assert moved.command("alarm-reset", {}).status == 200
    lines = bare.run("cat", COMMANDS).splitlines()
    assert len(lines) == 4 and '"-R"' in lines[0] and '"-P"' in lines[3]


def test_remove_and_reinstall(installed: Machine, demo: list[Path]) -> None:
    set_password(installed)
    assert run_was_accepted(installed)
    installed.run("apt-get", "--yes", "remove", *NAMES)
    assert not Pages(installed).answers()
    assert installed.shell("find /proc -maxdepth 1 -user gc-web; grep -x gc-sim /proc/*/comm || true") == ""
    installed.run("test", "-e", "/etc/gc-web/passwords")
    assert len(installed.run("cat", COMMANDS).splitlines()) == 2

    installed.install(*demo)
    Pages(installed).wait(Pages.asks_for_password)
    assert run_was_accepted(installed)
    assert len(installed.run("cat", COMMANDS).splitlines()) == 4


def test_purge_leaves_nothing(bare: Machine, demo: list[Path]) -> None:
    # What the packages depend on, but not they: an empty one needs the same.
    bare.run("apt-get", "--yes", "install", "lighttpd-mod-deflate", "lighttpd-mod-openssl")
    bare.run("apt-get", "--yes", "install", "lighttpd-modules-lua", "libace-7.0.8", "logrotate")
    before = bare.shell(OTHERS).splitlines()
    bare.install(*demo)
    set_password(bare)
    assert run_was_accepted(bare)
    bare.run("apt-get", "--yes", "purge", *NAMES)
    assert [path for path in bare.shell(OTHERS).splitlines() if path not in before] == []
    assert bare.shell("ls -d /run/gc-* /var/cache/gc-* 2>/dev/null || true") == ""
    assert bare.shell("systemctl list-units --all --plain --no-legend 'gc-*'") == ""


@pytest.mark.parametrize("name", ["gc-web-demo", "gc-web-server"])
def test_installed_twice(installed: Machine, demo: list[Path], name: str) -> None:
    set_password(installed)
    package = [path for path in demo if path.name.startswith(f"{name}_")]
    installed.install(*package, options=["--reinstall"])
    Pages(installed).wait(Pages.asks_for_password)
    assert run_was_accepted(installed)


def test_the_other_web_server_is_left_alone(installed: Machine) -> None:
    """Debian's own has its settings, its port and its files."""
    assert is_active(installed, "lighttpd.service")
    assert installed.shell("dpkg --verify lighttpd; ls /etc/lighttpd | grep gc-web || true") == ""
