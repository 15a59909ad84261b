"""Tests of reading Stryker's report, and of what the list for the pages explains."""

import pytest

from pages_report import Explained, Mutant, read_report

SOURCE = "const a = 1 + 2;\nif (a > 3) {\n  stop();\n}\n"


def found(status: str, start: tuple[int, int], end: tuple[int, int], replacement: str) -> dict:
    location = {
        "start": {"line": start[0], "column": start[1]},
        "end": {"line": end[0], "column": end[1]},
    }
    return {
        "status": status,
        "location": location,
        "mutatorName": "Some",
        "replacement": replacement,
    }


def report(*mutants: dict) -> dict:
    return {"files": {"src/a.ts": {"source": SOURCE, "mutants": list(mutants)}}}


def test_mutants_are_printed_with_their_line() -> None:
    [(first, killed), (second, survived)] = read_report(
        report(
            found("NoCoverage", (2, 12), (4, 2), "{}"),
            found("Killed", (1, 11), (1, 16), "1 - 2"),
        )
    )
    assert str(first) == "src/a.ts: const a = 1 + 2;\n1 + 2 => 1 - 2"
    assert str(second) == "src/a.ts: if (a > 3) {\n{ stop(); } => {}"
    assert first.place == "src/a.ts:1:10-1:15"
    assert second.place == "src/a.ts:2:11-4:1"
    assert (killed, survived) == ("killed", "survived")


@pytest.mark.parametrize(
    ("status", "verdict"),
    [
        ("Killed", ["killed"]),
        ("Timeout", ["killed"]),
        ("Survived", ["survived"]),
        ("NoCoverage", ["survived"]),
        ("Ignored", []),
        ("RuntimeError", []),
    ],
)
def test_verdicts(status: str, verdict: list[str]) -> None:
    mutants = read_report(report(found(status, (1, 11), (1, 12), "2")))
    assert [one for _, one in mutants] == verdict


LIST = """A reason,
in two lines.

src/a.ts: const a = 1 + 2;
1 + 2 => 1 - 2
2 => *

Another one.

src/b.ts: *
"dim" => ""
"""


def mutant(file: str, line: str, old: str, new: str) -> Mutant:
    return Mutant(file, 1, "Some", line, old, new)


def test_a_list_explains_what_it_names() -> None:
    explained = Explained(LIST)
    line = "const a = 1 + 2;"
    assert explained.entries(mutant("src/a.ts", line, "1 + 2", "1 - 2"))
    assert explained.entries(mutant("src/a.ts", line, "2", "3"))
    assert explained.entries(mutant("src/b.ts", "what(ever)", '"dim"', '""'))
    assert not explained.entries(mutant("src/a.ts", line, "1", "0"))
    assert not explained.entries(mutant("src/b.ts", line, "2", "3"))
    assert not explained.entries(mutant("src/a.ts", "const b = 1 + 2;", "2", "3"))


def test_an_entry_that_explains_no_survivor_is_stale() -> None:
    explained = Explained(LIST)
    line = "const a = 1 + 2;"
    verdicts = [
        (mutant("src/a.ts", line, "1 + 2", "1 - 2"), "killed"),
        (mutant("src/a.ts", line, "2", "1"), "survived"),
        (mutant("src/a.ts", line, "2", "3"), "killed"),
    ]
    # The other file was not tried.
    assert explained.stale(verdicts) == ["src/a.ts: const a = 1 + 2;\n1 + 2 => 1 - 2"]


def test_nothing_is_explained_twice() -> None:
    with pytest.raises(ValueError, match="explained twice"):
        Explained(LIST + "\nsrc/b.ts: *\n\"dim\" => \"\"\n")
