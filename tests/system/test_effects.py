"""The effects of commands, as shown by later reports."""

from typing import Any

import pytest
from conftest import Download, StartSimulator
from programs import Run, Simulator, Tool, expect_verdict

RUN_TIME = 180  # seconds, on the everyday instrument


class Instrument:
    """The tool and a controller, as an operator sees them."""

    def __init__(self, tool: Tool, controller: Simulator) -> None:
        self._tool = tool
        self.controller = controller

    def give(self, *arguments: str, stderr: str = "") -> None:
        """Gives a command that the instrument accepts."""
        run = self.run(*arguments)
        expect_verdict(run, 0, "Accepted", stderr)

    def run(self, *arguments: str) -> Run:
        return self._tool("-s", self.controller.address, *arguments)

    def step(self, seconds: float) -> None:
        self.controller.control("step", str(seconds))

    def state(self, *keys: str) -> tuple[Any, ...]:
        """GC state, automation state, and other members of a status report."""
        document = self.run("-t").document
        return tuple(document[key] for key in ["GC_state", "Auto_state", *keys])


READY = ("Ready", "Idle")
WRITTEN = "writeParam. return 0.\n"


def test_single_run(tool: Tool, simulator: StartSimulator) -> None:
    instrument = Instrument(tool, simulator())
    assert instrument.state("Last_counter", "Curr_stream") == (*READY, 1284, 1)
    instrument.give("-R", "single", "-v", "3", stderr=WRITTEN)
    keys = ["Run_type", "Run_time", "Curr_stream", "Last_counter"]
    assert instrument.state(*keys) == (
        "Running", "Running - Single Run", "Analysis", 0, 3, 1284
    )
    instrument.step(RUN_TIME - 1)
    assert instrument.state("Run_time") == ("Running 179s", "Running - Single Run", 179)
    instrument.step(1)
    assert instrument.state("Run_time", "Last_counter") == (*READY, 0, 1285)


def test_run_aborted_now(tool: Tool, simulator: StartSimulator) -> None:
    instrument = Instrument(tool, simulator())
    instrument.give("-R", "single", stderr=WRITTEN)
    instrument.step(20)
    assert instrument.state() == ("Running 20s", "Running - Single Run")
    instrument.give("-A", "now")
    assert instrument.state("Run_time", "Last_counter") == (*READY, 0, 1284)


def test_run_aborted_when_it_is_over(tool: Tool, simulator: StartSimulator) -> None:
    instrument = Instrument(tool, simulator())
    instrument.give("-R", "single", stderr=WRITTEN)
    instrument.step(20)
    instrument.give("-A", "auto")
    assert instrument.state() == ("Running 20s", "Running - Single Run")
    instrument.step(RUN_TIME - 20)
    assert instrument.state("Last_counter") == (*READY, 1285)


def test_second_run_is_refused_until_the_first_is_over(
    tool: Tool, simulator: StartSimulator
) -> None:
    instrument = Instrument(tool, simulator())
    instrument.give("-R", "single", stderr=WRITTEN)
    refused = instrument.run("-R", "single", "-v", "2")
    expect_verdict(
        refused, 207, "Refused", "writeParam. return 207.\nExecute failed 207.\n"
    )
    instrument.step(RUN_TIME)
    instrument.give("-R", "single", "-v", "2", stderr=WRITTEN)
    assert instrument.state("Curr_stream") == ("Running", "Running - Single Run", 2)


def coefficients(instrument: Instrument) -> list[float]:
    return [row["Linear"] for row in instrument.run("-c").document["rows"]]


def test_calibration_run(tool: Tool, simulator: StartSimulator) -> None:
    """Two runs, each of which changes every coefficient slightly."""
    instrument = Instrument(tool, simulator())
    before = coefficients(instrument)
    instrument.give("-R", "calib", "-v", "4", stderr=WRITTEN)
    assert instrument.state("Run_type", "Curr_stream") == (
        "Running", "Running Calibration", "Calibration", 4
    )
    assert coefficients(instrument) == before
    instrument.step(RUN_TIME)
    once = coefficients(instrument)
    instrument.step(RUN_TIME)
    twice = coefficients(instrument)
    assert instrument.state("Last_counter") == (*READY, 1286)
    assert once != before and twice not in (before, once)
    assert twice == pytest.approx(before, rel=0.01)


def test_calibration_without_amounts(
    tool: Tool, simulator: StartSimulator, download: Download
) -> None:
    """Peaks whose amount was cleared keep their coefficients; the peak with an amount does not."""
    instrument = Instrument(tool, simulator())
    before = coefficients(instrument)
    level = {"Channel": 1, "ID": 2, "Level_amt": 84.95}
    download(instrument.controller, "-C", {"total": 1, "rows": [level]})
    instrument.give("-R", "calib", stderr=WRITTEN)
    instrument.step(2 * RUN_TIME)
    after = coefficients(instrument)
    changed = [n for n, (old, new) in enumerate(zip(before, after, strict=True)) if old != new]
    assert changed == [1]


