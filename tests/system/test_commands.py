"""Run starts, aborts, stream switch and solution load: verdicts, diagnostics, calls, refusals."""

import pytest
from batches import CALIBRATION_RUN, SINGLE_RUN, STREAM, Address, addresses, batch, values
from conftest import StartSimulator
from programs import Tool, expect, expect_verdict, signed

STATUSES = [1, 28, 207, 2147483648, 4294967295]
RUN_PARAMETERS = ["mStartRunType", "mLevel", "mStream", "mRFCalibType", "mReplicate"]


@pytest.mark.parametrize("stream", [None, 0, 3, 46])
@pytest.mark.parametrize("word", ["single", "calib"])
def test_run_start(tool: Tool, simulator: StartSimulator, word: str, stream: int | None) -> None:
    controller = simulator()
    chosen = [] if stream is None else ["-v", str(stream)]
    run = tool("-s", controller.address, "-R", word, *chosen)
    expect_verdict(run, 0, "Accepted", "writeParam. return 0.\n")
    _, write, command, _ = controller.last_run()
    assert (write["call"], command["call"]) == ("Write", "Command")
    assert (command["command"], command["channel"]) == (0, 0)
    numbers = {60: 0, 61: 0, 62: stream or 0}
    if word == "calib":
        numbers |= {60: 1, 61: 1, 75: 1, 73: 2, 74: 1}
    expected = {Address(0, 0, 0, number): (value, 0.0) for number, value in numbers.items()}
    assert values(write) == expected
    assert addresses(write) == batch(SINGLE_RUN if word == "single" else CALIBRATION_RUN, 128)


@pytest.mark.parametrize("status", STATUSES)
@pytest.mark.parametrize("word", ["single", "calib"])
def test_run_parameters_refused(
    tool: Tool, simulator: StartSimulator, word: str, status: int
) -> None:
    controller = simulator()
    controller.fault(kind="status", call="Write", status=status)
    told = signed(status)
    run = tool("-s", controller.address, "-R", word)
    expect_verdict(
        run, status, "Refused", f"writeParam. return {told}.\nExecute failed {told}.\n"
    )
    assert controller.called() == ["Write"]


@pytest.mark.parametrize("status", STATUSES)
@pytest.mark.parametrize("word", ["single", "calib"])
def test_run_refused(tool: Tool, simulator: StartSimulator, word: str, status: int) -> None:
    controller = simulator()
    controller.fault(kind="status", call="Command", status=status)
    run = tool("-s", controller.address, "-R", word, "-v", "3")
    told = signed(status)
    expect_verdict(run, status, "Refused", f"writeParam. return 0.\nExecute failed {told}.\n")
    # Values written before the refusal are kept.
    kept = [controller.parameters()[name] for name in RUN_PARAMETERS]
    assert kept == ([0, 0, 3, 0, 0] if word == "single" else [1, 1, 3, 1, 2])


@pytest.mark.parametrize("status", STATUSES)
def test_automation_refused(tool: Tool, simulator: StartSimulator, status: int) -> None:
    controller = simulator()
    controller.fault(kind="status", call="Command", status=status)
    run = tool("-s", controller.address, "-R", "auto", "-v", "3")
    expect_verdict(run, status, "Refused", f"Execute failed {signed(status)}.\n")
    assert controller.called() == ["Command"]


@pytest.mark.parametrize("status", STATUSES)
@pytest.mark.parametrize(
    "word, nth, sent", [("now", 1, [1]), ("now", 2, [1, 17]), ("auto", 1, [17])]
)
def test_abort_refused(
    tool: Tool, simulator: StartSimulator, word: str, nth: int, sent: list[int], status: int
) -> None:
    """If the run cannot be aborted at once, the automation is not stopped either."""
    controller = simulator()
    tool("-s", controller.address, "-R", "single")
    controller.fault(kind="status", call="Command", nth=nth, status=status)
    run = tool("-s", controller.address, "-A", word)
    expect_verdict(run, status, "Refused", f"Execute failed {signed(status)}.\n")
    commands = [line["command"] for line in controller.last_run()[1:-1]]
    assert commands == sent


@pytest.mark.parametrize("status", STATUSES)
def test_stream_refused(tool: Tool, simulator: StartSimulator, status: int) -> None:
    controller = simulator()
    controller.fault(kind="status", call="Write", status=status)
    told = signed(status)
    run = tool("-s", controller.address, "-V", "3")
    expect(run, "", f"writeParam. return {told}.\nExecute failed {told}.\n")
    assert controller.called() == ["Write"]


@pytest.mark.parametrize("stream", [0, 1, 46])
def test_stream(tool: Tool, simulator: StartSimulator, stream: int) -> None:
    """Nothing is printed, and the valve is where it was sent."""
    controller = simulator(parts={"parameters": {"mStreamMaxNr": 46}})
    run = tool("-s", controller.address, "-V", str(stream))
    expect(run, "", "writeParam. return 0.\n")
    assert values(controller.last_run()[1]) == {STREAM: (stream, 0.0)}
    assert tool("-s", controller.address).document["Curr_stream"] == stream


