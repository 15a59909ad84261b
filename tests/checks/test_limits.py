"""Limits that several rooms must agree on: each is stated once per room, and all are the same.

Programs need a constant at compile time, and documents of the interface a number: neither can include
the other.
"""

import json
import re
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
MODEL = "simulator/controller/model"

# Where each limit is stated: a file, and either a pattern with one group, or a place in a JSON document.
LIMITS: dict[str, dict[tuple[str, str], int]] = {
    "streams": {
        ("Source/CommandLine.cpp", r"cHighestStream = (\d+);"): 0,
        ("docs/schemas/command-run.schema.json", "/definitions/stream/maximum"): 0,
        ("docs/schemas/command-stream.schema.json", "/definitions/stream/maximum"): 0,
        ("simulator/scenarios/scenario.schema.json", "/definitions/stream/maximum"): 0,
        (f"{MODEL}/Parameters.cpp", r"cHighestStream = (\d+);"): 0,
    },
    "slots of solutions": {
        ("Source/CommandLine.cpp", r"cHighestSlot = (\d+);"): 0,
        ("docs/schemas/command-solution.schema.json", "/properties/solution/maximum"): 0,
        ("simulator/scenarios/scenario.schema.json", "/definitions/slot/maximum"): 0,
        # The number of slots, which are counted from 0.
        (f"{MODEL}/Parameters.h", r"cSolutionSlots = (\d+);"): -1,
    },
    "lines of the sequence": {
        ("Source/SecSequenceTbl.cpp", r"cMaxLines = (\d+);"): 0,
        ("docs/schemas/sequence.schema.json", "/properties/rows/maxItems"): 0,
        ("simulator/scenarios/scenario.schema.json", "/properties/sequence/maxItems"): 0,
        (f"{MODEL}/Parameters.h", r"cSequenceLines = (\d+);"): 0,
    },
    "peaks of a channel": {
        ("Source/SecCalibTbl.cpp", r"cMaxPeaks = (\d+);"): 0,
        ("docs/schemas/calibration.schema.json", "/definitions/peak/properties/ID/maximum"): 0,
    },
    "peaks": {
        (f"{MODEL}/Parameters.h", r"cPeaks = (\d+);"): 0,
        ("Source/SecCalibTbl.cpp", r"cMaxRows = (\d+);"): 0,
        ("docs/schemas/calibration.schema.json", "/properties/total/maximum"): 0,
        ("docs/schemas/calibration.schema.json", "/properties/rows/maxItems"): 0,
        ("simulator/scenarios/scenario.schema.json", "/properties/peaks/maxItems"): 0,
    },
    "alarms": {
        ("Source/SecAlarm.cpp", r"cMaxRows = (\d+);"): 0,
        ("docs/schemas/alarms.schema.json", "/properties/rows/maxItems"): 0,
        ("simulator/scenarios/scenario.schema.json", "/properties/alarms/maxItems"): 0,
        (f"{MODEL}/Parameters.h", r"cAlarmRows = (\d+);"): 0,
    },
    "earlier tables": {
        ("web/gateway/Backups.h", r"cMostBackups = (\d+);"): 0,
        ("docs/schemas/backups.schema.json", "/properties/backups/maxItems"): 0,
    },
    "octets of a body": {
        ("web/gateway/Request.cpp", r"cLargestBody = (\d+);"): 0,
        ("docs/openapi.json", "/components/responses/ContentTooLarge/description"): 0,
        ("docs/openapi.json", "/components/responses/ContentTooLarge/x-octets"): 0,
    },
}


def limit_at(file: str, place: str) -> int:
    text = (ROOT / file).read_text(encoding="utf-8")
    if not place.startswith("/"):
        found = re.findall(place, text)
        assert len(found) == 1, f"{file}: {place} found {len(found)} times"
        return int(found[0])
    value = json.loads(text)
    for key in place[1:].split("/"):
        value = value[key]
    if isinstance(value, str):
        value = int(re.findall(r"[\d,]+", value)[0].replace(",", ""))
    return int(value)


@pytest.mark.parametrize("name", LIMITS)
def test_same_everywhere(name: str) -> None:
    limits = {
        f"{file}: {place}": limit_at(file, place) + more
        for (file, place), more in LIMITS[name].items()
    }
    assert len(set(limits.values())) == 1, limits
