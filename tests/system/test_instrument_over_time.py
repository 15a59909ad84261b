"""Reports of an instrument that changes between them: runs, and a warm start."""

from itertools import groupby, pairwise

from conftest import StartSimulator
from programs import Tool

# How far apart two readings of a value may be because of noise alone.
NOISE = {"Column_temp": 0.06, "Injector_temp": 0.1, "Column_press": 0.4}


def test_run(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator()

    def seen(key: str) -> str | int:
        return tool("-s", controller.address).document[key]

    assert (seen("GC_state"), seen("Last_counter")) == ("Ready", 1284)
    controller.control("command", "0")
    assert (seen("GC_state"), seen("Run_time")) == ("Running", 0)
    assert seen("Auto_state") == "Running - Single Run"
    controller.control("step", "37")
    assert (seen("GC_state"), seen("Run_time")) == ("Running 37s", 37)
    controller.control("step", str(180 - 37 - 1))
    assert (seen("GC_state"), seen("Last_counter")) == ("Running 179s", 1284)
    controller.control("step", "1")
    assert (seen("GC_state"), seen("Run_time"), seen("Last_counter")) == ("Ready", 0, 1285)
    assert seen("Auto_state") == "Idle"


def test_run_in_accelerated_time(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator("everyday", "--speed", "1000", paused=False)
    controller.control("command", "0")
    for _ in range(2000):
        document = tool("-s", controller.address).document
        if document["GC_state"] == "Ready":
            break
        assert document["GC_state"].startswith("Running")
        assert 0 <= document["Run_time"] <= 180
    assert (document["GC_state"], document["Last_counter"]) == ("Ready", 1285)


def test_warming_up(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator("warming-up")
    reports = [tool("-s", controller.address).document]
    while reports[-1]["GC_state"] != "Ready" and len(reports) < 60:
        controller.control("step", "15")
        reports.append(tool("-s", controller.address).document)

    states = [state for state, _ in groupby(report["GC_state"] for report in reports)]
    assert states == ["Initializing", "Stabilizing", "Ready"]
    for channel in ["Channel1", "Channel2"]:
        for key, noise in NOISE.items():
            pairs = [report[channel][key] for report in reports]
            actual = [pair["Actual"] for pair in pairs]
            assert all(after > before - noise for before, after in pairwise(actual)), (key, actual)
            assert actual[1] > actual[0] + 1.0
            assert abs(actual[-1] - pairs[-1]["Setpoint"]) <= 0.5 + noise
