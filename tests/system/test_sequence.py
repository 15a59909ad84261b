"""The sequence table: how many lines are reported, and what a download sends and leaves."""

from typing import Any

import pytest
from batches import (
    SEQUENCE_BUCKETS,
    SEQUENCE_HEADER_TO_WRITE,
    Address,
    addresses,
    batch,
    sequence_line_to_write,
    values,
)
from conftest import Download, StartSimulator
from programs import Tool, expect, expect_verdict, printed, signed

NO_REPEAT = "Refused: unable to set table repeat"
NO_CLEAR = "Refused: unabled to clear orignal table"
NO_INSERT = "Refused: unable to insert new sequence"
NO_LINE = "Refused: unable to set sequence line params"

EMPTY_LINE = {"Type": "Analysis", "Repeat": 0, "Stream": 0, "Slot": 0, "Flush_time": 0.0}
NEW_LINES = [
    {"Type": "Blank", "Repeat": 1, "Stream": 2, "Slot": 3, "Flush_time": 0.25},
    {"Type": "Verification", "Repeat": 999, "Stream": 46, "Slot": 10, "Flush_time": 60.0},
    {"Type": "Calibration", "Repeat": 0, "Stream": 0, "Slot": 0, "Flush_time": 0.0},
]


def file(lines: list[Any], **others: Any) -> dict[str, Any]:
    return {"Table_repeat": 7, "total": len(lines), "rows": lines, **others}


@pytest.mark.parametrize(
    "settings, total, rows",
    [
        ({"mStreamConfigured": 0, "mTotalLines": 7}, 1, 1),
        ({"mStreamConfigured": 0, "mTotalLines": 0}, 1, 1),
        ({"mStreamConfigured": -1, "mTotalLines": 7}, 1, 1),
        ({"mStreamConfigured": 2, "mTotalLines": 2}, 2, 2),
        ({"mTotalLines": 0}, 0, None),
        ({"mTotalLines": -5}, -5, None),
        ({"mTotalLines": 20}, 20, 20),
        ({"mTotalLines": 21}, 21, 20),
        ({"mTotalLines": 25}, 25, 20),
    ],
)
def test_total(
    tool: Tool, simulator: StartSimulator, settings: dict[str, int], total: int, rows: int | None
) -> None:
    controller = simulator()
    for name, value in settings.items():
        controller.control("set", name, str(value))
    run = tool("-s", controller.address, "-q")
    if rows is None:
        expect(run, printed({"Table_repeat": 2, "Continuous": False, "total": total}))
    else:
        document = run.document
        assert list(document) == ["Table_repeat", "Continuous", "total", "rows"]
        assert (document["total"], len(document["rows"])) == (total, rows)
    assert controller.called() == ["Read"] * (1 + (rows or 0))


@pytest.mark.parametrize(
    "setting, value, key, told",
    [
        ("mRunType[2]", 0, "Type", "Analysis"),
        ("mRunType[2]", 1, "Type", "Calibration"),
        ("mRunType[2]", 2, "Type", "Blank"),
        ("mRunType[2]", 3, "Type", "Verification"),
        ("mRunType[2]", 4, "Type", "None"),
        ("mRunType[2]", -1, "Type", "None"),
        ("mRepeat[2]", -5, "Repeat", -5),
        ("mStream[2]", 2147483647, "Stream", 2147483647),
        ("mSolution[2]", -2147483648, "Slot", -2147483648),
        ("mFlushTime[2]", 0.1, "Flush_time", 0.1),
        ("mFlushTime[2]", 1e300, "Flush_time", 1e300),
    ],
)
def test_line(
    tool: Tool, simulator: StartSimulator, setting: str, value: float, key: str, told: object
) -> None:
    controller = simulator()
    before = tool("-s", controller.address, "-q").document
    controller.control("set", setting, str(value))
    before["rows"][1][key] = told
    assert tool("-s", controller.address, "-q").document == before


@pytest.mark.parametrize("flag, told", [(0, False), (1, True), (2, True), (-1, True)])
def test_continuous(tool: Tool, simulator: StartSimulator, flag: int, told: bool) -> None:
    controller = simulator()
    controller.control("set", "mContinuous", str(flag))
    assert tool("-s", controller.address, "-q").document["Continuous"] is told


