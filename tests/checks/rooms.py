#!/usr/bin/env -S /usr/bin/python3 -B
"""Checks what the C++ files include: tests/checks/rooms.py [FOLDER]

No include contains "../", no modules (a header with its .cpp) include each other in a circle, and no
room includes from a room that it may not know.
"""

import os
import re
import sys
from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path, PurePosixPath

# Each room, and those that it may know. Tool, simulator and gateway may not know each other: what they
# have in common besides include/, such as the repair of UTF-8 for an answer, is in each of them.
ROOMS: dict[str, tuple[str, ...]] = {
    "include": (),
    "Source": ("include",),
    "simulator/json": (),
    "simulator/wire": ("include",),
    "simulator/libraries": ("include", "simulator/wire"),
    "simulator/controller/model": ("include", "simulator/wire", "simulator/json"),
    "simulator/controller": (
        "include",
        "simulator/wire",
        "simulator/json",
        "simulator/controller/model",
    ),
    "web/gateway": (),
}
ROOMS["benchmarks"] = tuple(ROOMS)
ROOMS["tests"] = tuple(ROOMS)

NOT_OURS = {"build", "node_modules"}
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"]+)[>"]', re.MULTILINE)


@dataclass(frozen=True)
class Include:
    file: str
    name: str
    """As written in the file."""
    found: tuple[str, ...]
    """Our files that it may refer to; empty for a library's header."""


def room_of(file: str) -> str | None:
    """The innermost room that a file is in."""
    folders = (str(folder) for folder in PurePosixPath(file).parents)
    return next((folder for folder in folders if folder in ROOMS), None)


def module_of(file: str) -> str:
    return str(PurePosixPath(file).with_suffix(""))


def find_files(root: Path) -> list[str]:
    files = []
    for folder, folders, names in os.walk(root):
        folders[:] = [f for f in folders if f not in NOT_OURS and not f.startswith(".")]
        files += [Path(folder, n).relative_to(root).as_posix() for n in names]
    return sorted(f for f in files if f.endswith((".h", ".cpp")))


def find_includes(root: Path, files: list[str]) -> Iterator[Include]:
    """A file in the same folder comes first, as for the compiler; otherwise any with that name."""
    for file in files:
        for name in INCLUDE.findall((root / file).read_text()):
            beside = os.path.normpath(PurePosixPath(file).parent / name)
            ends = "/" + name
            found = [beside] if beside in files else [f for f in files if f.endswith(ends)]
            yield Include(file, name, tuple(found))


def forbidden(include: Include) -> Iterator[str]:
    room = room_of(include.file)
    for found in include.found:
        other = room_of(found)
        if room is not None and other is not None and other not in (room, *ROOMS[room]):
            yield f"{include.file}: {room} may not know {found}"


def find_circles(includes: list[Include]) -> Iterator[str]:
    """One circle for each module from which one is first entered."""
    known: dict[str, set[str]] = {}
    for include in includes:
        module = module_of(include.file)
        others = {module_of(found) for found in include.found} - {module}
        known.setdefault(module, set()).update(others)
    done: set[str] = set()

    def walk(path: list[str]) -> Iterator[str]:
        for other in sorted(known.get(path[-1], ())):
            if other in path:
                yield "circle: " + " -> ".join([*path[path.index(other) :], other])
            elif other not in done:
                yield from walk([*path, other])
        done.add(path[-1])

    for module in sorted(known):
        if module not in done:
            yield from walk([module])


def find_faults(root: Path) -> list[str]:
    files = find_files(root)
    includes = list(find_includes(root, files))
    faults = [f"{file}: in no room" for file in files if room_of(file) is None]
    for include in includes:
        if ".." in PurePosixPath(include.name).parts:
            faults.append(f"{include.file}: {include.name} runs up")
        faults += forbidden(include)
    return faults + list(find_circles(includes))


if __name__ == "__main__":
    root = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parents[2]
    faults = find_faults(root)
    print(*faults, sep="\n", end="\n" if faults else "", file=sys.stderr)
    sys.exit(1 if faults else 0)
