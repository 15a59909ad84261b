"""The schemas of the documents: usable by every validator, and strict."""

import copy
from collections.abc import Iterator
from typing import Any

import jsonschema
import pytest
from programs import DOWNLOADABLE, SCHEMAS, load_schema, parse_strictly

# Keywords with the same meaning in draft-04 and draft-07.
COMMON_KEYWORDS = {
    "$schema", "$ref", "definitions", "title", "description",
    "type", "enum", "minimum", "maximum", "maxLength", "pattern",
    "properties", "required", "additionalProperties", "items", "minItems", "maxItems", "anyOf",
}

NAMES = sorted(path.name.removesuffix(".schema.json") for path in SCHEMAS.glob("*.schema.json"))
EXAMPLES = sorted(path.name.removesuffix(".json") for path in (SCHEMAS / "examples").iterdir())


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
            # Documents have no other members; files may have them, and they are ignored.
            assert inner["additionalProperties"] is name.endswith("-file"), inner
        assert "enum" not in inner or "type" in inner, inner
        # rapidjson supports anchors only at the ends of a pattern.
        assert not set("^$") & set(inner.get("pattern", "")[1:-1]), inner


def test_same_name_is_the_same_definition() -> None:
    definitions: dict[str, Any] = {}
    for name in NAMES:
        for key, definition in load_schema(name).get("definitions", {}).items():
            assert definitions.setdefault(key, definition) == definition, (name, key)


def fits(name: str, document: dict[str, Any]) -> bool:
    verdicts = {
        validator(load_schema(name)).is_valid(document)
        for validator in [jsonschema.Draft4Validator, jsonschema.Draft7Validator]
    }
    assert len(verdicts) == 1
    return verdicts.pop()


def example(name: str) -> dict[str, Any]:
    return parse_strictly((SCHEMAS / "examples" / f"{name}.json").read_bytes())


def test_every_schema_has_an_example() -> None:
    assert EXAMPLES == NAMES


@pytest.mark.parametrize("name", NAMES)
def test_example(name: str) -> None:
    """It matches its own schema and, if it is also a valid file, that of the file, but no other."""
    fitting = [other for other in NAMES if fits(other, example(name))]
    assert set(fitting) == {name, DOWNLOADABLE.get(name, name)}


def changed(name: str, path: str, value: Any) -> dict[str, Any]:
    """An example with one member changed, or removed if the value is `...`."""
    document = copy.deepcopy(example(name))
    *folders, key = path.split("/")
    parent: Any = document
    for folder in folders:
        parent = parent[int(folder) if isinstance(parent, list) else folder]
    if value is ...:
        del parent[key]
    else:
        parent[key] = value
    return document


def status(path: str, value: Any) -> dict[str, Any]:
    return changed("status", path, value)


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


LINE = {"Type": "Blank", "Repeat": 1, "Stream": 2, "Slot": 3, "Flush_time": 0.5}


