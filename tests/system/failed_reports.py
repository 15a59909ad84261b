"""Reports of which some requested data did not arrive."""

import copy
from collections.abc import Mapping, Sequence
from typing import Any

from failures import TABLE

Document = dict[str, Any]

READS_BEFORE_ROWS = {"alarms": 1, "sequence report": 1, "calibration report": 0}


def plain(document: Document) -> Document:
    """The document without the time of day."""
    return {key: value for key, value in document.items() if key != "GC_time"}


def without_reals(document: Any) -> Any:
    if isinstance(document, dict):
        return {key: without_reals(value) for key, value in document.items()}
    if isinstance(document, list):
        return [without_reals(value) for value in document]
    return "-" if isinstance(document, float) else document


def put(document: Any, pointer: str, value: Any) -> None:
    """Replaces the value at a JSON pointer, if there is one; None removes it."""
    *path, last = pointer[1:].split("/")
    for key in path:
        document = document.get(key, {}) if isinstance(document, dict) else document[int(key)]
    if isinstance(document, list):
        del document[int(last) :]
    elif value is None:
        document.pop(last, None)
    elif last in document:
        document[last] = value


def unread(report: str, document: Document, read: int) -> Document:
    """The document if no record of a read, counted from 0, was answered."""
    row = read - READS_BEFORE_ROWS.get(report, read + 1)
    for pointer, value in TABLE["unread"][report].items():
        if ("#" in pointer) is not (row >= 0):
            continue
        for channel in range(1, 5) if "%" in pointer else [0]:
            put(document, pointer.replace("%", str(channel)).replace("#", str(row)), value)
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
