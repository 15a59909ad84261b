#!/usr/bin/python3 -B
"""Prints debian/copyright: packaging/copyright.py >debian/copyright

The parts of other projects that are shipped, with their notices: of the pages, what the lock file says is needed at
run time; of the programs, the Debian packages below. Their own files have the notices.
"""

import json
import re
import subprocess
import textwrap
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PAGES = ROOT / "web" / "pages"
BUNDLE = "build/web/pages"
YEARS = "2026"
HOLDER = "the GC_Web developers"

# Debian packages of which parts are in the programs, with the programs and how; and the kinds of licence that
# apply to those parts.
LINKED = {
    "libcgicc-dev": ("cgicc", "linked statically to the gateway", ["LGPL-3+"]),
    "rapidjson-dev": ("rapidjson", "headers, in all programs", ["Expat", "BSD-3-clause"]),
    "libcli11-dev": ("CLI11", "headers, in gc-sim and gc-simctl", ["BSD-3-clause"]),
    "libace-dev": ("ACE", "headers, in the tool, the stand-ins, gc-sim and gc-simctl", ["DOC"]),
}


def fail(reason: str) -> None:
    raise SystemExit(f"packaging/copyright.py: {reason}")


def debian_notice(package: str) -> str:
    path = Path("/usr/share/doc") / package / "copyright"
    if not path.is_file():
        fail(f"{package} is not installed")
    return path.read_text(encoding="utf-8")


def field(text: str, name: str) -> str:
    """The first field of that name, with its continuation lines."""
    found = re.search(rf"^{name}[ \t]*((?:.*)(?:\n(?:[ \t].*|(?=\n[ \t])))*)", text, re.MULTILINE)
    if found is None:
        fail(f"no {name!r} in a copyright file")
    lines = [line.strip() for line in found[1].strip().splitlines()]
    return "\n".join("" if line == "." else line for line in lines)


def holders(package: str) -> str:
    """Of the package's own files, which have a stanza for `*`."""
    stanza = re.split(r"^Files:\s*\*\s*$", debian_notice(package), flags=re.MULTILINE)
    if len(stanza) != 2:
        fail(f"{package}: no stanza for all files")
    return field(stanza[1], "Copyright:")


def licence(package: str, kind: str) -> str:
    """The longest text under that name: other stanzas only refer to it."""
    text = debian_notice(package)
    texts = [
        field(text[found.start() :], "License:").partition("\n")[2]
        for found in re.finditer(rf"^License:[ \t]*{re.escape(kind)}[ \t]*$", text, re.MULTILINE)
    ]
    if not any(texts):
        fail(f"{package}: no text of {kind}")
    return max(texts, key=len)


def compiler_exception() -> str:
    text = debian_notice("gcc-12-base")
    beginning = text.index("GCC RUNTIME LIBRARY EXCEPTION")
    # To the end of its last section.
    end = re.compile(r"availability of this Exception.*?\n\n", re.DOTALL).search(text, beginning)
    if end is None:
        fail("the end of GCC's runtime library exception is not found")
    return text[beginning : end.end()].strip()


def bundled() -> list[tuple[str, str, str]]:
    """Name, version and notice of each npm package that the pages need at run time."""
    lock = json.loads((PAGES / "package-lock.json").read_text(encoding="utf-8"))
    parts = []
    for place, entry in sorted(lock["packages"].items()):
        if place == "" or entry.get("dev"):
            continue
        if entry["license"] != "MIT":
            fail(f"{place}: licence {entry['license']}: how is it to be shown?")
        notice = PAGES / place / "LICENSE"
        if not notice.is_file():
            fail(f"no {notice}: run npm ci")
        name = place.removeprefix("node_modules/")
        parts.append((name, entry["version"], notice.read_text(encoding="utf-8")))
    if not parts:
        fail("the lock file names nothing that is needed at run time")
    return parts


def continuation(text: str) -> str:
    lines = (line.rstrip() for line in text.strip("\n").splitlines())
    return "\n".join(f" {line}" if line else " ." for line in lines)


def stanza(**fields: str) -> str:
    lines = (f"{name.replace('_', '-')}: {value}\n" for name, value in fields.items())
    return "".join(line.replace(": \n", ":\n") for line in lines)


def comment_on_programs() -> str:
    parts = [
        "The programs contain parts of other projects. ACE, the C library and, but for the gateway, the C++\n"
        "library are shared libraries of Debian and are not part of these packages."
    ]
    for package, (name, where, kinds) in LINKED.items():
        parts.append(f"{name} ({where})\n{textwrap.indent(holders(package), '  ')}")
        parts += [f"{kind}:\n{textwrap.indent(licence(package, kind), '  ')}" for kind in kinds]
    parts.append(
        "The gateway's own object files are in /usr/lib/gc-web/relink, with the command that links them to another\n"
        "cgicc. /usr/share/common-licenses/LGPL-3 has the licence's full text."
    )
    parts.append(
        "libstdc++ and libgcc (linked statically to the gateway)\n"
        "  Free Software Foundation, Inc.\nGPL-3+ with this exception; /usr/share/common-licenses/GPL-3:\n"
        f"{textwrap.indent(compiler_exception(), '  ')}"
    )
    return "\n" + continuation("\n\n".join(parts))


def print_all() -> None:
    parts = bundled()
    notices = [re.search(r"^Copyright \(c\) (.*)$", notice, re.MULTILINE) for *_, notice in parts]
    if None in notices:
        fail("a notice of an npm package without a copyright line")
    # The same but for line ends: the last package's is shown.
    texts = {}
    for (*_, notice), found in zip(parts, notices):
        text = notice.partition(f"{found[0]}\n")[2].strip()
        texts[re.sub(r"\s+", " ", text)] = text
    if len(texts) != 1:
        fail("the npm packages have different texts of one licence")
    names = ", ".join(f"{name} {version}" for name, version, _ in parts)
    print(
        stanza(
            Format="https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/",
            Upstream_Name="GC_Web",
            Comment=comment_on_programs(),
        )
    )
    print(
        stanza(
            Files="*",
            Copyright=f"{YEARS}, {HOLDER}",
            License="all-rights-reserved",
        )
    )
    print(
        stanza(
            Files=f"{BUNDLE}/*",
            Copyright="\n ".join(
                [f"{YEARS}, {HOLDER}", *(found[1] for found in notices if found is not None)]
            ),
            License="all-rights-reserved and Expat",
            Comment=f"\n The scripts contain, as the lock file of the pages has them:\n {names}.",
        )
    )
    print(
        stanza(
            License="all-rights-reserved\n No licence has been chosen for this project. All rights are reserved."
        )
    )
    print(stanza(License=f"Expat\n{continuation(next(iter(texts.values())))}"), end="")


print_all()