def test_download(tool: Tool, simulator: StartSimulator, download: Download) -> None:
    """Header, clearing, and first line; for each further line an insertion before its values."""
    controller = simulator()
    run = download(controller, "-Q", file(NEW_LINES, Continuous=True))
    expect_verdict(run, 0, "Success!")
    lines = controller.last_run()
    assert (lines[0]["mode"], lines[0]["client"]) == (0, "SimUI")
    assert [(line["call"], line.get("command")) for line in lines[1:-1]] == [
        ("Write", None),
        ("Command", 22),
        ("Write", None),
        ("Command", 19),
        ("Write", None),
        ("Command", 19),
        ("Write", None),
    ]
    writes = [line for line in lines if line["call"] == "Write"]
    assert values(writes[0]) == {Address(0, 0, 0, 15): (7, 0.0), Address(0, 0, 0, 12): (1, 0.0)}
    assert addresses(writes[0]) == batch(SEQUENCE_HEADER_TO_WRITE, SEQUENCE_BUCKETS)
    types = [2, 3, 1]
    for n, (write, line) in enumerate(zip(writes[1:], NEW_LINES, strict=True), 1):
        assert addresses(write) == batch(sequence_line_to_write(n), SEQUENCE_BUCKETS)
        assert values(write) == {
            Address(0, 0, n, 23): (types[n - 1], 0.0),
            Address(0, 0, n, 24): (line["Repeat"], 0.0),
            Address(0, 0, n, 25): (1, 0.0),
            Address(0, 0, n, 22): (line["Stream"], 0.0),
            Address(1, 0, n, 1010): (line["Slot"], 0.0),
            Address(0, 0, n, 26): (0, line["Flush_time"]),
        }
    expected = {"Table_repeat": 7, "Continuous": True, "total": 3, "rows": NEW_LINES}
    expect(tool("-s", controller.address, "-q"), printed(expected))


@pytest.mark.parametrize(
    "total, rows, written",
    [(3, 5, 3), (5, 3, 3), (1, 1, 1), (20, 20, 20), (21, 21, 20), (30, 30, 20), (0, 3, 0),
     (-1, 3, 0), (2147483647, 2, 2), (5, 0, 0)],
)
def test_number_of_lines(
    tool: Tool,
    simulator: StartSimulator,
    download: Download,
    total: int,
    rows: int,
    written: int,
) -> None:
    controller = simulator()
    lines = [{**EMPTY_LINE, "Stream": n} for n in range(1, rows + 1)]
    expect_verdict(download(controller, "-Q", file(lines, total=total)), 0, "Success!")
    calls = ["Write", *["Command", "Write"] * max(written, 0)]
    assert controller.called() == (calls if written else ["Write", "Command"])
    # A table always has at least one line, if only an empty one.
    told = lines[:written] or [EMPTY_LINE]
    expected = {"Table_repeat": 7, "Continuous": False, "total": len(told), "rows": told}
    expect(tool("-s", controller.address, "-q"), printed(expected))


@pytest.mark.parametrize(
    "contents",
    [
        {"Table_repeat": 7, "total": 3},
        {"Table_repeat": 7, "total": 3, "rows": None},
        {"Table_repeat": 7, "total": 3, "rows": {}},
        {"Table_repeat": 7, "total": 3, "rows": "rows"},
        {"Table_repeat": 7, "total": "3", "rows": NEW_LINES},
        {"Table_repeat": 7, "total": 3.5, "rows": NEW_LINES},
        {"Table_repeat": 7, "total": None, "rows": NEW_LINES},
        {"Table_repeat": 7, "total": 2147483648, "rows": NEW_LINES},
        {"Table_repeat": 7, "total": 3, "Rows": NEW_LINES},
    ],
)
def test_no_lines(
    tool: Tool, simulator: StartSimulator, download: Download, contents: dict[str, Any]
) -> None:
    """The header is written and the table cleared."""
    controller = simulator()
    is_sloppy = not isinstance(contents.get("rows", []), list) or contents["total"] != 3
    expect_verdict(download(controller, "-Q", contents, is_sloppy), 0, "Success!")
    expected = {"Table_repeat": 7, "Continuous": False, "total": 1, "rows": [EMPTY_LINE]}
    expect(tool("-s", controller.address, "-q"), printed(expected))


