"""The list of changes that no unit test can notice, each with its reason."""

import re

from mutants import Mutant

# How the reason begins for changes that only the sanitizers notice.
SANITIZED = "Sanitizers:"
ENTRY = re.compile(r"[\w/-]+\.(h|cpp): ")


class Explained:
    def __init__(self, text: str):
        """`text`: paragraphs; a reason, then the changes that it explains, each as printed, or as
        the line of the function followed by lines of "~" and a pattern for Mutant.marked."""
        self.reasons: dict[str, str] = {}
        self.patterns: dict[str, re.Pattern[str]] = {}
        reason = ""
        for paragraph in text.strip().split("\n\n"):
            if not ENTRY.match(paragraph):
                reason = paragraph
                continue
            function, *lines = paragraph.split("\n")
            patterns = [line[1:] for line in lines if line.startswith("~")]
            for entry in [f"{function}\n~{p}" for p in patterns] or [paragraph]:
                if entry in self.reasons:
                    raise ValueError(f"explained twice:\n{entry}")
                self.reasons[entry] = reason
            for pattern in patterns:
                parts = [re.escape(part) for part in pattern.split("*")]
                self.patterns[f"{function}\n~{pattern}"] = re.compile(".*".join(parts))

    def entry(self, mutant: Mutant) -> str | None:
        """The entry that explains the mutant, if any."""
        printed = str(mutant)
        if printed in self.reasons:
            return printed
        function = printed.partition("\n")[0] + "\n"
        for entry, pattern in self.patterns.items():
            if entry.startswith(function) and pattern.fullmatch(mutant.marked):
                return entry
        return None

    def needs_sanitizers(self, mutant: Mutant) -> bool:
        return self.reasons.get(self.entry(mutant) or "", "").startswith(SANITIZED)

    def stale(self, mutants: list[Mutant]) -> list[str]:
        """The entries for these mutants' files that explain none of them."""
        files = {mutant.file for mutant in mutants}
        used = {self.entry(mutant) for mutant in mutants}
        return [e for e in self.reasons if e not in used and e.partition(":")[0] in files]
