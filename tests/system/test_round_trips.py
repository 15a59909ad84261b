"""Printed reports and random tables, downloaded: the instrument returns what it was sent."""

import random
from typing import Any

import pytest
from conftest import Download, StartSimulator
from programs import Tool, expect_verdict

TYPES = ["Analysis", "Calibration", "Blank", "Verification"]
EMPTY_LINE = {"Type": "Analysis", "Repeat": 0, "Stream": 0, "Slot": 0, "Flush_time": 0.0}
TABLES = 12  # in each test; each seed makes different ones
SEEDS = [1, 2, 3]


@pytest.mark.parametrize("scenario", ["everyday", "four-channel", "bare", "error"])
def test_sequence(
    tool: Tool, simulator: StartSimulator, download: Download, scenario: str
) -> None:
    controller = simulator(scenario)
    saved = tool("-s", controller.address, "-q").stdout
    other = {"Table_repeat": 99, "Continuous": saved.count(b"true") == 0, "total": 0}
    expect_verdict(download(controller, "-Q", other), 0, "Success!")
    assert tool("-s", controller.address, "-q").stdout != saved
    expect_verdict(download(controller, "-Q", saved), 0, "Success!")
    assert tool("-s", controller.address, "-q").stdout == saved


@pytest.mark.parametrize("scenario", ["everyday", "four-channel", "error"])
def test_calibration(
    tool: Tool, simulator: StartSimulator, download: Download, scenario: str
) -> None:
    """The download restores what clearing removed."""
    controller = simulator(scenario)
    saved = tool("-s", controller.address, "-c").stdout
    expect_verdict(download(controller, "-C", {"total": 0}), 0, "Success")
    rows = tool("-s", controller.address, "-c").document["rows"]
    assert {row["Level_amt"] for row in rows} == {0.0}
    expect_verdict(download(controller, "-C", saved), 0, "Success")
    assert tool("-s", controller.address, "-c").stdout == saved


def amount(source: random.Random, most: float) -> float:
    """Integers, short and long numbers, small and large ones, of at most 15 digits.

    The tool reads those exactly; a number of 17 digits may become an adjacent double.
    """
    kind = source.randrange(5)
    if kind == 0:
        return source.randint(0, int(most))
    if kind == 1:
        return round(source.uniform(0.0, most), source.randint(1, 4))
    if kind == 2:
        return float(f"{10.0 ** -source.randint(0, 7):.15g}")
    return float(f"{source.choice([0.0, most, source.uniform(0.0, most)]):.15g}")


def random_line(source: random.Random) -> dict[str, Any]:
    line = {
        "Type": source.choice([*TYPES, "None"]),
        "Repeat": source.randint(0, 999),
        "Stream": source.randint(0, 46),
        "Slot": source.randint(0, 10),
        "Flush_time": amount(source, 60.0),
    }
    members = list(line.items())
    source.shuffle(members)
    return dict(members[: source.choice([5, 5, 5, source.randint(0, 5)])])


def told_line(line: dict[str, Any]) -> dict[str, Any]:
    told = {**EMPTY_LINE, **line}
    told["Flush_time"] = float(told["Flush_time"])
    if told["Type"] == "None":
        told["Type"] = "Analysis"
    return told


@pytest.mark.parametrize("seed", SEEDS)
def test_random_sequences(
    tool: Tool, simulator: StartSimulator, download: Download, seed: int
) -> None:
    source = random.Random(seed)
    controller = simulator()
    for _ in range(TABLES):
        lines = [random_line(source) for _ in range(source.choice([0, 1, 2, 5, 20, 25]))]
        total = source.choice([len(lines), len(lines), source.randint(-1, 30)])
        table: dict[str, Any] = {
            "Table_repeat": source.randint(0, 999), "total": total, "rows": lines
        }
        if source.random() < 0.7:
            table["Continuous"] = source.random() < 0.5
        expect_verdict(download(controller, "-Q", table), 0, "Success!")

        told = [told_line(line) for line in lines[: max(min(total, 20), 0)]] or [EMPTY_LINE]
        report = tool("-s", controller.address, "-q")
        assert report.document == {
            "Table_repeat": table["Table_repeat"],
            "Continuous": table.get("Continuous", False),
            "total": len(told),
            "rows": told,
        }, table
        expect_verdict(download(controller, "-Q", report.stdout), 0, "Success!")
        assert tool("-s", controller.address, "-q").stdout == report.stdout


@pytest.mark.parametrize("seed", SEEDS)
def test_random_levels(
    tool: Tool, simulator: StartSimulator, download: Download, seed: int
) -> None:
    source = random.Random(seed)
    controller = simulator()
    expected = tool("-s", controller.address, "-c").document
    peaks = [(row["Channel"], row["ID"]) for row in expected["rows"]]
    for _ in range(TABLES):
        chosen = [source.choice(peaks) for _ in range(source.choice([0, 1, 5, 11, 40]))]
        rows = [
            {"Channel": channel, "ID": number, "Level_amt": amount(source, 1e6)}
            for channel, number in chosen
        ]
        total = source.choice([len(rows), len(rows), source.randint(-1, 50)])
        table = {"total": total, "rows": rows}
        expect_verdict(download(controller, "-C", table), 0, "Success")

        levels = dict.fromkeys(peaks, 0.0)
        for row in rows[: max(total, 0)]:
            levels[row["Channel"], row["ID"]] = row["Level_amt"]
        for told, level in zip(expected["rows"], levels.values(), strict=True):
            told["Level_amt"] = level
        report = tool("-s", controller.address, "-c")
        assert report.document == expected, table
        expect_verdict(download(controller, "-C", report.stdout), 0, "Success")
        assert tool("-s", controller.address, "-c").stdout == report.stdout


def test_numbers_of_all_digits(
    tool: Tool, simulator: StartSimulator, download: Download
) -> None:
    """They are read with a relative error of at most a few units in the last place."""
    source = random.Random(4)
    controller = simulator()
    rows = [
        {"Channel": 1 + n // 4, "ID": 1 + n % 4, "Level_amt": source.uniform(0.0, 1e6)}
        for n in range(8)
    ]
    expect_verdict(download(controller, "-C", {"total": 8, "rows": rows}), 0, "Success")
    told = tool("-s", controller.address, "-c").document["rows"][:8]
    amounts = [row["Level_amt"] for row in rows]
    assert [row["Level_amt"] for row in told] == pytest.approx(amounts, rel=1e-15, abs=0.0)
