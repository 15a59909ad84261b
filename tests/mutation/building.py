"""Compiles the unit tests with a changed source file, as little as that takes, and runs them."""

import json
import os
import re
import shlex
import shutil
import subprocess
import tempfile
from collections import defaultdict
from concurrent.futures import Executor
from dataclasses import dataclass
from pathlib import Path

from mutants import Mutant

ROOT = Path(__file__).resolve().parents[2]
LIBRARIES = ["-lgmock", "-lgtest_main", "-lgtest", "-lACE"]
INSTANTIATE = ["-fpch-instantiate-templates"]
SANITIZERS = "address,undefined,float-cast-overflow"
# What stops a mutant that waits for ever, or takes or writes all that there is.
LONGEST_WAIT = "300"
LARGEST_MEMORY = 4 << 30
LARGEST_FILE = 64 << 20
# Test files of a batch when a changed header has all of them compiled anew; see Worker._verdict.
BATCH = 4
# How many of the tests that found earlier mutants of a file are asked first.
ASKED_FIRST = 8


@dataclass(frozen=True)
class Unit:
    """One source file and how to compile it."""

    file: str
    """Relative to the root."""
    command: tuple[str, ...]
    """Without compiler, input and output."""
    name: str
    """Of the object file."""

    @property
    def is_test(self) -> bool:
        return self.file.endswith("Test.cpp")


@dataclass(frozen=True)
class Run:
    """How a run of tests ended."""

    passed: bool
    test: str | None
    """The first that did not pass."""
    slow: list[str]
    seconds: float
    """Of processor time."""


class Build:
    """The unit tests as they are, compiled in a folder of its own from a copy of the tree."""

    def __init__(self, folder: Path, sanitized: bool):
        self.folder = folder
        self.tree = folder / "tree"
        ignored = shutil.ignore_patterns(".git", "build", "__pycache__", ".*_cache")
        shutil.copytree(ROOT, self.tree, ignore=ignored)
        (folder / "objects").mkdir()
        self.sanitized = sanitized
        self.units = self._configure()
        commands = sorted({unit.command for unit in self.units})
        self.precompiled = {c: folder / f"precompiled{n}.h" for n, c in enumerate(commands)}
        self.headers: dict[Unit, set[str]] = {}
        self.killers: dict[str, list[str]] = defaultdict(list)
        """Names of tests that found mutants of a file, the latest first."""
        self.order: dict[str, list[Unit]] = {}
        """The tests that see a header, those that found mutants of it first."""
        self.cpu_limit = 600
        self.slow: list[str] = []
        """Names of tests that are asked last."""

    def _configure(self) -> list[Unit]:
        build = self.folder / "cmake"
        options = ["-DCMAKE_CXX_COMPILER=clang++", "-DGC_BUILD_BENCHMARKS=OFF"]
        options += [f"-DGC_SANITIZE={SANITIZERS}"] if self.sanitized else []
        command = ["cmake", "-S", self.tree, "-B", build, "-G", "Ninja", *options]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
        units = []
        for entry in json.loads((build / "compile_commands.json").read_text()):
            words = shlex.split(entry["command"])
            output = words[words.index("-o") + 1]
            if re.search(r"/(gc_web_sections|gc_fake_instrument|gc_unit_tests)\.dir/", output):
                # Unchanged code is clean of warnings; a mutant is for the tests to find.
                flags = (*words[1 : words.index("-o")], "-O0", "-w")
                file = str(Path(entry["file"]).relative_to(self.tree))
                units.append(Unit(file, flags, file.replace("/", "_") + ".o"))
        return units

    def compile_all(self, executor: Executor) -> None:
        """Compiles all units as they are and runs the tests, which must pass."""
        for command in self.precompiled:
            self._precompile(command)
        for unit, message in zip(self.units, executor.map(self._compile_base, self.units)):
            if message:
                raise SystemExit(f"{unit.file} does not compile:\n{message}")
        program = self.folder / "unchanged"
        self.link([self.folder / "objects" / unit.name for unit in self.units], program)
        run = self.run(program, [], self.folder)
        program.unlink()
        if not run.passed:
            raise SystemExit(f"the unchanged code fails {run.test or 'its tests'}")
        self.cpu_limit = round(4 * run.seconds) + 4
        self.slow = run.slow

    def _precompile(self, command: tuple[str, ...]) -> None:
        """The headers of others that the units with this command include."""
        files = [self.tree / unit.file for unit in self.units if unit.command == command]
        files += (self.tree / "Source").glob("*.h")
        includes = {
            line
            for file in files
            for line in re.findall(r"^#include <(?!sanitizer/).*>", file.read_text(), re.MULTILINE)
        }
        header = self.precompiled[command]
        header.write_text("\n".join(sorted(includes)))
        flags = [*command, *INSTANTIATE, "-x", "c++-header"]
        output = header.with_suffix(".pch")
        subprocess.run(["clang++", *flags, header, "-o", output], check=True, cwd=self.folder)

    def _compile_base(self, unit: Unit) -> str:
        dependencies = self.folder / "objects" / (unit.name + ".d")
        flags = ("-MMD", "-MF", str(dependencies))
        message = self.compile(unit, self.tree, self.folder / "objects" / unit.name, flags)
        if not message:
            found = re.findall(r"/tree/(Source/\w+\.h)\b", dependencies.read_text())
            self.headers[unit] = set(found)
        return message

    def compile(self, unit: Unit, tree: Path, output: Path, flags: tuple[str, ...] = ()) -> str:
        """Compiles a unit of a copy of Source and tests; returns the messages of a failure."""
        # include/ stays where it is: the precompiled headers come from there.
        words = [
            re.sub(rf"{self.tree}(?=/(Source|tests)\b)", str(tree), word) for word in unit.command
        ]
        words += ["-include-pch", str(self.precompiled[unit.command].with_suffix(".pch"))]
        words += [*INSTANTIATE, *flags, "-c", str(tree / unit.file), "-o", str(output)]
        done = subprocess.run(["clang++", *words], capture_output=True, text=True)
        return done.stderr if done.returncode != 0 else ""

    def link(self, objects: list[Path], output: Path) -> None:
        flags = [f"-fsanitize={SANITIZERS}"] if self.sanitized else []
        command = ["clang++", "-fuse-ld=lld", "-Wl,-s,--threads=1", *flags, *objects, *LIBRARIES]
        subprocess.run([*command, "-o", output], check=True)

    def run(self, program: Path, arguments: list[str], folder: Path) -> Run:
        """Runs tests up to the first that fails. A run that takes many times as long as that of the
        unchanged code ends; processor time counts, so that a busy machine fails nothing."""
        limits = [f"--cpu={self.cpu_limit}", f"--fsize={LARGEST_FILE}", "--core=0"]
        # The sanitizers reserve more memory than there is.
        limits += [] if self.sanitized else [f"--as={LARGEST_MEMORY}"]
        command = ["timeout", "--signal=KILL", LONGEST_WAIT, "prlimit", *limits, program]
        command += ["--gtest_fail_fast", "--gtest_color=no", *arguments]
        with tempfile.TemporaryDirectory(dir=folder) as scratch:
            log = Path(scratch) / "log"
            with log.open("w") as output:
                process = subprocess.Popen(
                    command,
                    stdin=subprocess.DEVNULL,
                    stdout=output,
                    stderr=subprocess.DEVNULL,
                    cwd=scratch,
                    env={**os.environ, "TMPDIR": scratch, "TEST_TMPDIR": scratch},
                )
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            text = log.read_text(errors="replace")
        failed = re.findall(r"^\[  FAILED  \] ([\w./]+)", text, re.MULTILINE)
        begun = re.findall(r"^\[ RUN      \] ([\w./]+)", text, re.MULTILINE)
        slow = re.findall(r"^\[       OK \] ([\w./]+) \(\d{2,} ms\)", text, re.MULTILINE)
        seconds = usage.ru_utime + usage.ru_stime
        return Run(process.returncode == 0, (failed or begun[-1:] or [None])[0], slow, seconds)


