"""What all reports have in common: shipped scenarios, calls, failures."""

import re
from pathlib import Path
from typing import Any

import pytest
from batches import (
    ALARM_BUCKETS,
    ALARM_HEADER,
    CONFIGURATION,
    PEAK_BUCKETS,
    SEQUENCE_BUCKETS,
    SEQUENCE_HEADER,
    Address,
    addresses,
    alarm_row,
    batch,
    component_name,
    peak,
    sequence_line,
)
from conftest import StartSimulator
from programs import Run, Tool, expect, expect_failed, load_scenario, printed

DOCUMENTS = Path(__file__).parent / "documents"
SCENARIOS = ["everyday", "four-channel", "bare", "error", "warming-up"]
OPTIONS = {"configuration": "-g", "alarms": "-a", "sequence": "-q", "calibration": "-c"}


def calibration_of(scenario: str) -> dict[str, Any]:
    """The calibration document of a scenario, computed from its peaks."""
    rows = []
    for channel in range(1, 5):
        of_channel = [p for p in load_scenario(scenario)["peaks"] if p["channel"] == channel]
        for number, contents in enumerate(of_channel, 1):
            rows.append({
                "Channel": channel,
                "ID": number,
                "PkName": contents["name"],
                "Ret_time": contents["retentionTime"] * 60.0,
                "Level_amt": float(contents["levelAmount"]),
                "Linear": contents["linearCoefficient"],
            })
    return {"total": len(rows), "rows": rows}


@pytest.mark.parametrize(
    "report, scenario",
    [
        (report, scenario)
        for report in OPTIONS
        for scenario in SCENARIOS
        if (report, scenario) != ("calibration", "four-channel")
    ],
)
def test_shipped_scenario(
    tool: Tool, simulator: StartSimulator, report: str, scenario: str
) -> None:
    expected = (DOCUMENTS / report / f"{scenario}.json").read_text(encoding="utf-8")
    expect(tool("-s", simulator(scenario).address, OPTIONS[report]), expected)


def test_as_many_peaks_as_there_can_be(tool: Tool, simulator: StartSimulator) -> None:
    run = tool("-s", simulator("four-channel").address, "-c")
    expected = calibration_of("four-channel")
    assert len(expected["rows"]) == 400
    assert run.document == expected
    # Two texts of 17 digits may be the same number.
    layout = re.compile(r"[0-9]+\.[0-9]+")
    assert layout.sub("0.0", run.stdout.decode()) == layout.sub("0.0", printed(expected))
    assert (run.stderr, run.status) == (b"", 0)


def reads(lines: list[dict[str, Any]]) -> list[list[Address]]:
    return [addresses(line) for line in lines if line["call"] == "Read"]


def peaks_of(scenario: str) -> list[int]:
    """The number of peaks per channel."""
    channels = [p["channel"] for p in load_scenario(scenario).get("peaks", [])]
    return [channels.count(n) for n in range(1, 5)]


def expected_reads(report: str, scenario: str) -> list[list[Address]]:
    if report == "configuration":
        return [batch(CONFIGURATION, 128)]
    if report == "sequence":
        lines = load_scenario(scenario)["sequence"]
        rows = [batch(sequence_line(n), SEQUENCE_BUCKETS) for n in range(1, len(lines) + 1)]
        return [batch(SEQUENCE_HEADER, SEQUENCE_BUCKETS), *rows]
    if report == "calibration":
        return [
            batch(peak(channel, number), PEAK_BUCKETS)
            for channel, count in enumerate(peaks_of(scenario), 1)
            for number in range(1, count + 1)
        ]
    batches = [batch(ALARM_HEADER, ALARM_BUCKETS)]
    for n, alarm in enumerate(load_scenario(scenario).get("alarms", []), 1):
        batches.append(batch(alarm_row(n), ALARM_BUCKETS))
        if alarm["group"] in [1, 2]:
            batches.append(component_name(alarm["parameter"]))
    return batches


