"""The web server's scripts: the gate, passwords, certificates."""

import re
import socket
import ssl
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import pytest
from server import CONFIGURATION, REALM, WebServer, digest

HERE = Path(__file__).parent
SET_PASSWORD = CONFIGURATION / "gc-web-password"
SET_CERTIFICATE = CONFIGURATION / "gc-web-certificate"


def test_gate() -> None:
    """With a simulated clock and requests that no browser sends."""
    command = ["lua5.4", HERE / "gate-test.lua", CONFIGURATION / "gate.lua"]
    done = subprocess.run(command, capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, "")
    assert re.fullmatch(r"\d+ passed\n", done.stdout)


def set_password(
    file: Path, user: str, password: str | bytes
) -> subprocess.CompletedProcess[bytes]:
    octets = password if isinstance(password, bytes) else password.encode()
    command = [SET_PASSWORD, "--file", file, user]
    return subprocess.run(command, input=octets + b"\n", capture_output=True)


def line_of(user: str, password: str) -> str:
    return f"{user}:{REALM}:{digest(user, REALM, password)}"


def complaint(done: subprocess.CompletedProcess[bytes]) -> str:
    assert (done.returncode, done.stdout) != (0, b"")
    return done.stderr.decode()


@pytest.mark.parametrize("script", [SET_PASSWORD, SET_CERTIFICATE])
def test_usage(script: Path) -> None:
    for option in ("-h", "--help"):
        done = subprocess.run([script, option], capture_output=True, text=True)
        assert (done.returncode, done.stderr) == (0, "")
        assert done.stdout.startswith(f"usage: {script.name} [--file FILE] ")
    # None of these reaches for the controller's own file.
    for wrong in (["--file"], ["--file", ""]):
        refused = subprocess.run([script, *wrong], capture_output=True, text=True)
        assert (refused.returncode, refused.stdout, refused.stderr) == (2, "", done.stdout)


USERS = ["anna.k", "anna-k", "annaxk", "a", "A", "ab", "..", ".", "-n", "1", "01", "1e0", "0x1"]


@pytest.mark.parametrize("user", USERS)
def test_users_are_compared_as_texts(folder: Path, user: str) -> None:
    file = folder / "passwords"
    others = [line_of(name, "x") for name in USERS if name != user]
    file.write_text("\n".join([line_of(user, "old"), *others]) + "\n", encoding="utf-8")
    assert set_password(file, user, "new").returncode == 0
    assert file.read_text(encoding="utf-8").splitlines() == [*others, line_of(user, "new")]


@pytest.mark.parametrize("user", ["", "a:b", "a b", "ä", "a\n", "*", "a/b"])
def test_bad_user(folder: Path, user: str) -> None:
    done = set_password(folder / "passwords", user, "x")
    assert done.returncode == 2
    assert complaint(done).startswith("A user name may contain only ")
    assert list(folder.iterdir()) == []


@pytest.mark.parametrize(
    "password", [" a", "a ", " ", "a b", "\\n", "-n", "%s", "ä€𝄞", "a:b", "'\""]
)
def test_password_is_taken_as_it_is(folder: Path, password: str) -> None:
    file = folder / "passwords"
    done = set_password(file, "anna", password)
    assert (done.returncode, done.stderr) == (0, b"")
    assert file.read_text(encoding="utf-8") == line_of("anna", password) + "\n"
    assert (b"begins or ends with a space" in done.stdout) is (password != password.strip())


@pytest.mark.parametrize(
    ("password", "words"),
    [
        ("", "The password is empty."),
        ("a\r", "The password contains a control character"),
        ("\t", "The password contains a control character"),
        (b"\xe4", "The password is not UTF-8"),
    ],
)
def test_bad_password(folder: Path, password: str | bytes, words: str) -> None:
    file = folder / "passwords"
    file.write_text(line_of("anna", "old") + "\n", encoding="utf-8")
    done = set_password(file, "anna", password)
    assert done.returncode == 1
    assert complaint(done).startswith(words)
    assert complaint(done).endswith(" Nothing was changed.\n")
    assert file.read_text(encoding="utf-8") == line_of("anna", "old") + "\n"
    assert [path.name for path in folder.iterdir()] == ["passwords"]


def test_passwords_at_a_time(folder: Path) -> None:
    """None is lost."""
    file = folder / "passwords"
    users = [f"user{number}" for number in range(24)]
    with ThreadPoolExecutor(len(users)) as pool:
        ended = list(pool.map(lambda user: set_password(file, user, user).returncode, users))
    assert ended == [0] * len(users)
    lines = file.read_text(encoding="utf-8").splitlines()
    assert sorted(lines) == sorted(line_of(user, user) for user in users)
    assert [path.name for path in folder.iterdir()] == ["passwords"]


def test_mode_and_link_of_passwords_stay(folder: Path) -> None:
    (folder / "there").mkdir()
    file, link = folder / "there" / "passwords", folder / "passwords"
    link.symlink_to(file)
    assert set_password(link, "anna", "x").returncode == 0
    assert (link.is_symlink(), file.stat().st_mode & 0o777) == (True, 0o600)
    file.chmod(0o640)
    assert set_password(link, "berta", "x").returncode == 0
    assert (link.is_symlink(), file.stat().st_mode & 0o777) == (True, 0o640)
    assert len(file.read_text(encoding="utf-8").splitlines()) == 2


