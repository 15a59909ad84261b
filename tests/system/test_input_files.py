"""Invalid download files: they get a verdict, and the instrument is left alone."""

import json
import socket
from collections.abc import Callable
from pathlib import Path

import pytest
from conftest import Download, StartSimulator
from programs import Run, Simulator, Tool, expect_verdict

OPTIONS = ["-Q", "-C"]
GOOD = {"Table_repeat": 7, "total": 0}
TEXT = json.dumps(GOOD).encode()
VERDICTS = {"-Q": (0, "Format Invalid"), "-C": (2, "Format invalid")}
SUCCESS = {"-Q": "Success!", "-C": "Success"}
DEEP = 1_000_000
LONG = 50_000_000


def expect_refused(run: Run, controller: Simulator, option: str) -> None:
    """Not even the clearing was sent."""
    expect_verdict(run, *VERDICTS[option], "Execute failed -1.\n")
    assert controller.called() == []


@pytest.mark.parametrize("option", OPTIONS)
@pytest.mark.parametrize(
    "octets",
    [
        b"",
        b" \n\t",
        b"\0",
        TEXT[:-1],
        TEXT[:-4],
        TEXT[: len(TEXT) // 2],
        TEXT + b"}",
        TEXT + TEXT,
        TEXT + b" // comment",
        TEXT + b"\0",
        TEXT + b"\0garbage",
        b"// comment\n" + TEXT,
        b"\xef\xbb\xbf" + TEXT,
        TEXT.decode().encode("utf-16"),
        TEXT.decode().encode("utf-32-be"),
        TEXT.replace(b'"', b"'"),
        TEXT.replace(b"}", b",}"),
        TEXT.replace(b"7", b"07"),
        TEXT.replace(b"7", b"+7"),
        TEXT.replace(b"7", b"7."),
        TEXT.replace(b"7", b"0x7"),
        TEXT.replace(b"7", b"NaN"),
        TEXT.replace(b"7", b"Infinity"),
        TEXT.replace(b"7", b"1e400"),
        TEXT.replace(b"7", b"True"),
        TEXT.replace(b'"total"', b"total"),
        TEXT.replace(b"7", b'"\\x"'),
        TEXT.replace(b"7", b'"\\ud800"'),
        TEXT.replace(b"7", b'"line\nbreak"'),
        b"[" + TEXT + b"]",
        b"[]",
        b"null",
        b"true",
        b"7",
        b'"text"',
        b"{}",
        TEXT.replace(b"total", b"Total").replace(b"Table", b"table"),
        b'{"rows": [' + TEXT + b"]}",
        b"[" * DEEP,
        b"[" * DEEP + b"]" * DEEP,
        b'{"total":' * DEEP,
        b'{"Table_repeat": 1, "total": 1, "rows": ' + b"[" * DEEP,
        b"x" * LONG,
        b'{"Table_repeat": 1, "total": 1, "rows": "' + b"x" * LONG,
    ],
    ids=lambda octets: repr(octets[:40]) + f"-{len(octets)}",
)
def test_contents(
    simulator: StartSimulator, download: Download, option: str, octets: bytes
) -> None:
    controller = simulator("bare")
    expect_refused(download(controller, option, octets), controller, option)


@pytest.mark.parametrize(
    "option, contents",
    [
        ("-Q", {"total": 1, "rows": []}),
        ("-Q", {"Table_repeat": 1, "rows": []}),
        ("-Q", {"table_repeat": 1, "total": 1}),
        ("-C", {"Total": 1, "rows": []}),
        ("-C", {"rows": [{"Channel": 1, "ID": 1, "Level_amt": 1}]}),
    ],
)
def test_missing_member(
    simulator: StartSimulator, download: Download, option: str, contents: object
) -> None:
    controller = simulator("bare")
    expect_refused(download(controller, option, contents), controller, option)


def missing(folder: Path) -> Path:
    return folder / "missing"


def directory(folder: Path) -> Path:
    return folder


def nothing(_: Path) -> Path:
    return Path("/dev/null")


def below_a_file(folder: Path) -> Path:
    (folder / "file").write_bytes(TEXT)
    return folder / "file" / "file"


def loop(folder: Path) -> Path:
    (folder / "loop").symlink_to("loop")
    return folder / "loop"


def bound_socket(folder: Path) -> Path:
    with socket.socket(socket.AF_UNIX) as endpoint:
        endpoint.bind(str(folder / "socket"))
    return folder / "socket"


def opens_but_cannot_be_read(_: Path) -> Path:
    return Path("/proc/self/mem")


@pytest.mark.parametrize("option", OPTIONS)
@pytest.mark.parametrize(
    "place",
    [missing, directory, nothing, below_a_file, loop, bound_socket, opens_but_cannot_be_read],
)
def test_no_file(
    tool: Tool,
    simulator: StartSimulator,
    folder: Path,
    option: str,
    place: Callable[[Path], Path],
) -> None:
    controller = simulator("bare")
    run = tool("-s", controller.address, option, str(place(folder)))
    expect_refused(run, controller, option)


def long_name(folder: Path, length: int) -> str:
    """The name of a file that does not exist, in a folder that does."""
    rest = length - len(str(folder)) - 1
    deep = folder / ("d" * (rest - 11))
    deep.mkdir()
    name = f"{deep}/{'f' * 10}"
    assert len(name) == length
    return name


@pytest.mark.parametrize("option", OPTIONS)
def test_name_of_256_characters(
    tool: Tool, simulator: StartSimulator, folder: Path, option: str
) -> None:
    controller = simulator("bare")
    name = long_name(folder, 256)
    Path(name).write_bytes(TEXT)
    expect_verdict(tool("-s", controller.address, option, name), 0, SUCCESS[option])


@pytest.mark.parametrize("option", OPTIONS)
def test_name_of_257_characters(
    tool: Tool, simulator: StartSimulator, folder: Path, option: str
) -> None:
    """It is truncated, and no longer names a file."""
    controller = simulator("bare")
    name = long_name(folder, 257)
    Path(name).write_bytes(TEXT)
    expect_refused(tool("-s", controller.address, option, name), controller, option)


@pytest.mark.parametrize("option", OPTIONS)
def test_last_file_counts(
    tool: Tool, simulator: StartSimulator, folder: Path, option: str
) -> None:
    controller = simulator("bare")
    (folder / "file").write_bytes(TEXT)
    names = [option, str(folder / "missing"), option, str(folder / "file")]
    expect_verdict(tool("-s", controller.address, *names), 0, SUCCESS[option])


@pytest.mark.parametrize("option", OPTIONS)
@pytest.mark.parametrize(
    "octets",
    [
        TEXT,
        b"\r\n\t " + TEXT + b"\n\n",
        TEXT.replace(b"}", b', "Comment": "\\u00e9 \\ud83d\\ude00", "n": [1e-400, -0.0, null]}'),
        TEXT.replace(b"}", ', "Köln": "日本"}'.encode()),
        b"{ " + b" " * LONG + TEXT[1:],
        TEXT.replace(b"}", b', "x": "' + b"x" * LONG + b'"}'),
        TEXT.replace(b"}", b', "' + b"k" * 70000 + b'": 1}'),
    ],
    ids=lambda octets: repr(octets[:20]) + f"-{len(octets)}",
)
def test_good_contents(
    simulator: StartSimulator, download: Download, option: str, octets: bytes
) -> None:
    controller = simulator("bare")
    expect_verdict(download(controller, option, octets), 0, SUCCESS[option])


@pytest.mark.parametrize("number", ["0." + "0" * 400 + "1", "0." + "0" * 5000 + "1", "1e-330"])
def test_number_below_all_others_is_zero(
    tool: Tool, simulator: StartSimulator, folder: Path, number: str
) -> None:
    controller = simulator()
    row = f'{{"Channel": 1, "ID": 1, "Level_amt": {number}}}'
    (folder / "file").write_text(f'{{"total": 1, "rows": [{row}]}}', encoding="utf-8")
    run = tool("-s", controller.address, "-C", str(folder / "file"))
    expect_verdict(run, 0, "Success")
    assert tool("-s", controller.address, "-c").document["rows"][0]["Level_amt"] == 0.0


@pytest.mark.parametrize("number", ["1.8e308", "-9.9e308", "1.7e308"])
def test_number_beyond_the_instrument_is_refused_by_it(
    tool: Tool, simulator: StartSimulator, folder: Path, number: str
) -> None:
    controller = simulator()
    row = f'{{"Channel": 1, "ID": 2, "Level_amt": {number}}}'
    (folder / "file").write_text(f'{{"total": 1, "rows": [{row}]}}', encoding="utf-8")
    run = tool("-s", controller.address, "-C", str(folder / "file"))
    message = "Refused: Unable to set new level for chan[1] peak[2]"
    expect_verdict(run, 206, message, "Execute failed 206.\n")


@pytest.mark.parametrize("option", OPTIONS)
def test_deep_values_that_do_not_matter(
    tool: Tool, simulator: StartSimulator, folder: Path, option: str
) -> None:
    controller = simulator("bare")
    deep = b"[" * DEEP + b"]" * DEEP
    (folder / "file").write_bytes(TEXT.replace(b"}", b', "Other": ' + deep + b"}"))
    run = tool("-s", controller.address, option, str(folder / "file"))
    expect_verdict(run, 0, SUCCESS[option])


def test_key_given_twice(tool: Tool, simulator: StartSimulator, folder: Path) -> None:
    """The first one counts."""
    controller = simulator()
    text = '{"Table_repeat": 3, "Table_repeat": 4, "total": 1, "total": "x", "rows": '
    text += '[{"Repeat": 5, "Repeat": 6}], "rows": null}'
    (folder / "file").write_text(text, encoding="utf-8")
    run = tool("-s", controller.address, "-Q", str(folder / "file"))
    expect_verdict(run, 0, "Success!")
    document = tool("-s", controller.address, "-q").document
    assert document["Table_repeat"] == 3
    assert [row["Repeat"] for row in document["rows"]] == [5]


def test_level_given_twice(tool: Tool, simulator: StartSimulator, folder: Path) -> None:
    controller = simulator()
    row = '{"Channel": 1, "Channel": 2, "ID": 2, "Level_amt": 7, "Level_amt": "-"}'
    (folder / "file").write_text(f'{{"total": 1, "rows": [{row}]}}', encoding="utf-8")
    run = tool("-s", controller.address, "-C", str(folder / "file"))
    expect_verdict(run, 0, "Success")
    rows = tool("-s", controller.address, "-c").document["rows"]
    assert [row["Level_amt"] for row in rows[:3]] == [0.0, 7.0, 0.0]
