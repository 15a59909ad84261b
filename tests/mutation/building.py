"""Compiles the unit tests of an area from unchanged code, in a separate folder."""

import json
import re
import shlex
import shutil
import subprocess
from collections import defaultdict
from collections.abc import Collection
from concurrent.futures import Executor
from dataclasses import dataclass
from pathlib import Path

from areas import ROOT, Area, Program
from running import Run, run_tests

INSTANTIATE = ["-fpch-instantiate-templates"]
SANITIZERS = "address,undefined,float-cast-overflow"


@dataclass(frozen=True)
class Unit:
    """One source file of a target and how to compile it."""

    file: str
    """Relative to the root."""
    target: str
    command: tuple[str, ...]
    """Arguments without compiler, input and output."""

    @property
    def name(self) -> str:
        """Name of the object file."""
        return f"{self.target}-{self.file.replace('/', '_')}.o"

    @property
    def is_test(self) -> bool:
        """Linked only when needed, unlike the units that all tests of a program share."""
        return self.file.endswith("Test.cpp")


class TestProgram:
    """What is known about a test program of the build."""

    def __init__(self, program: Program, units: list[Unit]):
        self.program = program
        self.units = [unit for unit in units if unit.target in program.targets]
        self.killers: dict[str, list[str]] = defaultdict(list)
        """Names of tests that killed mutants of a file, latest first."""
        self.order: dict[str, list[Unit]] = {}
        """The tests that include a header; first those that killed mutants of it."""
        self.cpu_limit = 600
        self.slow: list[str] = []
        """Names of tests that are run last."""

    def may_see(self, files: Collection[str]) -> bool:
        """Any header may matter: only the compiler knows which ones a program includes."""
        sources = {unit.file for unit in self.units}
        return any(file in sources or file.endswith(".h") for file in files)


