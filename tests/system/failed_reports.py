"""Reports of which some requested data did not arrive."""

import copy
import json
from collections.abc import Mapping, Sequence
from pathlib import Path
from typing import Any

Document = dict[str, Any]

UNANSWERED = Path(__file__).parent / "documents" / "unanswered.json"
# A row for which nothing arrived, without the members that identify it.
EMPTY_ROWS: Mapping[str, Document] = {
    "alarms": {
        "SampleType": "Analysis", "GroupID": 0, "GroupStr": "0. None",
        "ParamID": 0, "ParamStr": "0. None", "Triggered": False,
    },
    "sequence report": {
        "Type": "Analysis", "Repeat": 0, "Stream": 0, "Slot": 0, "Flush_time": 0.0
    },
    "calibration report": {"PkName": "", "Ret_time": 0.0, "Level_amt": 0.0, "Linear": 0.0},
}
READS_BEFORE_ROWS = {"alarms": 1, "sequence report": 1, "calibration report": 0}
EMPTY_CHANNEL = {"Installed": False, "Disabled": False, "Serial": 0, "PN": 0, "Gas": "Helium"}


def plain(document: Document) -> Document:
    """The document without the time of day."""
    return {key: value for key, value in document.items() if key != "GC_time"}


def without_reals(document: Any) -> Any:
    if isinstance(document, dict):
        return {key: without_reals(value) for key, value in document.items()}
    if isinstance(document, list):
        return [without_reals(value) for value in document]
    return "-" if isinstance(document, float) else document


def unread(report: str, document: Document, read: int) -> Document:
    """The document if no record of a read, counted from 0, was answered."""
    if report == "live status":
        return plain(json.loads(UNANSWERED.read_text(encoding="utf-8")))
    if report == "configuration":
        document.update(Inst_serial=0, Stream_configured=False, Stream_max=0)
        for channel in range(1, 5):
            document[f"Channel{channel}"].update(EMPTY_CHANNEL)
        return document
    row = read - READS_BEFORE_ROWS[report]
    if row < 0:  # the header of the sequence; without a stream selector it has one line
        rows = document["rows"][:1]
        return {"Table_repeat": 0, "Continuous": False, "total": 1, "rows": rows}
    document["rows"][row].update(EMPTY_ROWS[report])
    return document


def with_other_reals(report: str, document: Document, read: int) -> Document:
    """The document if no real value in a read, counted from 0, was finite."""
    if report == "live status":
        return without_reals(document)
    row = read - READS_BEFORE_ROWS.get(report, read + 1)
    if 0 <= row < len(document.get("rows", [])):
        document["rows"][row] = without_reals(document["rows"][row])
    return document


def without_objects(report: str, document: Document, missing: Sequence[int]) -> Document:
    """`missing`: indices, from 0, of the objects that did not arrive."""
    if report == "live status":
        return {**document, "Application": ""}
    if 0 in missing:
        document["Inst_name"] = ""
    if 1 in missing:
        document["Site_info"] = document["Inst_name"]
    for channel in range(1, 5):
        if channel + 1 in missing:
            document[f"Channel{channel}"]["Description"] = ""
    return document


def without_channels(document: Document, missing: Sequence[int]) -> Document:
    """`missing`: the channels whose number of peaks is unknown."""
    rows = [row for row in document["rows"] if row["Channel"] not in missing]
    return {"total": len(rows), "rows": rows}


def document_after(
    report: str,
    good: Document,
    made: Sequence[Mapping[str, Any]],
    kind: str,
    loses: bool,
) -> Document | None:
    """The document expected instead of a good run's; None if only its schema is known.

    `made`: the calls up to the one with this kind of fault. `loses`: the connection is lost, too.
    """
    document = copy.deepcopy(plain(good))
    hit = made[-1]
    nth = sum(call["call"] == hit["call"] for call in made) - 1
    last = 10 if loses else nth + 1
    if hit["call"] == "Object":
        return document if kind == "swap" else without_objects(report, document, range(nth, last))
    if hit["call"] == "ProgramInfo":
        return without_channels(document, range(nth + 1, last + 1))
    if hit["call"] == "Disconnect":
        return document
    if kind == "value":
        return with_other_reals(report, document, nth)
    if report == "alarms" and hit["records"][0]["id"] == 2021:
        # After the swap, the name begins with its terminating zero.
        document["rows"][-1]["ParamStr"] = "2. " if kind == "swap" else "2. Unknown"
        return document
    if kind != "swap":
        return unread(report, document, nth)
    return {"total": 0} if report == "alarms" and nth == 0 else None
