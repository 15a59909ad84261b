"""The alarm report beyond the shipped scenarios, and resetting all alarms."""

from typing import Any

import pytest
from conftest import StartSimulator
from programs import Simulator, Tool, expect, expect_failed, expect_verdict, printed


def set_all(controller: Simulator, settings: dict[str, int]) -> None:
    for name, value in settings.items():
        controller.control("set", name, str(value))


@pytest.mark.parametrize(
    "settings, total, rows",
    [
        ({"mEnabled": 0}, 0, None),
        ({"mEnabled": -1}, 5, 5),
        ({"mTotal": 0}, 0, None),
        ({"mTotal": -3}, -3, None),
        ({"mEnabled": 0, "mTotal": -3}, 0, None),
        ({"mTotal": 1}, 1, 1),
        ({"mTotal": 38}, 38, 38),
        ({"mTotal": 39}, 39, 38),
        ({"mTotal": 50}, 50, 38),
    ],
)
def test_total(
    tool: Tool, simulator: StartSimulator, settings: dict[str, int], total: int, rows: int | None
) -> None:
    controller = simulator()
    set_all(controller, settings)
    run = tool("-s", controller.address, "-a")
    if rows is None:
        expect(run, printed({"total": total}))
    else:
        document = run.document
        assert list(document) == ["total", "rows"]
        assert (document["total"], len(document["rows"])) == (total, rows)
    reads = [line for line in controller.last_run() if line["call"] == "Read"]
    steps = {record["step"] for line in reads for record in line["records"] if record["id"] == 2030}
    assert steps == set(range(1, (rows or 0) + 1))


@pytest.mark.parametrize(
    "on, on_all, told",
    [
        (0, 0, "Analysis"),
        (1, 0, "Calibration"),
        (2, 0, "Blank"),
        (3, 0, "Verification"),
        (4, 0, "All"),
        (-3, 0, "All"),
        (-2, 0, "None"),
        (-1, 0, "None"),
        (-4, 0, "None"),
        (5, 0, "None"),
        (2147483647, 0, "None"),
        (-2147483648, 0, "None"),
        (0, 1, "All"),
        (5, -1, "All"),
    ],
)
def test_sample_type(
    tool: Tool, simulator: StartSimulator, on: int, on_all: int, told: str
) -> None:
    controller = simulator()
    set_all(controller, {"mAlarmOn[2]": on, "mAlarmOnAll[2]": on_all})
    rows = tool("-s", controller.address, "-a").document["rows"]
    assert rows[1]["SampleType"] == told


@pytest.mark.parametrize(
    "group, parameter, group_text, text",
    [
        (0, 1, "0. None", "0. None"),
        (13, 1, "Unknown", "0. None"),
        (-1, 1, "Unknown", "0. None"),
        (1, 1, "1. ESTD Amounts", "1. Nitrogen"),
        (2, 11, "2. NORM Amounts", "11. n-Hexane"),
        (1, 12, "1. ESTD Amounts", "12. Unknown"),
        (2, 0, "2. NORM Amounts", "0. Unknown"),
        (2, -2147483648, "2. NORM Amounts", "-2147483648. Unknown"),
        (3, 0, "3. Sample results", "0. None"),
        (3, 13, "3. Sample results", "13. ESTD total group 10"),
        (3, 14, "3. Sample results", "14. Norm total group 11"),
        (3, 23, "3. Sample results", "23. Norm total group 20"),
        (3, 24, "3. Sample results", "24. Total peaks detected"),
        (3, 25, "3. Sample results", "--"),
        (4, 5, "4. Verification", "--"),
        (5, 1, "5. Analog inputs", "1. Input# 1"),
        (5, 2, "5. Analog inputs", "--"),
        (6, 32, "6. ISO/GOST Results", "32. Sat.Wobbe Inferior"),
        (6, 33, "6. ISO/GOST Results", "--"),
        (7, 0, "7. ASTM/GPA Results", "0. None"),
        (7, 58, "7. ASTM/GPA Results", "58. Zair"),
        (7, 59, "7. ASTM/GPA Results", "7. ASTM/GPA Results"),
        (7, -1, "7. ASTM/GPA Results", "7. ASTM/GPA Results"),
        (8, 3, "8. GC Status", "3. Ambient Pressure"),
        (8, -1, "8. GC Status", "--"),
        (9, 1, "9. Digital Inputs", "1. Digital# 1"),
        (9, 2, "9. Digital Inputs", "--"),
        (10, 99, "10. Any Alarm", "0. Any Alarm"),
        (11, 99, "11. Verification Failure", "0. Verification failure"),
        (12, -5, "12. Start Run Error", "0. Start failure"),
    ],
)
def test_parameter(
    tool: Tool,
    simulator: StartSimulator,
    group: int,
    parameter: int,
    group_text: str,
    text: str,
) -> None:
    controller = simulator()
    set_all(controller, {"mGroupID[3]": group, "mParamID[3]": parameter})
    row = tool("-s", controller.address, "-a").document["rows"][2]
    keys = ["GroupID", "GroupStr", "ParamID", "ParamStr"]
    assert [row[key] for key in keys] == [group, group_text, parameter, text]