@pytest.mark.parametrize("status", STATUSES)
def test_solution_refused(tool: Tool, simulator: StartSimulator, status: int) -> None:
    """The texts are swapped; clients rely on the code."""
    controller = simulator()
    controller.fault(kind="status", call="Write", status=status)
    told = signed(status)
    run = tool("-s", controller.address, "-M", "3")
    expect_verdict(
        run, status, "Accepted", f"writeParam. return {told}.\nExecute failed {told}.\n"
    )
    assert tool("-s", controller.address).document["GC_state"] == "Ready"


@pytest.mark.parametrize("slot", [0, 3, 10])
def test_solution(tool: Tool, simulator: StartSimulator, slot: int) -> None:
    controller = simulator()
    run = tool("-s", controller.address, "-M", str(slot))
    expect_verdict(run, 0, "Refused", "writeParam. return 0.\n")
    _, write, _ = controller.last_run()
    # The slot's number is the address of the write, not its value.
    assert values(write) == {Address(0, 0, slot, 1003): (0, 0.0)}
    assert controller.parameters()[f"mSlotNr[{slot}]"] == 1
    assert tool("-s", controller.address).document["GC_state"] == "Not Ready"
    controller.control("step", "60")
    assert tool("-s", controller.address).document["GC_state"] == "Ready"


REFUSED = "writeParam. return {0}.\nExecute failed {0}.\n"
RUN_REFUSED = "writeParam. return 0.\nExecute failed {0}.\n"
COMMAND_REFUSED = "Execute failed {0}.\n"


@pytest.mark.parametrize(
    "scenario, parameters, arguments, status, words, stderr",
    [
        ("warming-up", {}, ["-R", "single"], 207, "Refused", REFUSED),
        ("warming-up", {}, ["-R", "auto"], 207, "Refused", COMMAND_REFUSED),
        ("warming-up", {}, ["-V", "2"], 207, None, REFUSED),
        ("warming-up", {}, ["-M", "2"], 207, "Accepted", REFUSED),
        ("error", {}, ["-R", "single"], 207, "Refused", RUN_REFUSED),
        ("error", {}, ["-R", "calib"], 207, "Refused", RUN_REFUSED),
        ("error", {}, ["-R", "auto"], 207, "Refused", COMMAND_REFUSED),
        ("error", {}, ["-A", "auto"], 207, "Refused", COMMAND_REFUSED),
        ("error", {}, ["-M", "1"], 207, "Accepted", REFUSED),
        ("everyday", {"mGC_State": 7}, ["-V", "2"], 207, None, REFUSED),
        ("everyday", {"mServiceSwitch": 1}, ["-R", "single"], 207, "Refused", RUN_REFUSED),
        ("everyday", {"mExtReady": 0}, ["-R", "calib"], 207, "Refused", RUN_REFUSED),
        ("everyday", {}, ["-A", "now"], 207, "Refused", COMMAND_REFUSED),
        ("everyday", {"mTableRepeat": 0}, ["-R", "auto"], 207, "Refused", COMMAND_REFUSED),
        ("everyday", {"mGC_State": 2}, ["-R", "single"], 207, "Refused", REFUSED),
        ("everyday", {"mGC_State": 2}, ["-R", "auto"], 207, "Refused", COMMAND_REFUSED),
        ("everyday", {"mGC_State": 2}, ["-V", "2"], 207, None, REFUSED),
        ("everyday", {"mGC_State": 2}, ["-M", "2"], 207, "Accepted", REFUSED),
        ("everyday", {}, ["-V", "5"], 206, None, REFUSED),
        ("bare", {}, ["-V", "1"], 207, None, REFUSED),
    ],
)
def test_refused_by_the_instrument(
    tool: Tool,
    simulator: StartSimulator,
    scenario: str,
    parameters: dict[str, int],
    arguments: list[str],
    status: int,
    words: str | None,
    stderr: str,
) -> None:
    """In a state, or with a setting, that does not allow the command."""
    controller = simulator(scenario, parts={"parameters": parameters})
    before = tool("-s", controller.address).document["GC_state"]
    run = tool("-s", controller.address, *arguments)
    if words is None:
        expect(run, "", stderr.format(status))
    else:
        expect_verdict(run, status, words, stderr.format(status))
    assert tool("-s", controller.address).document["GC_state"] == before


@pytest.mark.parametrize(
    "arguments, status",
    [(["-R", "single"], 108), (["-V", "2"], 108), (["-M", "2"], 108)],
)
@pytest.mark.parametrize("when", ["before", "after"])
def test_lost_connection(
    tool: Tool, simulator: StartSimulator, arguments: list[str], status: int, when: str
) -> None:
    controller = simulator()
    controller.fault(kind="drop", call="Write", when=when)
    run = tool("-s", controller.address, *arguments)
    assert run.stderr.decode() == REFUSED.format(status)
    assert run.status == 0
