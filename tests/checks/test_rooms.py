"""What the check of includes finds in test folders, and in the project."""

import subprocess
from pathlib import Path

import pytest
from rooms import ROOMS, find_faults

CHECK = Path(__file__).with_name("rooms.py")

# Includes that are allowed, with different names in every room.
SOUND = {
    "include/Interface.h": "#include <string>\n",
    "Source/Report.h": '#include <Interface.h>\n#include "Section.h"\n',
    "Source/Section.h": "",
    "Source/Section.cpp": '#include "Section.h"\n',
    "simulator/json/Text.h": "#include <rapidjson/document.h>\n",
    "simulator/wire/Frame.h": "#include <Interface.h>\n",
    "simulator/libraries/client/Client.cpp": '#include <Frame.h>\n#include "Link.h"\n',
    "simulator/libraries/client/Link.h": "",
    "simulator/controller/model/State.h": "#include <Frame.h>\n#include <Text.h>\n",
    "simulator/controller/Server.h": '#include "Link.h"\n#include "model/State.h"\n',
    "simulator/controller/Link.h": "",
    "web/gateway/Lock.h": "",
    "tests/unit/ReportTest.cpp": '#include "Report.h"\n#include <Link.h>\n#include <Lock.h>\n',
    "tests/unit/support/Frames.h": "#include <Frame.h>\n",
    "benchmarks/floor.cpp": "#include <Interface.h>\n#include <Lock.h>\n",
    "build/dev/Generated.h": '#include "../anything.h"\n',
}


def faults_of(root: Path, changes: dict[str, str]) -> list[str]:
    for name, text in {**SOUND, **changes}.items():
        (root / name).parent.mkdir(parents=True, exist_ok=True)
        (root / name).write_text(text)
    return find_faults(root)


def test_what_may_be_is_no_fault(tmp_path: Path) -> None:
    assert faults_of(tmp_path, {}) == []


@pytest.mark.parametrize("include", ['"../Section.h"', "<../Section.h>", '"units/../Section.h"'])
def test_an_include_that_runs_up(tmp_path: Path, include: str) -> None:
    found = faults_of(tmp_path, {"Source/units/Unit.cpp": f"  # include {include}\n"})
    assert f"Source/units/Unit.cpp: {include[1:-1]} runs up" in found


@pytest.mark.parametrize(
    ("room", "name", "other"),
    [
        ("include", "Report.h", "Source/Report.h"),
        ("Source", "Frame.h", "simulator/wire/Frame.h"),
        ("Source", "Lock.h", "web/gateway/Lock.h"),
        ("simulator/json", "Frame.h", "simulator/wire/Frame.h"),
        ("simulator/wire", "Text.h", "simulator/json/Text.h"),
        ("simulator/libraries", "State.h", "simulator/controller/model/State.h"),
        ("simulator/libraries", "Text.h", "simulator/json/Text.h"),
        ("simulator/controller/model", "Server.h", "simulator/controller/Server.h"),
        ("simulator/controller", "Report.h", "Source/Report.h"),
        ("web/gateway", "Interface.h", "include/Interface.h"),
        ("web/gateway", "Section.h", "Source/Section.h"),
        ("benchmarks", "support/Frames.h", "tests/unit/support/Frames.h"),
        ("simulator/controller", "Frames.h", "tests/unit/support/Frames.h"),
    ],
)
def test_an_include_against_the_order(tmp_path: Path, room: str, name: str, other: str) -> None:
    found = faults_of(tmp_path, {f"{room}/New.cpp": f"#include <{name}>\n"})
    assert found == [f"{room}/New.cpp: {room} may not know {other}"]


def test_a_name_that_two_rooms_have(tmp_path: Path) -> None:
    """It is ambiguous which is meant, unless one of them is in the same folder."""
    found = faults_of(tmp_path, {"simulator/controller/model/New.h": '#include "Link.h"\n'})
    assert len(found) == 2
    assert all("simulator/controller/model may not know" in fault for fault in found)


def test_two_modules_in_a_circle(tmp_path: Path) -> None:
    """Through a .cpp file, which no compiler reports."""
    found = faults_of(tmp_path, {"Source/Section.cpp": '#include "Report.h"\n'})
    assert found == ["circle: Source/Report -> Source/Section -> Source/Report"]


def test_three_modules_in_a_circle(tmp_path: Path) -> None:
    found = faults_of(
        tmp_path,
        {
            "web/gateway/Lock.h": '#include "Queue.h"\n',
            "web/gateway/Queue.h": "",
            "web/gateway/Queue.cpp": '#include "Queue.h"\n#include "Turn.h"\n',
            "web/gateway/Turn.h": '#include "Lock.h"\n',
        },
    )
    gateway = "web/gateway"
    assert found == [
        f"circle: {gateway}/Lock -> {gateway}/Queue -> {gateway}/Turn -> {gateway}/Lock"
    ]


def test_a_file_in_no_room(tmp_path: Path) -> None:
    assert faults_of(tmp_path, {"tools/New.cpp": ""}) == ["tools/New.cpp: in no room"]


def test_rooms_know_only_those_above_them() -> None:
    rooms = list(ROOMS)
    for room, known in ROOMS.items():
        assert set(known) <= set(rooms[: rooms.index(room)])


def test_a_fault_fails(tmp_path: Path) -> None:
    faults_of(tmp_path, {"tools/New.cpp": ""})
    result = subprocess.run([CHECK, tmp_path], capture_output=True, text=True)
    assert (result.returncode, result.stderr) == (1, "tools/New.cpp: in no room\n")


def test_the_project_is_sound() -> None:
    result = subprocess.run([CHECK], capture_output=True, text=True)
    assert (result.returncode, result.stderr) == (0, "")
