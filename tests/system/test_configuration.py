"""The configuration report: missing texts and unusual values."""

from typing import Any

import pytest
from conftest import StartSimulator
from programs import Tool

NAME = "gc-12-simulated"
SITE = "Metering station 12, stream house"
COLUMNS = ["Porous polymer, 10 m", "Dimethylpolysiloxane, 8 m", "", ""]


@pytest.mark.parametrize(
    "nth, times, name, site, columns",
    [
        (1, 1, "", SITE, COLUMNS),
        (2, 1, NAME, NAME, COLUMNS),
        (1, 2, "", "", COLUMNS),
        (3, 1, NAME, SITE, ["", *COLUMNS[1:]]),
        (4, 1, NAME, SITE, [COLUMNS[0], "", "", ""]),
        (1, 0, "", "", [""] * 4),
    ],
)
def test_texts_that_do_not_arrive(
    tool: Tool,
    simulator: StartSimulator,
    nth: int,
    times: int,
    name: str,
    site: str,
    columns: list[str],
) -> None:
    """Without site information the name takes its place; each column is a separate request."""
    controller = simulator()
    controller.fault(kind="status", call="Object", nth=nth, times=times, status=209)
    run = tool("-s", controller.address, "-g")
    document = run.document
    assert (document["Inst_name"], document["Site_info"]) == (name, site)
    assert [document[f"Channel{n}"]["Description"] for n in range(1, 5)] == columns
    assert document["Inst_serial"] == 120033
    assert (run.stderr, run.status) == (b"", 0)
    assert controller.called() == ["Read", *["Object"] * 6]


@pytest.mark.parametrize("number, key", [(5, "Inst_name"), (2, "Site_info")])
@pytest.mark.parametrize(
    "text, told",
    [("", ""), ("Köln – 日本", "Köln – 日本"), ('a"b\\c\n', 'a"b\\c\n'), ("x" * 4096, "x" * 4096)],
)
def test_texts(
    tool: Tool, simulator: StartSimulator, number: int, key: str, text: str, told: str
) -> None:
    controller = simulator()
    controller.control("set", "--text", str(number), text)
    assert tool("-s", controller.address, "-g").document[key] == told


def test_text_that_is_not_utf8(tool: Tool, simulator: StartSimulator) -> None:
    controller = simulator()
    controller.fault(kind="text", hex="4bf66c6e", times=0)
    document = tool("-s", controller.address, "-g").document
    assert (document["Inst_name"], document["Site_info"]) == ("K\ufffdln", "K\ufffdln")


@pytest.mark.parametrize(
    "settings, channel, expected",
    [
        ({"mCarrierGas1": 0}, 1, {"Gas": "Helium"}),
        ({"mCarrierGas2": 1}, 2, {"Gas": "Hydrogen"}),
        ({"mCarrierGas3": 2}, 3, {"Gas": "Nitrogen"}),
        ({"mCarrierGas4": 3}, 4, {"Gas": "Argon"}),
        ({"mCarrierGas1": 4}, 1, {"Gas": "Unknown"}),
        ({"mCarrierGas4": -1}, 4, {"Gas": "Unknown"}),
        ({"mInstalled3": 7}, 3, {"Installed": True, "Disabled": False}),
        ({"mInstalled1": 0}, 1, {"Installed": False}),
        ({"mColumnHeader2": -1}, 2, {"Installed": True, "Disabled": True}),
        ({"mAM_SerialNumber3": -5, "mAM_PN3": 2147483647}, 3, {"Serial": -5, "PN": 2147483647}),
    ],
)
def test_channels(
    tool: Tool,
    simulator: StartSimulator,
    settings: dict[str, int],
    channel: int,
    expected: dict[str, Any],
) -> None:
    controller = simulator()
    before = tool("-s", controller.address, "-g").document
    for name, value in settings.items():
        controller.control("set", name, str(value))
    before[f"Channel{channel}"].update(expected)
    assert tool("-s", controller.address, "-g").document == before


@pytest.mark.parametrize("flag, told", [(0, False), (1, True), (7, True), (-1, True)])
def test_stream_selector(tool: Tool, simulator: StartSimulator, flag: int, told: bool) -> None:
    controller = simulator()
    controller.control("set", "mStreamConfigured", str(flag))
    controller.control("set", "mStreamMaxNr", "46")
    document = tool("-s", controller.address, "-g").document
    assert (document["Stream_configured"], document["Stream_max"]) == (told, 46)