@pytest.mark.parametrize(
    "name, path, value, good",
    [
        ("configuration", "Inst_name", "", True),
        ("configuration", "Channel4/Gas", "Unknown", True),
        ("configuration", "Channel4/Gas", "Neon", False),
        ("configuration", "Channel4", ..., False),
        ("configuration", "Channel1/PN", "7300", False),
        ("configuration", "Channel1/PN", 2147483648, False),
        ("configuration", "Channel1/Installed", 1, False),
        ("configuration", "Channel2/Description", None, False),
        ("configuration", "Inst_serial", 1.5, False),
        ("configuration", "Stream_configured", "true", False),
        ("configuration", "Boot_name", "x", False),
        ("alarms", "total", 2147483647, True),
        ("alarms", "total", 0, False),
        ("alarms", "total", -1, False),
        ("alarms", "total", ..., False),
        ("alarms", "rows", ..., False),
        ("alarms", "rows", [], False),
        ("alarms", "rows", [{}], False),
        ("alarms", "rows/0/SampleType", "None", True),
        ("alarms", "rows/0/SampleType", "all", False),
        ("alarms", "rows/0/GroupStr", "Unknown", True),
        ("alarms", "rows/0/GroupStr", "8. GC status", False),
        ("alarms", "rows/0/ParamStr", "--", True),
        ("alarms", "rows/0/ParamStr", "-5. ", True),
        ("alarms", "rows/0/ParamStr", "5. %s\n", True),
        ("alarms", "rows/0/ParamStr", "", False),
        ("alarms", "rows/0/ParamStr", "Methane", False),
        ("alarms", "rows/0/ParamStr", "---", False),
        ("alarms", "rows/0/Triggered", 0, False),
        ("alarms", "rows/0/Triggered", ..., False),
        ("sequence", "rows", [LINE] * 20, True),
        ("sequence", "rows", [LINE] * 21, False),
        ("sequence", "rows", [], False),
        ("sequence", "rows", ..., False),
        ("sequence", "total", 0, False),
        ("sequence", "total", 25, True),
        ("sequence", "Continuous", ..., False),
        ("sequence", "Continuous", 0, False),
        ("sequence", "rows/2/Type", "None", True),
        ("sequence", "rows/2/Type", "blank", False),
        ("sequence", "rows/2/Flush_time", "-", True),
        ("sequence", "rows/2/Flush_time", "1", False),
        ("sequence", "rows/2/Flush_time", 2, True),
        ("sequence", "rows/2/Repeat", 1.5, False),
        ("sequence", "rows/2/Slot", ..., False),
        ("sequence", "rows/2/Calib", 1, False),
        ("calibration", "rows", [], True),
        ("calibration", "rows", ..., False),
        ("calibration", "total", 401, False),
        ("calibration", "total", -1, False),
        ("calibration", "rows/0/Channel", 5, False),
        ("calibration", "rows/0/Channel", 0, False),
        ("calibration", "rows/0/ID", 101, False),
        ("calibration", "rows/0/PkName", "x" * 21, False),
        ("calibration", "rows/0/PkName", "", True),
        ("calibration", "rows/0/Ret_time", "-", True),
        ("calibration", "rows/0/Linear", None, False),
        ("calibration", "rows/0/Level_amt", ..., False),
        ("sequence-file", "Table_repeat", ..., False),
        ("sequence-file", "Table_repeat", "5", False),
        ("sequence-file", "Table_repeat", 2147483648, False),
        ("sequence-file", "total", ..., False),
        ("sequence-file", "total", -1, True),
        ("sequence-file", "Continuous", ..., True),
        ("sequence-file", "Continuous", 1, False),
        ("sequence-file", "rows", ..., True),
        ("sequence-file", "rows", [{}] * 30, True),
        ("sequence-file", "rows", [5], False),
        ("sequence-file", "rows", {}, False),
        ("sequence-file", "rows/0/Type", "None", True),
        ("sequence-file", "rows/0/Type", "calibration", False),
        ("sequence-file", "rows/0/Flush_time", "-", True),
        ("sequence-file", "rows/0/Flush_time", "2", False),
        ("sequence-file", "rows/0/Comment", [], True),
        ("calibration-file", "total", ..., False),
        ("calibration-file", "total", 500, True),
        ("calibration-file", "rows", ..., True),
        ("calibration-file", "rows", [None], False),
        ("calibration-file", "rows/0/Level_amt", "-", True),
        ("calibration-file", "rows/0/Level_amt", ..., False),
        ("calibration-file", "rows/0/Channel", 1.5, False),
        ("calibration-file", "rows/0/ID", "2", False),
        ("calibration-file", "rows/0/PkName", 5, True),
    ],
)
def test_changed(name: str, path: str, value: Any, good: bool) -> None:
    assert fits(name, changed(name, path, value)) is good


def test_empty_tables() -> None:
    assert fits("alarms", {"total": 0})
    assert not fits("alarms", {"total": 1})
    assert fits("sequence", {"Table_repeat": 1, "Continuous": False, "total": 0})
    assert fits("sequence", {"Table_repeat": 1, "Continuous": False, "total": -5})
    assert not fits("sequence", {"Table_repeat": 1, "Continuous": False, "total": 1})


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
        (0, "Success!", True),
        (0, "Success", True),
        (1, "Success!", False),
        (0, "Format Invalid", True),
        (2, "Format invalid", True),
        (0, "Format invalid", False),
        (2, "Format Invalid", False),
        (206, "Refused: unable to set table repeat", True),
        (206, "Refused: unabled to clear orignal table", True),
        (206, "Refused: unable to insert new sequence", True),
        (4294967295, "Refused: unable to set sequence line params", True),
        (0, "Refused: unable to set sequence line params", False),
        (206, "Refused: unable to clear original table", False),
        (204, "Refused: Unable to set new level for chan[2] peak[7]", True),
        (204, "Refused: Unable to set new level for chan[-1] peak[0]", True),
        (0, "Refused: Unable to set new level for chan[2] peak[7]", False),
        (204, "Refused: Unable to set new level for chan[2] peak[]", False),
        (204, "Refused: Unable to set new level for chan[02] peak[7]", False),
        (204, "x Refused: Unable to set new level for chan[2] peak[7]", False),
    ],
)
def test_result(code: Any, words: str, good: bool) -> None:
    assert fits("result", {"ErrorCode": code, "Msg": words}) is good
    assert not fits("result", {"ErrorCode": code})
    assert not fits("result", {"ErrorCode": code, "Msg": words, "Detail": ""})