TABLE = {
    "Table_repeat": 2,
    "Continuous": False,
    "total": 2,
    "rows": [
        {"Type": "Verification", "Repeat": 2, "Stream": 3, "Slot": 0, "Flush_time": 1.5},
        {"Type": "Blank", "Repeat": 1, "Stream": 2, "Slot": 4, "Flush_time": 0},
    ],
}
PLACE = ["Seq_replicate", "Seq_line", "Line_replicate", "Run_type", "Curr_stream"]
OVER = (*READY, 0, 0, 0)


def test_automation(tool: Tool, simulator: StartSimulator, download: Download) -> None:
    """A downloaded table is carried out line by line, as often as it says."""
    instrument = Instrument(tool, simulator())
    expect_verdict(download(instrument.controller, "-Q", TABLE), 0, "Success!")
    instrument.give("-R", "auto")
    for repeat in [1, 2]:
        first, second = (repeat, 1), (repeat, 2)
        sample, blank = ("Verification", 3), ("Blank", 2)
        assert instrument.state(*PLACE) == (
            "Flushing", "Flushing Stream 60s", *first, 1, *sample
        )
        instrument.step(90)
        for replicate in [1, 2]:
            assert instrument.state(*PLACE) == (
                "Running", "Running Sequence", *first, replicate, *sample
            )
            instrument.step(RUN_TIME)
            following = (*first, 2, *sample) if replicate == 1 else (*second, 1, *blank)
            assert instrument.state(*PLACE) == ("Ready", "Run Delay 30s", *following)
            instrument.step(30)
        assert instrument.state(*PLACE) == ("Running", "Running Sequence", *second, 1, *blank)
        instrument.step(RUN_TIME)
    assert instrument.state(*PLACE[:3]) == OVER
    assert instrument.state("Last_counter") == (*READY, 1284 + 6)


def test_automation_aborted_now(tool: Tool, simulator: StartSimulator) -> None:
    instrument = Instrument(tool, simulator())
    instrument.give("-R", "auto")
    instrument.step(90 + 40)
    assert instrument.state("Seq_line") == ("Running 40s", "Running Sequence", 1)
    instrument.give("-A", "now")
    assert instrument.state(*PLACE[:3]) == OVER
    assert instrument.state("Last_counter") == (*READY, 1284)


def test_automation_stopped_after_the_run(tool: Tool, simulator: StartSimulator) -> None:
    instrument = Instrument(tool, simulator())
    instrument.give("-R", "auto")
    instrument.step(90 + 40)
    instrument.give("-A", "auto")
    assert instrument.state("Seq_line") == ("Running 40s", "Running Sequence", 1)
    instrument.step(RUN_TIME - 40)
    assert instrument.state(*PLACE[:3]) == OVER
    assert instrument.state("Last_counter") == (*READY, 1285)


def test_automation_for_ever(tool: Tool, simulator: StartSimulator, download: Download) -> None:
    """A continuous table repeats until it is stopped, whatever its repeat count."""
    instrument = Instrument(tool, simulator())
    table = {**TABLE, "Continuous": True}
    expect_verdict(download(instrument.controller, "-Q", table), 0, "Success!")
    instrument.give("-R", "auto")
    once = 90 + 2 * (RUN_TIME + 30) + RUN_TIME
    instrument.step(100 * once + 90 + 5)
    expected = ("Running 5s", "Running Sequence", True, 101, 1)
    assert instrument.state("Continuous", "Seq_replicate", "Seq_line") == expected
    instrument.give("-A", "auto")
    instrument.step(RUN_TIME)
    assert instrument.state("Last_counter") == (*READY, 1284 + 301)


def test_automation_of_a_cleared_table(
    tool: Tool, simulator: StartSimulator, download: Download
) -> None:
    """There is nothing to run, so nothing starts."""
    instrument = Instrument(tool, simulator())
    download(instrument.controller, "-Q", {"Table_repeat": 1, "total": 0})
    expect_verdict(instrument.run("-R", "auto"), 207, "Refused", "Execute failed 207.\n")


def test_stream_stays_with_the_next_run(tool: Tool, simulator: StartSimulator) -> None:
    """The valve goes to the run's stream, whatever it was switched to before."""
    instrument = Instrument(tool, simulator())
    assert instrument.run("-V", "2").stdout == b""
    assert instrument.state("Curr_stream") == (*READY, 2)
    instrument.give("-R", "single", "-v", "4", stderr=WRITTEN)
    assert instrument.state("Curr_stream") == ("Running", "Running - Single Run", 4)