@pytest.mark.parametrize(
    "row, line",
    [
        ({}, {}),
        ({"Other": [1, 2], "ID": 3}, {}),
        ({"Type": "None"}, {}),
        ({"Flush_time": "-"}, {}),
        ({"Flush_time": 2}, {"Flush_time": 2.0}),
        ({"Type": "Verification", "Repeat": 1}, {"Type": "Verification", "Repeat": 1}),
    ],
)
def test_row(
    tool: Tool,
    simulator: StartSimulator,
    download: Download,
    row: dict[str, Any],
    line: dict[str, Any],
) -> None:
    """Members missing from a row default to 0 and Analysis."""
    controller = simulator()
    expect_verdict(download(controller, "-Q", file([row])), 0, "Success!")
    assert tool("-s", controller.address, "-q").document["rows"] == [{**EMPTY_LINE, **line}]


@pytest.mark.parametrize(
    "row, line",
    [
        (5, {}),
        (None, {}),
        ("text", {}),
        ([], {}),
        ([{"Repeat": 5}], {}),
        ({"Type": "calibration", "Repeat": 4}, {"Repeat": 4}),
        ({"Type": "Calibration ", "Repeat": 4}, {"Repeat": 4}),
        ({"Type": 1, "Repeat": 4}, {"Repeat": 4}),
        ({"Repeat": 1.5, "Stream": 4}, {"Stream": 4}),
        ({"Repeat": "5", "Stream": 4}, {"Stream": 4}),
        ({"Repeat": 2147483648, "Stream": -2147483649}, {}),
        ({"Slot": True, "Stream": None}, {}),
        ({"Flush_time": "2"}, {}),
    ],
)
def test_row_of_other_types(
    tool: Tool, simulator: StartSimulator, download: Download, row: object, line: dict[str, Any]
) -> None:
    """A member of another type counts as missing; a row that is not an object lacks all members."""
    controller = simulator()
    contents = file([NEW_LINES[0], row, NEW_LINES[2]])
    expect_verdict(download(controller, "-Q", contents, sloppy=True), 0, "Success!")
    rows = tool("-s", controller.address, "-q").document["rows"]
    assert rows == [NEW_LINES[0], {**EMPTY_LINE, **line}, NEW_LINES[2]]


@pytest.mark.parametrize(
    "header, sloppy, told",
    [
        ({"Table_repeat": 0}, False, (0, False)),
        ({"Table_repeat": 999, "Continuous": True}, False, (999, True)),
        ({"Table_repeat": 3, "Continuous": False, "Comment": "x"}, False, (3, False)),
        ({"Table_repeat": "5"}, True, (0, False)),
        ({"Table_repeat": 5.5}, True, (0, False)),
        ({"Table_repeat": None, "Continuous": True}, True, (0, True)),
        ({"Table_repeat": 3, "Continuous": 1}, True, (3, False)),
        ({"Table_repeat": 3, "Continuous": "true"}, True, (3, False)),
    ],
)
def test_header(
    tool: Tool,
    simulator: StartSimulator,
    download: Download,
    header: dict[str, Any],
    sloppy: bool,
    told: tuple[int, bool],
) -> None:
    controller = simulator()
    expect_verdict(download(controller, "-Q", {**header, "total": 0}, sloppy), 0, "Success!")
    document = tool("-s", controller.address, "-q").document
    assert (document["Table_repeat"], document["Continuous"]) == told


