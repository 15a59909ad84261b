"""Fifty random interleavings: no two downloads interleave, and every command has an outcome."""

from contextlib import closing
from pathlib import Path

import pytest
from conftest import StartSimulator
from interleavings import Interleaving, JournalFile, tables_of
from server import WebServer

# Ten at a time, so that the workers share them. A failure shows the seed.
SEEDS = [range(first, first + 10) for first in range(0, 50, 10)]


@pytest.mark.parametrize("seeds", SEEDS, ids=lambda seeds: f"{seeds[0]}-{seeds[-1]}")
def test_interleavings(
    simulator: StartSimulator, server: WebServer, folder: Path, seeds: range
) -> None:
    path = folder / "journal"
    controller = simulator("everyday", "--journal", str(path))
    tables = tables_of(server)
    with closing(JournalFile(path)) as journal:
        for seed in seeds:
            try:
                Interleaving(seed, controller, journal, server, tables).run()
            except AssertionError as fault:
                raise AssertionError(f"seed {seed}: {fault}") from fault