def test_commands_without_effect(tool: Tool, simulator: StartSimulator) -> None:
    """The instrument accepts but does nothing: only the report shows that."""
    instrument = Instrument(tool, simulator())
    instrument.controller.fault(kind="ignore", call="Command")
    instrument.give("-R", "single", stderr=WRITTEN)
    assert instrument.state() == READY


def test_refused_start_sets_off_its_alarm(tool: Tool, simulator: StartSimulator) -> None:
    alarm = {"sampleType": 4, "allSampleTypes": 1, "group": 12, "parameter": 0}
    instrument = Instrument(tool, simulator("warming-up", parts={"alarms": [alarm]}))
    assert instrument.state("Alarm_overall")[-1] is False
    expect_verdict(instrument.run("-R", "auto"), 207, "Refused", "Execute failed 207.\n")
    assert instrument.state("Alarm_overall")[-1] is True
    (row,) = instrument.run("-a").document["rows"]
    assert (row["ParamStr"], row["Triggered"]) == ("0. Start failure", True)
    instrument.give("-P")
    assert instrument.state("Alarm_overall")[-1] is False


@pytest.mark.parametrize("word", ["now", "auto"])
@pytest.mark.parametrize("seconds, state", [(30, "Flushing"), (90 + RUN_TIME + 10, "Ready")])
def test_automation_ended_between_runs(
    tool: Tool, simulator: StartSimulator, word: str, seconds: int, state: str
) -> None:
    """While a stream is flushed, or a run delay passes, there is no run to wait for."""
    instrument = Instrument(tool, simulator())
    instrument.give("-R", "auto")
    instrument.step(seconds)
    gc_state, _, line = instrument.state("Seq_line")
    assert (gc_state, line) == (state, 1)
    instrument.give("-A", word)
    assert instrument.state(*PLACE[:3]) == OVER
    instrument.step(10 * RUN_TIME)
    assert instrument.state("Last_counter") == (*READY, 1284 + seconds // (90 + RUN_TIME))


def test_line_without_runs_is_passed_over(
    tool: Tool, simulator: StartSimulator, download: Download
) -> None:
    instrument = Instrument(tool, simulator())
    rows = [{"Repeat": 0, "Stream": 2, "Flush_time": 9}, {"Repeat": 1, "Stream": 3}]
    table = {"Table_repeat": 1, "total": 2, "rows": rows}
    expect_verdict(download(instrument.controller, "-Q", table), 0, "Success!")
    instrument.give("-R", "auto")
    assert instrument.state(*PLACE) == ("Running", "Running Sequence", 1, 2, 1, "Analysis", 3)
    instrument.step(RUN_TIME)
    assert instrument.state("Last_counter") == (*READY, 1285)


def test_verification_that_fails(
    tool: Tool, simulator: StartSimulator, download: Download
) -> None:
    """The last row of the everyday alarms covers it, but only for verifications."""
    instrument = Instrument(tool, simulator(parts={"parameters": {"mDetCalibrated2": 0}}))
    for run_type, expected in [("Analysis", []), ("Verification", [5])]:
        rows = [{"Type": run_type, "Repeat": 1}]
        table = {"Table_repeat": 1, "total": 1, "rows": rows}
        expect_verdict(download(instrument.controller, "-Q", table), 0, "Success!")
        instrument.give("-R", "auto")
        instrument.step(RUN_TIME)
        alarms = instrument.run("-a").document["rows"]
        triggered = [n for n, alarm in enumerate(alarms, 1) if alarm["Triggered"]]
        assert triggered == expected
        assert instrument.state("Alarm_overall") == (*READY, bool(expected))


def test_reset_in_the_middle_of_a_run(tool: Tool, simulator: StartSimulator) -> None:
    instrument = Instrument(tool, simulator())
    instrument.give("-R", "single", stderr=WRITTEN)
    instrument.step(5)
    instrument.give("-P")
    assert instrument.state() == ("Running 5s", "Running - Single Run")


def test_second_solution(tool: Tool, simulator: StartSimulator) -> None:
    """If one is loaded after the other, the last is in use, and takes the full minute again."""
    instrument = Instrument(tool, simulator())
    for slot in ["3", "7"]:
        run = instrument.run("-M", slot)
        expect_verdict(run, 0, "Refused", WRITTEN)
        instrument.step(40)
    assert instrument.state() == ("Not Ready", "Idle")
    parameters = instrument.controller.parameters()
    assert [n for n in range(11) if parameters[f"mSlotNr[{n}]"]] == [7]
    instrument.step(20)
    assert instrument.state() == READY
