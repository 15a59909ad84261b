"""The schemas of the documents: readable everywhere, and strict."""

import copy
import json
from collections.abc import Iterator
from pathlib import Path
from typing import Any

import jsonschema
import pytest
from programs import SCHEMAS, load_schema

# What draft-04 and draft-07 both know and mean the same by.
COMMON_KEYWORDS = {
    "$schema", "$ref", "definitions", "title", "description",
    "type", "enum", "minimum", "maximum", "maxLength", "pattern",
    "properties", "required", "additionalProperties", "items", "minItems", "maxItems", "anyOf",
}

NAMES = sorted(path.name.removesuffix(".schema.json") for path in SCHEMAS.glob("*.schema.json"))
EVERYDAY = Path(__file__).parent / "documents" / "everyday.json"


def subschemas(schema: dict[str, Any]) -> Iterator[dict[str, Any]]:
    yield schema
    for keyword in ["definitions", "properties"]:
        for inner in schema.get(keyword, {}).values():
            yield from subschemas(inner)
    for inner in schema.get("anyOf", []):
        yield from subschemas(inner)


@pytest.mark.parametrize("name", NAMES)
def test_every_reader_can_take_it(name: str) -> None:
    schema = load_schema(name)
    jsonschema.Draft4Validator.check_schema(schema)
    jsonschema.Draft7Validator.check_schema(schema)
    for inner in subschemas(schema):
        assert set(inner) <= COMMON_KEYWORDS, inner
        if inner.get("type") == "object" and "properties" in inner:
            assert inner["additionalProperties"] is False, inner


def fits(name: str, document: dict[str, Any]) -> bool:
    verdicts = {
        validator(load_schema(name)).is_valid(document)
        for validator in [jsonschema.Draft4Validator, jsonschema.Draft7Validator]
    }
    assert len(verdicts) == 1
    return verdicts.pop()


def status(path: str, value: Any) -> dict[str, Any]:
    """A good status document with one member changed, or taken away: ... stands for that."""
    document = copy.deepcopy(json.loads(EVERYDAY.read_text(encoding="utf-8")))
    document["GC_time"] = "5-3-2024 07:04:09"
    *folders, key = path.split("/")
    parent = document
    for folder in folders:
        parent = parent[folder]
    if value is ...:
        del parent[key]
    else:
        parent[key] = value
    return document


@pytest.mark.parametrize(
    "path, value",
    [
        ("GC_time", "31-12-1970 23:59:59"),
        ("Application", ""),
        ("Error_code", -2147483648),
        ("Ambient_temp", 2147483647),
        ("Ambient_press", "-"),
        ("Ambient_press", 101),
        ("Channel1/TCD/Auto_zero", "-"),
        ("Sample_line_temp", {"Setpoint": "-", "Actual": "-"}),
        ("Channel2", ...),
        ("GC_state", "Running"),
        ("GC_state", "Running 1s"),
        ("GC_state", "Running -2147483648s"),
        ("GC_state", "Cleaning 0 min"),
        ("Auto_state", "Run Delay 2147483647s"),
        ("Auto_state", "Flushing Stream 0s"),
    ],
)
def test_good_status(path: str, value: Any) -> None:
    assert fits("status", status(path, value))


@pytest.mark.parametrize(
    "path, value",
    [
        ("GC_time", "05-3-2024 07:04:09"),
        ("GC_time", "5-13-2024 07:04:09"),
        ("GC_time", "5-3-2024 7:04:09"),
        ("GC_time", "5-3-2024 24:00:00"),
        ("GC_time", ""),
        ("GC_time", ...),
        ("Application", None),
        ("Host", "offline"),
        ("Total_run_time", -1),
        ("Total_run_time", 2147483648),
        ("Run_time", 1.5),
        ("Error_code", "0"),
        ("Error_code", -2147483649),
        ("Error_str", "x" * 128),
        ("Alarm_overall", 0),
        ("Run_type", "analysis"),
        ("GC_state", "Running 0s"),
        ("GC_state", "Running s"),
        ("GC_state", "Cleaning"),
        ("GC_state", "Cleaning 5min"),
        ("GC_state", "x Running 5s"),
        ("Ext_ready_in", True),
        ("Auto_state", "Run Delay"),
        ("Auto_state", "Run Delay -1s"),
        ("Service_switch", "on"),
        ("Ambient_press", "101.3"),
        ("Ambient_press", "--"),
        ("Ambient_press", None),
        ("Ambient_temp", "-"),
        ("Sample_line_temp", ...),
        ("Sample_line_temp/Actual", ...),
        ("Sample_line_temp/Unit", "C"),
        ("Channel1/TCD", ...),
        ("Channel1/TCD/State", "OK"),
        ("Channel1/TCD/Calibrated", "On"),
        ("Channel1/Column_temp", 60.0),
        ("Channel5", {}),
        ("channel1", {}),
    ],
)
def test_bad_status(path: str, value: Any) -> None:
    assert not fits("status", status(path, value))


@pytest.mark.parametrize(
    "code, words, good",
    [
        (1, "GC DLL error!", True),
        (10053, "Unable to connect to GC!", True),
        (0, "Accepted", True),
        (4294967295, "Refused", True),
        (10053, "GC DLL error!", False),
        (0, "Unable to connect to GC!", False),
        (4294967296, "Refused", False),
        (-1, "Refused", False),
        ("0", "Accepted", False),
        (0, "accepted", False),
        (0, "", False),
    ],
)
def test_result(code: Any, words: str, good: bool) -> None:
    assert fits("result", {"ErrorCode": code, "Msg": words}) is good
    assert not fits("result", {"ErrorCode": code})
    assert not fits("result", {"ErrorCode": code, "Msg": words, "Detail": ""})