class Worker:
    """One working copy of Source and tests, in which one mutant after the other is tried."""

    def __init__(self, build: Build, number: int):
        self.build = build
        self.folder = build.folder / f"worker{number}"
        self.tree = self.folder / "tree"
        for name in ("Source", "tests/unit"):
            shutil.copytree(build.tree / name, self.tree / name)
        self.program = self.folder / "tests"

    def verdict(self, mutant: Mutant) -> str:
        """"killed", "survived" or "not compiled"."""
        file = self.tree / mutant.file
        original = file.read_text()
        file.write_text(mutant.applied(original))
        try:
            return self._verdict(mutant)
        finally:
            file.write_text(original)

    def _verdict(self, mutant: Mutant) -> str:
        headers = self.build.headers
        changed = [
            unit
            for unit in self.build.units
            if unit.file == mutant.file or mutant.file in headers[unit]
        ]
        code = {unit: self._base(unit) for unit in self.build.units if not unit.is_test}
        for unit in changed:
            if not unit.is_test:
                code[unit] = self.folder / unit.name
                if self.build.compile(unit, self.tree, code[unit]):
                    return "not compiled"
        objects = list(code.values())
        tests = [unit for unit in changed if unit.is_test]
        others = [self._base(unit) for unit in headers if unit.is_test and unit not in tests]
        # A change of a header makes every test that sees it another program: these are compiled and
        # asked in batches, since the first will usually do.
        order = self.build.order.setdefault(mutant.file, tests)
        for batch in [order[i : i + BATCH] for i in range(0, len(order), BATCH)]:
            if self._is_killed_by(batch, objects):
                self.build.order[mutant.file] = [*batch, *(u for u in order if u not in batch)]
                return "killed"
        return "killed" if self._are_killed_by(others, objects, mutant.file) else "survived"

    def _base(self, unit: Unit) -> Path:
        return self.build.folder / "objects" / unit.name

    def _is_killed_by(self, batch: list[Unit], objects: list[Path]) -> bool:
        tests = []
        for unit in batch:
            tests.append(self.folder / unit.name)
            # A test that no longer compiles has found the mutant when the code itself compiles.
            if self.build.compile(unit, self.tree, tests[-1]):
                return True
        self.build.link([*objects, *tests], self.program)
        return not self.build.run(self.program, [], self.folder).passed

    def _are_killed_by(self, tests: list[Path], objects: list[Path], file: str) -> bool:
        if not tests:
            return False
        self.build.link([*objects, *tests], self.program)
        killers = self.build.killers[file]
        first = killers[:ASKED_FIRST]
        last = [test for test in self.build.slow if test not in first]
        for asked in (first, ["-" + ":".join(first + last)], last):
            if not asked:
                continue
            run = self.build.run(self.program, [f"--gtest_filter={':'.join(asked)}"], self.folder)
            if not run.passed:
                if run.test:
                    self.build.killers[file] = [run.test, *(t for t in killers if t != run.test)]
                return True
        return False