EVERYDAY = [
    {"Type": "Calibration", "Repeat": 2, "Stream": 4, "Slot": 1, "Flush_time": 1.5},
    {"Type": "Analysis", "Repeat": 5, "Stream": 1, "Slot": 0, "Flush_time": 1.0},
    {"Type": "Analysis", "Repeat": 3, "Stream": 2, "Slot": 0, "Flush_time": 0.5},
]
# Call and its index, verdict, and then the table's repeat and lines.
STEPS = [
    ("Write", 1, NO_REPEAT, 2, EVERYDAY),
    ("Command", 1, NO_CLEAR, 7, EVERYDAY),
    ("Write", 2, NO_LINE, 7, [EMPTY_LINE]),
    ("Command", 2, NO_INSERT, 7, NEW_LINES[:1]),
    ("Write", 3, NO_LINE, 7, [NEW_LINES[0], EMPTY_LINE]),
    ("Command", 3, NO_INSERT, 7, NEW_LINES[:2]),
    ("Write", 4, NO_LINE, 7, [*NEW_LINES[:2], EMPTY_LINE]),
]


@pytest.mark.parametrize("status", [1, 28, 4294967295])
@pytest.mark.parametrize("call, nth, words, repeat, lines", STEPS)
def test_refused_step(
    tool: Tool,
    simulator: StartSimulator,
    download: Download,
    call: str,
    nth: int,
    words: str,
    repeat: int,
    lines: list[dict[str, Any]],
    status: int,
) -> None:
    """Earlier steps are not undone, and nothing is done afterwards."""
    controller = simulator()
    controller.fault(kind="status", call=call, nth=nth, status=status)
    run = download(controller, "-Q", file(NEW_LINES))
    expect_verdict(run, status, words, f"Execute failed {signed(status)}.\n")
    assert controller.called()[-1] == call
    assert controller.called().count(call) == nth
    expected = {"Table_repeat": repeat, "Continuous": False, "total": len(lines), "rows": lines}
    expect(tool("-s", controller.address, "-q"), printed(expected))


@pytest.mark.parametrize("call, words", [("Write", NO_REPEAT), ("Command", NO_CLEAR)])
def test_lost_connection(
    simulator: StartSimulator, download: Download, call: str, words: str
) -> None:
    controller = simulator()
    controller.fault(kind="drop", call=call)
    run = download(controller, "-Q", file(NEW_LINES))
    expect_verdict(run, 108, words, "Execute failed 108.\n")


@pytest.mark.parametrize(
    "change, status, words, lines",
    [
        ({"Table_repeat": 1000}, 206, NO_REPEAT, EVERYDAY),
        ({"Table_repeat": -1}, 206, NO_REPEAT, EVERYDAY),
        ({"Repeat": 1000}, 206, NO_LINE, [NEW_LINES[0], EMPTY_LINE]),
        ({"Stream": 47}, 206, NO_LINE, [NEW_LINES[0], EMPTY_LINE]),
        ({"Slot": 11}, 206, NO_LINE, [NEW_LINES[0], EMPTY_LINE]),
        ({"Flush_time": -0.5}, 206, NO_LINE, [NEW_LINES[0], EMPTY_LINE]),
        ({"Flush_time": 1e308}, 206, NO_LINE, [NEW_LINES[0], EMPTY_LINE]),
    ],
)
def test_value_that_the_instrument_refuses(
    tool: Tool,
    simulator: StartSimulator,
    download: Download,
    change: dict[str, Any],
    status: int,
    words: str,
    lines: list[dict[str, Any]],
) -> None:
    controller = simulator()
    header = change if "Table_repeat" in change else {}
    row = {} if header else change
    contents = file([NEW_LINES[0], {**NEW_LINES[1], **row}, NEW_LINES[2]], **header)
    run = download(controller, "-Q", contents)
    expect_verdict(run, status, words, f"Execute failed {status}.\n")
    assert tool("-s", controller.address, "-q").document["rows"] == lines


@pytest.mark.parametrize("state", [1, 2, 10])
def test_state_that_forbids(
    tool: Tool, simulator: StartSimulator, download: Download, state: int
) -> None:
    timing = {"mGC_FlushingStream": 5.0, "mGC_CleaningTimeLeft": 5}
    controller = simulator(parts={"parameters": {"mGC_State": state, **timing}})
    before = tool("-s", controller.address, "-q").stdout
    run = download(controller, "-Q", file(NEW_LINES))
    expect_verdict(run, 207, NO_REPEAT, "Execute failed 207.\n")
    assert tool("-s", controller.address, "-q").stdout == before
