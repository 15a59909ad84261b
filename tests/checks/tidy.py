#!/usr/bin/env -S /usr/bin/python3 -B
"""Runs clang-tidy on every file of a build: tests/checks/tidy.py BUILD_FOLDER

Many files are checked together, so that common headers are read once: they are most of the work. Files
are combined if their names do not clash; if they do clash after all, each is checked alone.
Skips files that have passed and have not changed since.
"""

import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
LARGEST_GROUP = 16
# A compiler error, which here can only be caused by files that clash.
CLASH = "[clang-diagnostic-error"
# Functions that every program has are renamed in each file.
OF_PROGRAMS = ["main", "LLVMFuzzerTestOneInput"]
# Options that do not affect clang-tidy, or affect only one program's own files.
IRRELEVANT = re.compile("-O.|-fPI[CE]|-DGTEST_HAS_PTHREAD=1|-D.*_EXPORTS")

NAMES = re.compile(
    r"""^(?: (?:class|struct|union|enum(?:\ class)?)\ (\w+)
           | using\ (\w+)\ =
           | \ \ (e[A-Z]\w*)\s*[,=}]
           | (?!TEST|INSTANTIATE|template|namespace|return|using|typedef)
             [A-Za-z][^=({\[;]*?([\w:~]+)\s*[=({\[;] )""",
    re.VERBOSE | re.MULTILINE,
)


def options_of(entry):
    """The options of a compilation: those that must be equal, and those that can be merged."""
    words = shlex.split(entry["command"])[1:]
    words = iter(words[: words.index("-o")])
    common, shared = [], []
    for word in words:
        if word == "-Xclang":
            next(words)  # a precompiled header; the files include what they need
        elif word == "-isystem":
            shared.append((word, next(words)))
        elif word.startswith(("-I", "-DGC_")):
            shared.append((word,))
        elif not IRRELEVANT.fullmatch(word):
            common.append(word)
    return tuple(common), shared


def names_in(file):
    found = NAMES.findall(Path(file).read_text())
    return {name for names in found for name in names if name and name not in OF_PROGRAMS}


def area_of(file):
    """Files in different areas may include different headers with the same name."""
    folders = Path(file).relative_to(ROOT).parent.parts
    return folders[:3] if folders[0] == "tests" else folders[:2]


def grouped(folder):
    """Pairs of options and files."""
    kinds = {}
    seen = set()
    for entry in json.loads((folder / "compile_commands.json").read_text()):
        if entry["file"] not in seen:
            seen.add(entry["file"])
            common, shared = options_of(entry)
            kind = kinds.setdefault((area_of(entry["file"]), common), ({}, []))
            kind[0].update(dict.fromkeys(shared))
            kind[1].append(entry["file"])
    for (_, common), (shared, files) in kinds.items():
        groups = []
        for file in sorted(files):
            names = names_in(file)
            for group, taken in groups:
                if len(group) < LARGEST_GROUP and not names & taken:
                    break
            else:
                group, taken = [], set()
                groups.append((group, taken))
            group.append(file)
            taken |= names
        options = [*common, *(word for words in shared for word in words)]
        yield from ((options, group) for group, _ in groups)


def tidy(words, file):
    command = ["clang-tidy", "--quiet", f"--config-file={ROOT}/.clang-tidy", str(file), "--", *words, "-w"]
    run = subprocess.run(command, capture_output=True, text=True)
    return "" if run.returncode == 0 else run.stdout + run.stderr


def include(number, file):
    renamed = "".join(f"#undef {name}\n#define {name} {name}{number}\n" for name in OF_PROGRAMS)
    return f'{renamed}#include "{file}"  // NOLINT(bugprone-suspicious-include)\n'


def check(folder, surroundings, words, files):
    """The faults in the files of a group; empty if they are known to have none."""
    text = [Path(file).read_text() for file in files]
    relative = [word.replace(str(ROOT), ".") for word in words]
    key = hashlib.sha256(repr((surroundings, relative, files, text)).encode()).hexdigest()
    passed = folder / f"{key}.passed"
    if passed.exists():
        return ""
    if len(files) == 1:
        faults = tidy(words, files[0])
    else:
        together = folder / f"{key}.cpp"
        together.write_text("".join(include(n, file) for n, file in enumerate(files)))
        faults = tidy(words, together)
        if CLASH in faults:
            # Files named by the compiler are checked alone; the rest shows whether that was enough.
            alone = [file for file in files if re.search(rf"^{re.escape(file)}:.*error", faults, re.M)]
            alone = alone if 0 < len(alone) < len(files) else files
            print("Alone:", *(os.path.relpath(file, ROOT) for file in alone), flush=True)
            faults = "".join(check(folder, surroundings, words, [file]) for file in alone)
            if len(alone) < len(files):
                rest = [file for file in files if file not in alone]
                faults += check(folder, surroundings, words, rest)
        together.unlink()
    if not faults:
        passed.touch()
    return faults


def main():
    build = Path(sys.argv[1])
    folder = build / "tidy"
    folder.mkdir(exist_ok=True)
    headers = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "*.h"],
                             cwd=ROOT, check=True, capture_output=True, text=True).stdout  # fmt: skip
    surroundings = [subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True).stdout]
    surroundings += [(ROOT / ".clang-tidy").read_text(), Path(__file__).read_text()]
    surroundings += [(ROOT / file).read_text() for file in headers.split("\0") if (ROOT / file).is_file()]
    # The largest first, so that the last ones do not take long.
    groups = sorted(grouped(build), key=lambda group: -len(group[1]))
    failed = False
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for faults in pool.map(lambda group: check(folder, surroundings, *group), groups):
            if faults:
                print(faults, flush=True)
                failed = True
    sys.exit(failed)


if __name__ == "__main__":
    main()