@pytest.mark.parametrize("scenario", SCENARIOS)
@pytest.mark.parametrize("report", OPTIONS)
def test_calls(tool: Tool, simulator: StartSimulator, report: str, scenario: str) -> None:
    """The minimum of calls, in order, all on one connection in report mode."""
    controller = simulator(scenario)
    tool("-s", controller.address, OPTIONS[report])
    lines = controller.journal()
    batches = expected_reads(report, scenario)
    others = {"configuration": ["Object"] * 6, "calibration": ["ProgramInfo"] * 4}.get(report, [])
    calls = ["Read"] * len(batches)
    calls = calls + others if report == "configuration" else others + calls
    assert [line["call"] for line in lines] == ["Connect", *calls, "Disconnect"]
    assert len({line["connection"] for line in lines}) == 1
    assert (lines[0]["mode"], lines[0]["client"]) == (1, "SimUI")
    assert [line["number"] for line in lines if line["call"] == "Object"] in [
        [],
        [5, 2, 6, 6, 6, 6],
    ]
    assert [line["channel"] for line in lines if line["call"] == "ProgramInfo"] in [
        [],
        [1, 2, 3, 4],
    ]
    assert reads(lines) == batches


# The batch of an everyday report that fails.
FAILING = [
    ("configuration", 1),
    *[("alarms", nth) for nth in [1, 2, 5, 7]],
    *[("sequence", nth) for nth in [1, 2, 4]],
    *[("calibration", nth) for nth in [1, 2, 11]],
]


@pytest.mark.parametrize(
    "status, told",
    [(1, "1"), (203, "203"), (2147483648, "-2147483648"), (4294967295, "-1")],
)
@pytest.mark.parametrize("report, nth", FAILING)
def test_refused_read(
    tool: Tool, simulator: StartSimulator, report: str, nth: int, status: int, told: str
) -> None:
    """Whichever batch fails: nothing read before is printed, and no other batch follows."""
    controller = simulator()
    controller.fault(kind="status", call="Read", nth=nth, status=status)
    run = tool("-s", controller.address, OPTIONS[report])
    expect(run, "", f"Execute failed {told}.\n")
    assert controller.called()[-1] == "Read"
    assert controller.called().count("Read") == nth


@pytest.mark.parametrize("report, nth", FAILING)
def test_lost_connection(tool: Tool, simulator: StartSimulator, report: str, nth: int) -> None:
    controller = simulator()
    controller.fault(kind="drop", call="Read", nth=nth)
    expect_failed(tool("-s", controller.address, OPTIONS[report]), 108)


def zeros(report: str) -> dict[str, Any]:
    """The output for the everyday instrument when no parameter is answered."""
    channels = [
        {"Installed": False, "Disabled": False, "Serial": 0, "PN": 0, "Description": column,
         "Gas": "Helium"}
        for column in ["Porous polymer, 10 m", "Dimethylpolysiloxane, 8 m", "", ""]
    ]
    if report == "configuration":
        return {
            "Inst_name": "gc-12-simulated",
            "Site_info": "Metering station 12, stream house",
            "Inst_serial": 0,
            "Stream_configured": False,
            "Stream_max": 0,
            **{f"Channel{n}": channel for n, channel in enumerate(channels, 1)},
        }
    if report == "sequence":
        line = {"Type": "Analysis", "Repeat": 0, "Stream": 0, "Slot": 0, "Flush_time": 0.0}
        return {"Table_repeat": 0, "Continuous": False, "total": 1, "rows": [line]}
    peaks = [(1, n) for n in range(1, 5)] + [(2, n) for n in range(1, 8)]
    rows = [
        {"Channel": channel, "ID": number, "PkName": "", "Ret_time": 0.0, "Level_amt": 0.0,
         "Linear": 0.0}
        for channel, number in peaks
    ]
    return {"total": 11, "rows": rows}


