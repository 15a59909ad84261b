"""The status report: its output for an instrument, to the octet."""

import calendar
import re
import time
from pathlib import Path

import pytest
from batches import addresses
from conftest import StartSimulator, Traced
from programs import Run, Tool
from status_parameters import registered, sent

DOCUMENTS = Path(__file__).parent / "documents"
SCENARIOS = ["everyday", "four-channel", "bare", "error", "warming-up"]


def document(name: str) -> str:
    """The tool's output for a scenario, with CLOCK in place of the time."""
    return (DOCUMENTS / f"{name}.json").read_text(encoding="utf-8")


def clock_text(seconds: int) -> str:
    now = time.localtime(seconds)
    date = f"{now.tm_mday}-{now.tm_mon}-{now.tm_year}"
    return f"{date} {now.tm_hour:02}:{now.tm_min:02}:{now.tm_sec:02}"


def expect(run: Run, expected: str) -> None:
    """Expects a report of exactly this text, with the time of the run."""
    assert (run.status, run.stderr) == (0, b"")
    clock = run.document["GC_time"]
    assert clock in [clock_text(second) for second in range(run.began, run.ended + 1)]
    assert run.stdout.decode() == expected.replace("CLOCK", clock)


@pytest.mark.parametrize("scenario", SCENARIOS)
def test_shipped_scenario(tool: Tool, simulator: StartSimulator, scenario: str) -> None:
    expect(tool("-s", simulator(scenario).address), document(scenario))


@pytest.mark.parametrize("options", [["-t"], ["-t", "-t"], ["-v", "7"]])
def test_options_for_the_report(tool: Tool, simulator: StartSimulator, options: list[str]) -> None:
    expect(tool("-s", simulator().address, *options), document("everyday"))


@pytest.mark.parametrize(
    "zone, offset",
    [("UTC", 0), ("<+0545>-5:45", 345 * 60), ("<-0930>9:30", -570 * 60)],
)
def test_clock_is_local_time(tool: Tool, simulator: StartSimulator, zone: str, offset: int) -> None:
    run = tool("-s", simulator().address, environment={"TZ": zone})
    clock = time.strptime(run.document["GC_time"], "%d-%m-%Y %H:%M:%S")
    assert run.began <= calendar.timegm(clock) - offset <= run.ended


def test_calls_of_a_report(tool: Tool, simulator: StartSimulator) -> None:
    """One connection in report mode, everything in one batch, one text, and a proper Disconnect."""
    controller = simulator()
    tool("-s", controller.address)
    lines = controller.journal()
    assert [line["call"] for line in lines] == ["Connect", "Read", "Object", "Disconnect"]
    assert [line["status"] for line in lines] == [0, 0, 0, 0]
    assert len({line["connection"] for line in lines}) == 1
    assert (lines[0]["mode"], lines[0]["client"]) == (1, "SimUI")
    assert lines[2]["number"] == 4


def test_batch_of_a_report(tool: Tool, simulator: StartSimulator) -> None:
    """Records are sent in the iteration order of their map, as on instruments in use."""
    controller = simulator()
    tool("-s", controller.address)
    expected = [registered()[name] for name in sent()]
    assert len(expected) == 71
    assert addresses(controller.journal()[1]) == expected