class Build:
    """The unit tests of the unchanged code, compiled from a copy of the tree."""

    def __init__(self, area: Area, wanted: Collection[str], folder: Path, sanitized: bool):
        """`wanted`: the files that will be changed. Programs that use none of them are omitted."""
        self.area = area
        self.folder = folder
        self.tree = folder / "tree"
        ignored = shutil.ignore_patterns(
            ".git", "build", "node_modules", "__pycache__", ".*_cache"
        )
        shutil.copytree(ROOT, self.tree, ignore=ignored)
        (folder / "objects").mkdir()
        (folder / "base").mkdir()
        # Programs look for the scenarios beside their own folder.
        (folder / "share").symlink_to(folder / "cmake" / "share")
        self.sanitized = sanitized
        units = self._configure()
        programs = [TestProgram(program, units) for program in area.programs]
        self.programs = [tested for tested in programs if tested.may_see(wanted)]
        asked = {unit for tested in self.programs for unit in tested.units}
        self.units = [unit for unit in units if unit in asked]
        self.changed = ("tests/unit", *area.folders)
        """Folders that each worker has its own copy of."""
        commands = sorted({unit.command for unit in self.units})
        self.precompiled = {c: folder / f"precompiled{n}.h" for n, c in enumerate(commands)}
        self.headers: dict[Unit, set[str]] = {}

    def _configure(self) -> list[Unit]:
        build = self.folder / "cmake"
        options = ["-DCMAKE_CXX_COMPILER=clang++", "-DGC_BUILD_BENCHMARKS=OFF"]
        options += [f"-DGC_SANITIZE={SANITIZERS}"] if self.sanitized else []
        command = ["cmake", "-S", self.tree, "-B", build, "-G", "Ninja", *options]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
        if needs := {need for program in self.area.programs for need in program.needs}:
            subprocess.run(["ninja", "-C", build, *needs], check=True, stdout=subprocess.DEVNULL)
        targets = {target for program in self.area.programs for target in program.targets}
        units = []
        for entry in json.loads((build / "compile_commands.json").read_text()):
            words = shlex.split(entry["command"])
            output = words[words.index("-o") + 1]
            target = re.search(r"/(\w+)\.dir/", output)
            if target and target[1] in targets:
                # Unchanged code has no warnings; mutants are for the tests to find.
                flags = (*words[1 : words.index("-o")], "-O0", "-w")
                file = str(Path(entry["file"]).relative_to(self.tree))
                units.append(Unit(file, target[1], flags))
        return units

    def compile_all(self, executor: Executor) -> None:
        """Compiles all units unchanged and runs the tests, which must pass."""
        for _ in executor.map(self._precompile, self.precompiled):
            pass
        for unit, message in zip(self.units, executor.map(self._compile_base, self.units)):
            if message:
                raise SystemExit(f"{unit.file} does not compile:\n{message}")
        for tested in self.programs:
            program = self.folder / "base" / tested.program.tests
            self.link(tested, [self.base(unit) for unit in tested.units], program)
            run = self.run(tested, program, [])
            program.unlink()
            if not run.passed:
                raise SystemExit(f"the unchanged code fails {run.test or 'its tests'}")
            tested.cpu_limit = round(4 * run.seconds) + 4
            tested.slow = run.slow

    def _precompile(self, command: tuple[str, ...]) -> None:
        """The headers of other projects that the units with this command include."""
        files = [self.tree / unit.file for unit in self.units if unit.command == command]
        files += [f for folder in self.area.folders for f in (self.tree / folder).rglob("*.h")]
        folders = [self.tree / folder for folder in ("include", *self.changed)]
        own = {file.name for folder in folders for file in folder.rglob("*.h")}
        text = "".join(file.read_text() for file in files)
        includes = set(re.findall(r"^#include <(?!sanitizer/)(.*)>", text, re.MULTILINE)) - own
        header = self.precompiled[command]
        header.write_text("".join(f"#include <{name}>\n" for name in sorted(includes)))
        flags = [*command, *INSTANTIATE, "-x", "c++-header"]
        output = header.with_suffix(".pch")
        subprocess.run(["clang++", *flags, header, "-o", output], check=True, cwd=self.folder)

    def _compile_base(self, unit: Unit) -> str:
        dependencies = self.folder / "objects" / (unit.name + ".d")
        flags = ("-MMD", "-MF", str(dependencies))
        message = self.compile(unit, self.tree, self.base(unit), flags)
        if not message:
            folders = "|".join(self.area.folders)
            found = re.findall(rf"/tree/((?:{folders})/[\w./-]+\.h)\b", dependencies.read_text())
            self.headers[unit] = set(found)
        return message

    def base(self, unit: Unit) -> Path:
        """The object of the unchanged file."""
        return self.folder / "objects" / unit.name

    def compile(self, unit: Unit, tree: Path, output: Path, flags: tuple[str, ...] = ()) -> str:
        """Compiles a unit of a copy of the code; returns the messages if it fails."""
        # Everything else is taken from the original tree.
        folders = "|".join(self.changed)
        words = [
            re.sub(rf"{self.tree}(?=/({folders})(/|$))", str(tree), word) for word in unit.command
        ]
        words += ["-include-pch", str(self.precompiled[unit.command].with_suffix(".pch"))]
        words += [*INSTANTIATE, *flags, "-c", str(tree / unit.file), "-o", str(output)]
        done = subprocess.run(["clang++", *words], capture_output=True, text=True)
        return done.stderr if done.returncode != 0 else ""

    def link(self, tested: TestProgram, objects: list[Path], output: Path) -> None:
        flags = [f"-fsanitize={SANITIZERS}"] if self.sanitized else []
        command = ["clang++", "-fuse-ld=lld", "-Wl,-s,--threads=1", *flags, *objects]
        subprocess.run([*command, *tested.program.libraries, "-o", output], check=True)

    def run(self, tested: TestProgram, program: Path, arguments: list[str]) -> Run:
        # The sanitizers reserve more address space than there is memory.
        return run_tests(
            program, arguments, tested.cpu_limit, self.folder, address_limit=not self.sanitized
        )