# In an everyday report the fifth batch is row 4, of group 2, and the sixth its component's name.
@pytest.mark.parametrize(
    "fault, name",
    [
        ({"kind": "status", "status": 28}, "Unknown"),
        ({"kind": "status", "status": 1}, "Unknown"),
        ({"kind": "unanswered", "records": [19]}, "Unknown"),
        ({"kind": "value", "records": [4], "int": 0}, "Meth"),
        ({"kind": "value", "records": [0], "int": 0}, ""),
        ({"kind": "value", "records": "all", "int": 0x4141}, "A" * 20),
        ({"kind": "value", "records": "all", "int": -191}, "A" * 20),
        ({"kind": "value", "records": "all", "int": 233}, "\ufffd" * 20),
        ({"kind": "value", "records": [0], "int": ord('"')}, '"ethane'),
    ],
)
def test_component_name(
    tool: Tool, simulator: StartSimulator, fault: dict[str, Any], name: str
) -> None:
    """The report continues, whatever the answer."""
    controller = simulator()
    controller.fault(call="Read", nth=6, **fault)
    run = tool("-s", controller.address, "-a")
    assert [row["ParamStr"] for row in run.document["rows"]] == [
        "1. Instrument Error",
        "2. Cabinet Temperature",
        "3. Ambient Pressure",
        f"2. {name}",
        "0. Verification failure",
    ]
    assert (run.stderr, run.status) == (b"", 0)
    assert controller.called() == ["Read"] * 7


def test_header_must_be_complete(tool: Tool, simulator: StartSimulator) -> None:
    """Incomplete rows are reported; without the header it is unknown whether there are any."""
    controller = simulator()
    controller.fault(kind="unanswered", call="Read", records=[0])
    expect_failed(tool("-s", controller.address, "-a"), 28)
    assert controller.called() == ["Read"]


def test_row_that_is_not_answered(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="unanswered", call="Read", nth=4, records="all")
    run = tool("-s", controller.address, "-a")
    assert run.document["rows"][2] == {
        "SampleType": "Analysis",
        "GroupID": 0,
        "GroupStr": "0. None",
        "ParamID": 0,
        "ParamStr": "0. None",
        "Triggered": False,
    }
    assert (run.stderr, run.status) == (b"", 0)


def test_reset(tool: Tool, simulator: StartSimulator) -> None:
    """An alarm stays on after its cause is gone, until it is reset."""
    controller = simulator()

    def triggered() -> tuple[bool, list[int]]:
        rows = tool("-s", controller.address, "-a").document["rows"]
        overall = tool("-s", controller.address).document["Alarm_overall"]
        return overall, [n for n, row in enumerate(rows, 1) if row["Triggered"]]

    assert triggered() == (False, [])
    controller.control("set", "mAmbientPressure", "70")
    assert triggered() == (True, [3])
    controller.control("set", "mAmbientPressure", "101.3")
    assert triggered() == (True, [3])
    expect_verdict(tool("-s", controller.address, "-P"), 0, "Accepted")
    assert controller.called() == ["Command"]
    assert triggered() == (False, [])


def test_reset_while_the_condition_holds(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator("error")
    expect_verdict(tool("-s", controller.address, "-P"), 0, "Accepted")
    rows = tool("-s", controller.address, "-a").document["rows"]
    assert [row["Triggered"] for row in rows] == [True, False, False, True]


@pytest.mark.parametrize("status, told", [(207, 207), (28, 28), (4294967295, -1)])
def test_reset_refused(tool: Tool, simulator: StartSimulator, status: int, told: int) -> None:
    controller = simulator("error")
    controller.fault(kind="status", call="Command", status=status)
    run = tool("-s", controller.address, "-P")
    expect_verdict(run, status, "Refused", f"Execute failed {told}.\n")