def test_unanswered_parameter(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator()
    unanswered = [sent().index("mAmbientTemp"), sent().index("mColumnTemp2")]
    controller.fault(kind="unanswered", call="Read", records=unanswered)
    expected = document("everyday").replace('"Ambient_temp": 23', '"Ambient_temp": 0')
    expect(tool("-s", controller.address), expected.replace("75.01", "0.0"))


@pytest.mark.parametrize(
    "fault", [{"kind": "unanswered", "records": "all"}, {"kind": "status", "status": 28}]
)
def test_nothing_answered(
    tool: Tool, simulator: StartSimulator, fault: dict[str, str | int]
) -> None:
    controller = simulator()
    controller.fault(call="Read", **fault)
    expect(tool("-s", controller.address), document("unanswered"))


@pytest.mark.parametrize(
    "status, told",
    [
        (1, 1),
        (27, 27),
        (29, 29),
        (203, 203),
        (2147483647, 2147483647),
        (2147483648, -2147483648),
        (4294967295, -1),
    ],
)
def test_batch_refused(tool: Tool, simulator: StartSimulator, status: int, told: int) -> None:
    controller = simulator()
    controller.fault(kind="status", call="Read", status=status)
    run = tool("-s", controller.address)
    assert (run.stdout, run.stderr) == (b"", f"Execute failed {told}.\n".encode())
    assert run.status == 0
    assert [line["call"] for line in controller.journal()] == ["Connect", "Read", "Disconnect"]


def test_records_in_each_others_place(tool: Tool, simulator: StartSimulator) -> None:
    """Neither is mistaken for the other: both stay zero."""
    controller = simulator()
    places = {"a": sent().index("mAnalysisCounter"), "b": sent().index("mRunTimeSP2")}
    controller.fault(kind="swap", call="Read", **places)
    expected = document("everyday").replace("1284", "0")
    # The longest run time is now that of channel 1.
    expect(
        tool("-s", controller.address),
        expected.replace('"Total_run_time": 180', '"Total_run_time": 120'),
    )


@pytest.mark.parametrize("real", ["NaN", "Infinity", "-Infinity"])
def test_reals_that_are_none(tool: Tool, simulator: StartSimulator, real: str) -> None:
    controller = simulator()
    controller.fault(kind="value", call="Read", records="all", real=real)
    expect(tool("-s", controller.address), re.sub(r"-?\d+\.\d+", '"-"', document("everyday")))


@pytest.mark.parametrize(
    "real, printed",
    [
        (0.1, "0.1"),
        (-0.0, "-0.0"),
        (1e300, "1e300"),
        (5e-324, "5e-324"),
        (1 / 3, "0.3333333333333333"),
        (123456789.125, "123456789.125"),
    ],
)
def test_reals_keep_all_their_digits(
    tool: Tool, simulator: StartSimulator, real: float, printed: str
) -> None:
    controller = simulator()
    controller.fault(kind="value", call="Read", records="all", real=real)
    expect(tool("-s", controller.address), re.sub(r"-?\d+\.\d+", printed, document("everyday")))


@pytest.mark.parametrize(
    "text, printed",
    [
        ({"text": ""}, ""),
        ({"text": "Köln – 日本 😀"}, "Köln – 日本 😀"),
        ({"text": "<script>alert('/')</script>"}, "<script>alert('/')</script>"),
        ({"text": 'a"b\\c/d\n\t\r\b\f'}, 'a\\"b\\\\c/d\\n\\t\\r\\b\\f'),
        ({"text": "\x01\x1f\x7f\u2028"}, "\\u0001\\u001F\x7f\u2028"),
        ({"text": "%s%n%d"}, "%s%n%d"),
        ({"text": "x" * 4096}, "x" * 4096),
        ({"hex": "4bf66c6e"}, "K\ufffdln"),
        ({"hex": "ff00"}, "\ufffd"),
        ({"hex": "e282"}, "\ufffd\ufffd"),
        ({"hex": "c080"}, "\ufffd\ufffd"),
        ({"hex": "eda080"}, "\ufffd\ufffd\ufffd"),
        ({"hex": "f4908080"}, "\ufffd\ufffd\ufffd\ufffd"),
        ({"hex": "41e282ac42f09f9880"}, "A€B😀"),
    ],
)
def test_application(
    tool: Tool, simulator: StartSimulator, text: dict[str, str], printed: str
) -> None:
    controller = simulator()
    controller.fault(kind="text", **text)
    expected = document("everyday").replace("Natural gas C6+ (simulated)", printed)
    expect(tool("-s", controller.address), expected)


@pytest.mark.parametrize(
    "fault",
    [
        {"kind": "status", "status": 209},
        {"kind": "drop"},
        {"kind": "short"},
        {"kind": "truncate"},
    ],
)
def test_no_application(tool: Tool, simulator: StartSimulator, fault: dict[str, str | int]) -> None:
    """The rest of the report is not affected."""
    controller = simulator()
    controller.fault(call="Object", **fault)
    expected = document("everyday").replace("Natural gas C6+ (simulated)", "")
    expect(tool("-s", controller.address), expected)


def test_application_that_is_too_long(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="text", length=4097)
    expected = document("everyday").replace("Natural gas C6+ (simulated)", "")
    expect(tool("-s", controller.address), expected)


@pytest.mark.parametrize(
    "settings, expected",
    [
        ({"mGC_State": 2}, {"GC_state": "Running", "Run_time": 0}),
        ({"mGC_State": 2, "mGC_CurRunTime": 37}, {"GC_state": "Running 37s", "Run_time": 37}),
        ({"mGC_State": 8}, {"GC_state": "Not Ready"}),
        ({"mGC_State": 10}, {"GC_state": "Cleaning 0 min"}),
        ({"mGC_State": 10, "mGC_CleaningTimeLeft": 12}, {"GC_state": "Cleaning 12 min"}),
        ({"mGC_State": 11}, {"GC_state": "Unknown"}),
        ({"mGC_State": -1}, {"GC_state": "Unknown"}),
        ({"mAutoState": 2}, {"Auto_state": "Running Sequence"}),
        ({"mAutoState": 2, "mGC_WaitingBetweenRuns": 1.5}, {"Auto_state": "Run Delay 90s"}),
        ({"mAutoState": 6, "mGC_FlushingStream": 1.5}, {"Auto_state": "Flushing Stream 60s"}),
        ({"mAutoState": 6, "mGC_FlushingStream": 0.5}, {"Auto_state": "Flushing Stream 0s"}),
        ({"mAutoState": 7}, {"Auto_state": "Unknown"}),
        ({"mRunType": 3}, {"Run_type": "Verification"}),
        ({"mRunType": -1}, {"Run_type": "None"}),
        ({"mGC_Error_Status": -1}, {"Error_code": -1, "Error_str": ""}),
        ({"mGC_Error_Status": 203}, {"Error_code": 203, "Error_str": "Carrier gas supply missing"}),
        ({"mExtReady": 0}, {"Ext_ready_in": "Not Ready"}),
        ({"mServiceSwitch": -1}, {"Service_switch": "On"}),
        ({"mAlarmOverall": 2}, {"Alarm_overall": True}),
        ({"mContinuous": -1}, {"Continuous": True}),
        ({"mHasController": 1}, {"Host": "monitoring"}),
        ({"mRunTimeSP4": 900}, {"Total_run_time": 900}),
        ({f"mRunTimeSP{n}": -n for n in range(1, 5)}, {"Total_run_time": 0}),
        ({"mSeq_line": 3, "mLine_replicate": 2, "mSeq_replicate": 4, "mCurrentStream": 46},
         {"Seq_line": 3, "Line_replicate": 2, "Seq_replicate": 4, "Curr_stream": 46}),
        ({"mAmbientTemp": -2147483648}, {"Ambient_temp": -2147483648}),
    ],
)
def test_values(
    tool: Tool,
    simulator: StartSimulator,
    settings: dict[str, float],
    expected: dict[str, str | int],
) -> None:
    controller = simulator()
    for name, value in settings.items():
        controller.control("set", name, str(value))
    printed = tool("-s", controller.address).document
    assert {key: printed[key] for key in expected} == expected


def test_channels_that_are_not_installed(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator("four-channel")
    for name in ["mInstalled2", "mInstalled4"]:
        controller.control("set", name, "0")
    keys = list(tool("-s", controller.address).document)
    assert keys[-3:] == ["Sample_line_temp", "Channel1", "Channel3"]


def test_system_calls(traced: Traced, simulator: StartSimulator) -> None:
    """The document is written in one piece, and no file is written."""
    calls = traced("%file,write,writev", "-s", simulator().address)
    said = [call for call in calls if re.search(r" writev?\([12], ", call)]
    assert len(said) == 1 and ' write(1, "{\\n' in said[0], said
    changes = r"O_CREAT|O_WRONLY|O_RDWR|O_TRUNC| (creat|mkdir|rename|link|symlink|unlink|truncate)"
    assert [call for call in calls if re.search(changes, call)] == []
