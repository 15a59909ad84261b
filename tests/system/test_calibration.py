"""The calibration table: names and counts in its report, and the download of level amounts."""

from typing import Any

import pytest
from batches import addresses, level, values
from conftest import Download, StartSimulator
from programs import Simulator, Tool, expect, expect_verdict, printed, signed


def amounts(tool: Tool, controller: Simulator) -> list[float]:
    rows = tool("-s", controller.address, "-c").document["rows"]
    return [row["Level_amt"] for row in rows]


def row(channel: object, number: object, amount: object) -> dict[str, object]:
    return {"Channel": channel, "ID": number, "Level_amt": amount}


def file(*rows: object, **others: object) -> dict[str, object]:
    return {"total": len(rows), "rows": rows, **others}


def refusal(channel: int, number: int) -> str:
    return f"Refused: Unable to set new level for chan[{channel}] peak[{number}]"


@pytest.mark.parametrize(
    "fault, name",
    [
        ({"records": "all", "int": 0}, ""),
        ({"records": "all", "int": 0x141}, "A" * 20),
        ({"records": "all", "int": -191}, "A" * 20),
        ({"records": "all", "int": 233}, "\ufffd" * 20),
        ({"records": "all", "int": ord("\\")}, "\\" * 20),
        ({"records": "all", "int": 0x7FFFFF00}, ""),
    ],
)
def test_peak_name(
    tool: Tool, simulator: StartSimulator, fault: dict[str, Any], name: str
) -> None:
    """One character per parameter, of which only the low eight bits count."""
    controller = simulator()
    controller.fault(kind="value", call="Read", nth=2, **fault)
    rows = tool("-s", controller.address, "-c").document["rows"]
    assert [r["PkName"] for r in rows[:3]] == ["Nitrogen", name, "Carbon dioxide"]


def peak(channel: int, name: str, time: float = 0.5) -> dict[str, object]:
    return {"channel": channel, "name": name, "retentionTime": time, "levelAmount": 2.0,
            "linearCoefficient": 0.5}


def test_order_and_names(tool: Tool, simulator: StartSimulator) -> None:
    peaks = [peak(3, "x" * 20, 1.5), peak(1, "a"), peak(1, ""), peak(3, "%s%n")]
    controller = simulator("four-channel", parts={"peaks": peaks})
    run = tool("-s", controller.address, "-c")
    keys = ["Channel", "ID", "PkName", "Ret_time"]
    assert [[r[key] for key in keys] for r in run.document["rows"]] == [
        [1, 1, "a", 30.0],
        [1, 2, "", 30.0],
        [3, 1, "x" * 20, 90.0],
        [3, 2, "%s%n", 30.0],
    ]
    assert run.document["total"] == 4


@pytest.mark.parametrize("nth, times, left", [(1, 1, [2]), (2, 1, [1]), (3, 2, [1, 2]), (1, 0, [])])
def test_number_of_peaks_that_is_not_told(
    tool: Tool, simulator: StartSimulator, nth: int, times: int, left: list[int]
) -> None:
    """A channel without an answer has no peaks."""
    controller = simulator()
    controller.fault(kind="status", call="ProgramInfo", nth=nth, times=times, status=210)
    run = tool("-s", controller.address, "-c")
    document = run.document
    assert sorted({r["Channel"] for r in document["rows"]}) == left
    assert document["total"] == len(document["rows"])
    assert (run.stderr, run.status) == (b"", 0)


def test_download(tool: Tool, simulator: StartSimulator, download: Download) -> None:
    """The clearing, and one batch per peak."""
    controller = simulator()
    rows = [row(2, 7, 0.125), row(1, 1, 5), row(1, 4, 1e-6)]
    expect_verdict(download(controller, "-C", file(*rows)), 0, "Success")
    lines = controller.last_run()
    assert (lines[0]["mode"], lines[0]["client"]) == (0, "SimUI")
    assert [line["call"] for line in lines[1:-1]] == ["Command", "Write", "Write", "Write"]
    assert lines[1]["command"] == 26
    assert [values(line) for line in lines[2:-1]] == [
        {level(2, 7): (0, 0.125)},
        {level(1, 1): (0, 5.0)},
        {level(1, 4): (0, 1e-6)},
    ]
    assert amounts(tool, controller) == [5.0, 0.0, 0.0, 1e-6, *[0.0] * 6, 0.125]


