"""The file of notices is what the lock file and the installed Debian packages say."""

import subprocess

from places import ROOT


def test_copyright_is_up_to_date() -> None:
    done = subprocess.run([ROOT / "packaging" / "copyright.py"], capture_output=True, text=True)
    assert (done.stderr, done.returncode) == ("", 0)
    written = (ROOT / "debian" / "copyright").read_text(encoding="utf-8")
    assert done.stdout == written, "run packaging/copyright.py >debian/copyright"
