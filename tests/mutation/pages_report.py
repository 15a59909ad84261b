"""Stryker's results for the pages: its mutants, and the list of those that no test can notice."""

import re
from dataclasses import dataclass

VERDICTS = {
    "Killed": "killed",
    "Timeout": "killed",
    "Survived": "survived",
    # No test reaches it.
    "NoCoverage": "survived",
}


def one_line(text: str) -> str:
    return re.sub(r"\s+", " ", text).strip()


@dataclass(frozen=True)
class Mutant:
    file: str
    """Relative to web/pages/."""
    number: int
    """The line number."""
    kind: str
    line: str
    old: str
    new: str
    place: str = ""
    """In Stryker's notation."""

    def __str__(self) -> str:
        return f"{self.file}: {self.line}\n{self.old} => {self.new}"


def cut(lines: list[str], location: dict[str, dict[str, int]]) -> str:
    """The text at a location; lines and columns count from 1."""
    start, end = location["start"], location["end"]
    text = lines[start["line"] - 1 : end["line"]]
    text[-1] = text[-1][: end["column"] - 1]
    text[0] = text[0][start["column"] - 1 :]
    return "\n".join(text)


def place_of(file: str, location: dict[str, dict[str, int]]) -> str:
    start, end = location["start"], location["end"]
    # Columns count from 1 in a report, and from 0 in a place.
    return f"{file}:{start['line']}:{start['column'] - 1}-{end['line']}:{end['column'] - 1}"


def read_report(report: dict) -> list[tuple[Mutant, str]]:
    """The mutants in the order of the text, with their verdicts; ignored ones are omitted."""
    found = []
    for file, content in report["files"].items():
        lines = content["source"].split("\n")
        for mutant in content["mutants"]:
            verdict = VERDICTS.get(mutant["status"])
            if verdict:
                number = mutant["location"]["start"]["line"]
                old = one_line(cut(lines, mutant["location"]))
                new = one_line(mutant["replacement"]) or "nothing"
                line = lines[number - 1].strip()
                place = place_of(file, mutant["location"])
                kind = mutant["mutatorName"]
                found.append((Mutant(file, number, kind, line, old, new, place), verdict))
    return sorted(found, key=lambda one: (one[0].file, one[0].number))


class Explained:
    def __init__(self, text: str):
        """`text`: paragraphs; a reason, then the changes that it explains: a line of the file,
        followed by each change to that line. A * matches anything."""
        self.patterns: dict[str, re.Pattern[str]] = {}
        for paragraph in text.strip().split("\n\n"):
            if re.match(r"src/\S+: ", paragraph):
                line, *changes = paragraph.split("\n")
                for change in changes:
                    entry = f"{line}\n{change}"
                    if entry in self.patterns:
                        raise ValueError(f"explained twice:\n{entry}")
                    parts = [re.escape(part) for part in entry.split("*")]
                    self.patterns[entry] = re.compile(".*".join(parts))

    def entries(self, mutant: Mutant) -> list[str]:
        """The entries that explain the mutant."""
        return [e for e, pattern in self.patterns.items() if pattern.fullmatch(str(mutant))]

    def stale(self, verdicts: list[tuple[Mutant, str]]) -> list[str]:
        """The entries for these mutants' files that explain no survivor."""
        files = {mutant.file for mutant, _ in verdicts}
        survivors = [mutant for mutant, verdict in verdicts if verdict == "survived"]
        used = {entry for mutant in survivors for entry in self.entries(mutant)}
        return [e for e in self.patterns if e not in used and e.partition(":")[0] in files]
