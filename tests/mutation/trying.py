"""Tries mutants: compiles only what a change affects, and runs the tests."""

import shutil
import tempfile
from collections.abc import Iterator
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from queue import Queue

from areas import Area
from building import Build, TestProgram, Unit
from mutants import Mutant

# Test files per batch when a changed header makes all of them recompile; see Worker._verdict.
BATCH = 4
# How many of the tests that killed earlier mutants of a file are run first.
ASKED_FIRST = 8


class Worker:
    """One working copy of code and tests, in which mutants are tried one after another."""

    def __init__(self, build: Build, number: int):
        self.build = build
        self.folder = build.folder / f"worker{number}"
        self.tree = self.folder / "tree"
        for name in build.changed:
            shutil.copytree(build.tree / name, self.tree / name)
        self.program = self.folder / "tests"

    def verdict(self, mutant: Mutant) -> str:
        """"killed", "survived" or "not compiled"."""
        file = self.tree / mutant.file
        original = file.read_text()
        file.write_text(mutant.applied(original))
        try:
            code: dict[Unit, Path] = {}
            for tested in self.build.programs:
                verdict = self._verdict(mutant.file, tested, code)
                if verdict != "survived":
                    return verdict
            return "survived"
        finally:
            file.write_text(original)

    def _verdict(self, file: str, tested: TestProgram, code: dict[Unit, Path]) -> str:
        """The verdict of one program; `code`: objects already compiled for other programs."""
        headers = self.build.headers
        changed = [unit for unit in tested.units if unit.file == file or file in headers[unit]]
        if not changed:
            return "survived"
        for unit in changed:
            if not unit.is_test and unit not in code:
                code[unit] = self.folder / unit.name
                if self.build.compile(unit, self.tree, code[unit]):
                    return "not compiled"
        shared = [unit for unit in tested.units if not unit.is_test]
        objects = [code.get(unit, self.build.base(unit)) for unit in shared]
        tests = [unit for unit in changed if unit.is_test]
        others = [u for u in tested.units if u.is_test and u not in tests]
        # A changed header affects every test that includes it: these are compiled and run in batches,
        # since the first batch is usually enough.
        order = tested.order.setdefault(file, tests)
        for batch in [order[i : i + BATCH] for i in range(0, len(order), BATCH)]:
            if self._is_killed_by(batch, objects, tested):
                tested.order[file] = [*batch, *(u for u in order if u not in batch)]
                return "killed"
        others = [self.build.base(unit) for unit in others]
        return "killed" if self._are_killed_by(others, objects, tested, file) else "survived"

    def _is_killed_by(self, batch: list[Unit], objects: list[Path], tested: TestProgram) -> bool:
        tests = []
        for unit in batch:
            tests.append(self.folder / unit.name)
            # A test that no longer compiles kills the mutant, since the code itself compiles.
            if self.build.compile(unit, self.tree, tests[-1]):
                return True
        self.build.link(tested, [*objects, *tests], self.program)
        return not self.build.run(tested, self.program, []).passed

    def _are_killed_by(
        self, tests: list[Path], objects: list[Path], tested: TestProgram, file: str
    ) -> bool:
        if not tests:
            return False
        self.build.link(tested, [*objects, *tests], self.program)
        killers = tested.killers[file]
        first = killers[:ASKED_FIRST]
        last = [test for test in tested.slow if test not in first]
        for asked in (first, ["-" + ":".join(first + last)], last):
            if not asked:
                continue
            run = self.build.run(tested, self.program, [f"--gtest_filter={':'.join(asked)}"])
            if not run.passed:
                if run.test:
                    tested.killers[file] = [run.test, *(t for t in killers if t != run.test)]
                return True
        return False


def try_all(
    area: Area, mutants: list[Mutant], jobs: int, sanitized: bool = False
) -> Iterator[tuple[Mutant, str]]:
    """The mutants with their verdicts, in the given order."""
    folder = Path(tempfile.mkdtemp(prefix="gc-mutation-"))
    try:
        with ThreadPoolExecutor(jobs) as executor:
            build = Build(area, {mutant.file for mutant in mutants}, folder, sanitized)
            build.compile_all(executor)
            workers: Queue[Worker] = Queue()
            for number in range(jobs):
                workers.put(Worker(build, number))

            def verdict(mutant: Mutant) -> str:
                worker = workers.get()
                try:
                    return worker.verdict(mutant)
                finally:
                    workers.put(worker)

            yield from zip(mutants, executor.map(verdict, mutants))
    finally:
        shutil.rmtree(folder)