@pytest.mark.parametrize(
    ("file", "words"),
    [
        ("none/at/all", "does not exist."),
        (".", "is not a file."),
        ("/proc/passwords", "is not writable."),
    ],
)
def test_place_where_no_file_can_be(folder: Path, file: str, words: str) -> None:
    for done in (
        set_password(folder / file, "anna", "x"),
        subprocess.run([SET_CERTIFICATE, "--file", folder / file, "gc"], capture_output=True),
    ):
        assert done.returncode == 1
        assert words in complaint(done)
        assert complaint(done).endswith(" Nothing was changed.\n")


def set_certificate(file: Path, *arguments: str | Path) -> subprocess.CompletedProcess[bytes]:
    return subprocess.run([SET_CERTIFICATE, "--file", file, *arguments], capture_output=True)


def test_certificate(folder: Path) -> None:
    """Valid for all its names, in a file that nobody else can read."""
    file = folder / "server.pem"
    names = ["gc.example", "192.0.2.7", "2001:db8::7", "1.2.3.example"]
    assert set_certificate(file, *names).returncode == 0
    assert file.stat().st_mode & 0o777 == 0o600
    ssl.create_default_context().load_cert_chain(file)
    command = ["openssl", "x509", "-in", file, "-noout", "-ext", "subjectAltName"]
    told = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    assert re.findall(r"(DNS|IP Address):([^,\s]+)", told) == [
        ("DNS", "gc.example"),
        ("IP Address", "192.0.2.7"),
        ("IP Address", "2001:DB8:0:0:0:0:0:7"),
        ("DNS", "1.2.3.example"),
    ]
    # An existing group keeps its access, and nobody else gets any.
    file.chmod(0o664)
    assert set_certificate(file, "gc.example").returncode == 0
    assert file.stat().st_mode & 0o777 == 0o660
    before = file.read_bytes()
    for bad in ("a b", "", "DNS:a,DNS:b", "/CN=x", "*", "--from"):
        assert complaint(set_certificate(file, bad))
    assert file.read_bytes() == before
    assert [path.name for path in folder.iterdir()] == ["server.pem"]


def test_certificate_for_the_names_of_the_machine(folder: Path) -> None:
    """Without any names; there is always the machine itself."""
    file = folder / "server.pem"
    assert set_certificate(file).returncode == 0
    command = ["openssl", "x509", "-in", file, "-noout", "-ext", "subjectAltName"]
    told = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    names = re.findall(r"(?:DNS|IP Address):([^,\s]+)", told)
    assert {socket.gethostname(), "localhost", "127.0.0.1"} <= set(names)
    assert len(names) == len(set(names))


def test_key_is_never_readable(folder: Path) -> None:
    """Not even while the file is being created, whatever the shell's umask."""
    file = folder / "server.pem"
    file.write_text("old")
    file.chmod(0o640)
    script = f'umask 0; exec strace -f -e trace=openat,open,creat -o "{folder}/trace" "$@"'
    command = ["sh", "-c", script, "sh", SET_CERTIFICATE, "--file", file, "gc.example"]
    subprocess.run(command, check=True, capture_output=True)
    trace = (folder / "trace").read_text(encoding="utf-8")
    modes = re.findall(r'"[^"]*server\.pem[^"]*", [A-Z_|]*O_CREAT[A-Z_|]*, (0\d+)\) = \d', trace)
    assert modes
    assert set(modes) <= {"0600", "0666"}
    assert "0600" in modes
    assert file.stat().st_mode & 0o777 == 0o640


def test_issued_certificate(folder: Path) -> None:
    own, other, file = (folder / f"{name}.pem" for name in ("own", "other", "server"))
    for path in (own, other):
        assert set_certificate(path, "gc.example").returncode == 0
    parts = re.findall(r"-----BEGIN .*?-----END [^\n]*\n", own.read_text(), re.DOTALL)
    (key,) = [part for part in parts if "PRIVATE KEY" in part]
    (certificate,) = [part for part in parts if "CERTIFICATE" in part]
    (folder / "key").write_text(key)
    (folder / "certificate").write_text(certificate)
    done = set_certificate(file, "--from", folder / "certificate", folder / "key")
    assert done.returncode == 0
    assert file.stat().st_mode & 0o777 == 0o600
    assert file.read_text() == key + certificate
    locked = ["openssl", "pkey", "-in", folder / "key", "-aes128", "-passout", "pass:x"]
    subprocess.run([*locked, "-out", folder / "locked"], check=True)
    for first, second, words in (
        ("key", "certificate", "is not a certificate"),
        ("certificate", "certificate", "is not an unencrypted private key"),
        ("certificate", "none", "is not an unencrypted private key"),
        ("certificate", "locked", "is not an unencrypted private key in PEM format."),
        ("certificate", "other.pem", "is not the key of"),
    ):
        done = set_certificate(file, "--from", folder / first, folder / second)
        assert done.returncode == 1
        assert words in complaint(done)
    assert file.read_text() == key + certificate


def test_web_server_that_does_not_start(folder: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    """No process is left behind, whatever exception interrupts the wait."""
    started: list[int] = []

    def interrupted(server: WebServer) -> bool:
        started.append(server.pid)
        raise KeyboardInterrupt

    monkeypatch.setattr(WebServer, "_answers", interrupted)
    with pytest.raises(KeyboardInterrupt):
        WebServer(folder / "web", folder, folder / "tool", "127.0.0.1", [])
    assert not Path(f"/proc/{started[0]}").exists()