def test_everything_else_stays(
    tool: Tool, simulator: StartSimulator, download: Download
) -> None:
    controller = simulator()
    before = tool("-s", controller.address, "-c").document
    rows = [{**row(1, 2, 3.5), "PkName": "Other", "Ret_time": 1.0, "Linear": 2.0}]
    expect_verdict(download(controller, "-C", file(*rows)), 0, "Success")
    for n, told in enumerate(before["rows"]):
        told["Level_amt"] = 3.5 if n == 1 else 0.0
    assert tool("-s", controller.address, "-c").document == before


@pytest.mark.parametrize(
    "total, rows, written",
    [
        (1, [row(1, 1, 1), row(1, 2, 2)], [(1, 1)]),
        (5, [row(1, 1, 1), row(1, 2, 2)], [(1, 1), (1, 2)]),
        (0, [row(1, 1, 1)], []),
        (-1, [row(1, 1, 1)], []),
        (2, [row(1, 1, 1), row(1, 1, 2)], [(1, 1), (1, 1)]),
        (2, [], []),
    ],
)
def test_number_of_rows(
    simulator: StartSimulator,
    download: Download,
    total: int,
    rows: list[object],
    written: list[tuple[int, int]],
) -> None:
    controller = simulator()
    expect_verdict(download(controller, "-C", file(*rows, total=total)), 0, "Success")
    writes = [line for line in controller.last_run() if line["call"] == "Write"]
    assert [addresses(line) for line in writes] == [[level(*peak)] for peak in written]


def test_as_many_rows_as_there_can_be(
    tool: Tool, simulator: StartSimulator, download: Download
) -> None:
    controller = simulator("four-channel")
    peaks = [(channel, number) for channel in range(1, 5) for number in range(1, 101)]
    rows = [row(*peak, n) for n, peak in enumerate(peaks, 1)]
    more = [row(1, 1, 5000 + n) for n in range(100)]
    expect_verdict(download(controller, "-C", file(*rows, *more)), 0, "Success")
    assert controller.called() == ["Command", *["Write"] * 400]
    assert amounts(tool, controller) == [float(n) for n in range(1, 401)]


@pytest.mark.parametrize(
    "contents",
    [
        {"total": 3},
        {"total": 3, "rows": None},
        {"total": 3, "rows": {}},
        {"total": 3, "rows": 5},
        {"total": "3", "rows": [row(1, 1, 1)]},
        {"total": 3.5, "rows": [row(1, 1, 1)]},
        {"total": None, "rows": [row(1, 1, 1)]},
        {"total": 4294967296, "rows": [row(1, 1, 1)]},
    ],
)
def test_no_rows(
    tool: Tool, simulator: StartSimulator, download: Download, contents: dict[str, Any]
) -> None:
    controller = simulator()
    is_sloppy = contents != {"total": 3}
    expect_verdict(download(controller, "-C", contents, is_sloppy), 0, "Success")
    assert controller.called() == ["Command"]
    assert amounts(tool, controller) == [0.0] * 11


@pytest.mark.parametrize(
    "bad",
    [
        5,
        None,
        "text",
        [],
        {},
        row(1.0, 2, 3),
        row(1, 2.0, 3),
        row("1", 2, 3),
        row(1, "2", 3),
        row(1, 2, "3"),
        row(1, 2, None),
        row(1, 2, True),
        row(2147483648, 2, 3),
        row(1, -2147483649, 3),
        {"Channel": 1, "ID": 2},
        {"Channel": 1, "Level_amt": 3},
        {"ID": 2, "Level_amt": 3},
        {"channel": 1, "ID": 2, "Level_amt": 3},
        {"Channel": [1], "ID": 2, "Level_amt": 3},
    ],
)
def test_row_that_is_passed_over(
    simulator: StartSimulator, download: Download, bad: object
) -> None:
    """It counts silently: of three rows two are read, and one is written."""
    controller = simulator()
    contents = file(row(1, 1, 1), bad, row(1, 3, 3), total=2)
    expect_verdict(download(controller, "-C", contents, sloppy=True), 0, "Success")
    writes = [line for line in controller.last_run() if line["call"] == "Write"]
    assert [values(line) for line in writes] == [{level(1, 1): (0, 1.0)}]