@pytest.mark.parametrize(
    "fault", [{"kind": "unanswered", "records": "all"}, {"kind": "status", "status": 28}]
)
@pytest.mark.parametrize("report", ["configuration", "sequence", "calibration"])
def test_nothing_answered(
    tool: Tool, simulator: StartSimulator, report: str, fault: dict[str, Any]
) -> None:
    """An unanswered batch is still a batch that arrived."""
    controller = simulator()
    controller.fault(call="Read", times=0, **fault)
    expect(tool("-s", controller.address, OPTIONS[report]), printed(zeros(report)))


def expect_report(run: Run, document: dict[str, Any]) -> None:
    expect(run, printed(document))


@pytest.mark.parametrize("number", [2147483647, -2147483648])
def test_extreme_integers(tool: Tool, simulator: StartSimulator, number: int) -> None:
    controller = simulator()
    controller.fault(kind="value", call="Read", times=0, records="all", int=number)

    def report(option: str) -> Run:
        return tool("-s", controller.address, option)

    channels = [
        {"Installed": True, "Disabled": True, "Serial": number, "PN": number,
         "Description": column, "Gas": "Unknown"}
        for column in ["Porous polymer, 10 m", "Dimethylpolysiloxane, 8 m", "", ""]
    ]
    expect_report(report("-g"), {
        "Inst_name": "gc-12-simulated",
        "Site_info": "Metering station 12, stream house",
        "Inst_serial": number,
        "Stream_configured": True,
        "Stream_max": number,
        **{f"Channel{n}": channel for n, channel in enumerate(channels, 1)},
    })
    if number > 0:
        line = {"Type": "None", "Repeat": number, "Stream": number, "Slot": number}
        many = [{**line, "Flush_time": flush} for flush in [1.5, 1.0, 0.5] + [0.0] * 17]
        alarm = {"SampleType": "All", "GroupID": number, "GroupStr": "Unknown",
                 "ParamID": number, "ParamStr": "0. None", "Triggered": True}
        expect_report(
            report("-q"),
            {"Table_repeat": number, "Continuous": True, "total": number, "rows": many},
        )
        expect_report(report("-a"), {"total": number, "rows": [alarm] * 38})
    else:
        line = {"Type": "None", "Repeat": number, "Stream": number, "Slot": number}
        expect_report(report("-q"), {
            "Table_repeat": number,
            "Continuous": True,
            "total": 1,
            "rows": [{**line, "Flush_time": 1.5}],
        })
        expect_report(report("-a"), {"total": number})


@pytest.mark.parametrize("real", ["NaN", "Infinity", "-Infinity"])
def test_reals_that_are_none(tool: Tool, simulator: StartSimulator, real: str) -> None:
    controller = simulator()
    controller.fault(kind="value", call="Read", times=0, records="all", real=real)
    lines = tool("-s", controller.address, "-q").document["rows"]
    assert [line["Flush_time"] for line in lines] == ["-"] * 3
    for row in tool("-s", controller.address, "-c").document["rows"]:
        assert [row[key] for key in ["Ret_time", "Level_amt", "Linear"]] == ["-"] * 3


def test_retention_time_that_is_too_long(tool: Tool, simulator: StartSimulator) -> None:
    """Finite in minutes, but not in seconds."""
    controller = simulator()
    controller.fault(kind="value", call="Read", times=0, records="all", real=1e308)
    row = tool("-s", controller.address, "-c").document["rows"][0]
    assert [row[key] for key in ["Ret_time", "Level_amt", "Linear"]] == ["-", 1e308, 1e308]


@pytest.mark.parametrize("report", OPTIONS)
def test_instrument_is_not_changed(tool: Tool, simulator: StartSimulator, report: str) -> None:
    controller = simulator("four-channel")
    before = controller.control("snapshot")
    tool("-s", controller.address, OPTIONS[report])
    assert controller.control("snapshot") == before