def test_amount_that_a_report_could_not_tell(
    tool: Tool, simulator: StartSimulator, download: Download
) -> None:
    controller = simulator()
    expect_verdict(download(controller, "-C", file(row(1, 1, "-"), row(1, 2, 4))), 0, "Success")
    assert amounts(tool, controller) == [0.0, 4.0, *[0.0] * 9]


@pytest.mark.parametrize("status", [1, 28, 207, 4294967295])
@pytest.mark.parametrize("nth, peak", [(1, (1, 1)), (2, (2, 7)), (3, (1, 3))])
def test_refused_row(
    tool: Tool,
    simulator: StartSimulator,
    download: Download,
    nth: int,
    peak: tuple[int, int],
    status: int,
) -> None:
    """The rows before it are written, those after it are not."""
    controller = simulator()
    controller.fault(kind="status", call="Write", nth=nth, status=status)
    contents = file(row(1, 1, 1), row(2, 7, 2), row(1, 3, 3), row(1, 4, 4))
    run = download(controller, "-C", contents)
    expect_verdict(run, status, refusal(*peak), f"Execute failed {signed(status)}.\n")
    assert controller.called() == ["Command", *["Write"] * nth]
    expected = [0.0] * 11
    for place, amount in [(0, 1.0), (10, 2.0)][: nth - 1]:
        expected[place] = amount
    assert amounts(tool, controller) == expected


@pytest.mark.parametrize("status", [1, 207, 4294967295])
def test_clearing_that_is_refused(
    tool: Tool, simulator: StartSimulator, download: Download, status: int
) -> None:
    """The download continues; peaks that are not in the file keep their values."""
    controller = simulator()
    controller.fault(kind="status", call="Command", status=status)
    expect_verdict(download(controller, "-C", file(row(1, 1, 1.5))), 0, "Success")
    assert controller.called() == ["Command", "Write"]
    assert amounts(tool, controller)[:3] == [1.5, 84.95, 1.5]


@pytest.mark.parametrize(
    "channel, number, amount, status",
    [
        (1, 5, 1, 204),
        (1, 0, 1, 204),
        (0, 1, 1, 204),
        (5, 1, 1, 204),
        (-1, 1, 1, 204),
        (2147483647, -2147483648, 1, 204),
        (1, 1, -0.5, 206),
        (1, 1, 1e308, 206),
    ],
)
def test_row_that_the_instrument_refuses(
    simulator: StartSimulator,
    download: Download,
    channel: int,
    number: int,
    amount: float,
    status: int,
) -> None:
    controller = simulator()
    run = download(controller, "-C", file(row(channel, number, amount)))
    expect_verdict(run, status, refusal(channel, number), f"Execute failed {status}.\n")


def test_state_that_forbids(
    tool: Tool, simulator: StartSimulator, download: Download
) -> None:
    controller = simulator(parts={"parameters": {"mGC_State": 2}})
    before = tool("-s", controller.address, "-c").stdout
    run = download(controller, "-C", file(row(1, 1, 1)))
    expect_verdict(run, 207, refusal(1, 1), "Execute failed 207.\n")
    assert tool("-s", controller.address, "-c").stdout == before


def test_nothing_calibrated(tool: Tool, simulator: StartSimulator, download: Download) -> None:
    controller = simulator("bare")
    expect(tool("-s", controller.address, "-c"), printed({"total": 0, "rows": []}))
    expect_verdict(download(controller, "-C", {"total": 0, "rows": []}), 0, "Success")
