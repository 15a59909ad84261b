"""Options and verbs: the same in a program's help, in its manual page, and in its completion."""

import re
import shutil
import subprocess
from pathlib import Path

import pytest
from places import COMPLETIONS, MANUAL, PROGRAMS, ROOT, usage_of

SCENARIOS = {
    path.stem
    for path in (ROOT / "simulator" / "scenarios").glob("*.json")
    if not path.stem.endswith(".schema")
}
SCRIPTS = ["gc-web-certificate", "gc-web-password"]
RUN_WORDS = {"single", "calib", "auto"}
ABORT_WORDS = {"now", "auto"}

# Calls the completion of the words that follow, and prints what it offers.
COMPLETE = """
source /usr/share/bash-completion/bash_completion
source "$1"
shift
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE="$*" COMP_POINT=${#COMP_LINE}
read -r -a words <<<"$(complete -p "$1")"
for ((i = 0; i < ${#words[@]}; i++)); do
  [ "${words[i]}" != -F ] || function=${words[i + 1]}
done
"$function" "$1" "${@: -1}" "${@: -2:1}"
printf '%s\\n' "${COMPREPLY[@]}"
"""


def options_in_usage(program: str, *verb: str) -> set[str]:
    """`-s server ip` at the beginning of a line, `[-v NUM]`, `-h,--help`."""
    usage = usage_of(program, *verb)
    found = re.findall(r"^ *(-\w|-{2}[\w-]+)(?:,(-{2}[\w-]+))?", usage, re.MULTILINE)
    found += [(option, "") for option in re.findall(r"\[(-\w) ", usage)]
    return {option for pair in found for option in pair if option}


def verbs_in_usage() -> set[str]:
    subcommands = usage_of("gc-simctl").partition("Subcommands:\n")[2]
    return set(re.findall(r"^  (\w+) ", subcommands, re.MULTILINE))


def tags(program: str) -> list[list[str]]:
    """The words of each entry of the page's lists: `.It Fl h , -help` has -h, `,` and --help."""
    section = 8 if program in SCRIPTS else 1
    page = (MANUAL / f"man{section}" / f"{program}.{section}").read_text(encoding="utf-8")
    return [line.split() for line in re.findall(r"^\.It (.*)$", page, re.MULTILINE)]


def options_in_manual(program: str, *verb: str) -> set[str]:
    beginning = ["Cm", *verb, "Fl"] if verb else ["Fl"]
    found = set()
    for words in tags(program):
        if words[: len(beginning)] == beginning:
            rest = words[len(beginning) :]
            names = rest[:3:2] if "," in rest else rest[:1]
            found |= {f"-{name}" for name in names}
    return found


def words_in_manual(program: str, *beginning: str) -> set[str]:
    found = [words for words in tags(program) if words[: len(beginning)] == list(beginning)]
    return {words[len(beginning)] for words in found if len(words) > len(beginning)}


def offered(program: str, *words: str, folder: Path | None = None) -> set[str]:
    """What bash offers for the last of the words."""
    done = subprocess.run(
        ["bash", "--norc", "-c", COMPLETE, "bash", COMPLETIONS / program, program, *words],
        cwd=folder,
        capture_output=True,
        text=True,
        timeout=60,
        check=False,
    )
    assert done.returncode == 0 and done.stderr == "", done
    return set(done.stdout.split())


@pytest.mark.parametrize("program", PROGRAMS)
def test_options(program: str) -> None:
    options = options_in_usage(program)
    assert len(options) >= 5
    assert options_in_manual(program) == options
    assert offered(program, "-") == options


@pytest.mark.parametrize("script", SCRIPTS)
def test_options_of_scripts(script: str) -> None:
    program = ROOT / "web" / "server" / script
    usage = subprocess.run([program, "--help"], capture_output=True, text=True, check=True).stdout
    options = set(re.findall(r"--\w+", usage))
    assert "--file" in options
    assert options_in_manual(script) == options
    assert {word for word in offered(script, "--") if word[0] == "-"} == options


def test_words_of_the_tool() -> None:
    usage = usage_of("GC_Web")
    assert set(re.findall(r"^-R \{(\S+)\}", usage, re.MULTILINE)[0].split("/")) == RUN_WORDS
    assert set(re.findall(r"^-A \{(\S+)\}", usage, re.MULTILINE)[0].split("/")) == ABORT_WORDS
    assert words_in_manual("GC_Web", "Fl", "R", "Cm") == offered("GC_Web", "-R", "") == RUN_WORDS
    assert words_in_manual("GC_Web", "Fl", "A", "Cm") == offered("GC_Web", "-A", "") == ABORT_WORDS


@pytest.mark.parametrize("option, highest", [("-V", 46), ("-v", 46), ("-M", 10)])
def test_numbers_of_the_tool(option: str, highest: int) -> None:
    assert offered("GC_Web", option, "") == {str(number) for number in range(highest + 1)}
    page = (MANUAL / "man1" / "GC_Web.1").read_text(encoding="utf-8")
    text = page.partition(f".It Fl {option[1:]} ")[2].partition(".It ")[0]
    assert f"0 to {highest}" in text


@pytest.mark.parametrize("option", ["-Q", "-C"])
def test_files_of_the_tool(option: str, tmp_path: Path) -> None:
    (tmp_path / "table.json").touch()
    (tmp_path / "other.txt").touch()
    assert offered("GC_Web", option, "", folder=tmp_path) == {"table.json"}


def test_verbs() -> None:
    verbs = verbs_in_usage()
    assert len(verbs) >= 10
    assert words_in_manual("gc-simctl", "Cm") >= verbs
    assert {word for word in offered("gc-simctl", "") if word[0] != "-"} == verbs


@pytest.mark.parametrize("verb", ["set", "fault", "journal", "status", "load"])
def test_options_of_verbs(verb: str, tmp_path: Path) -> None:
    options = options_in_usage("gc-simctl", verb) - {"-h", "--help"}
    assert options_in_manual("gc-simctl", verb) == options
    argument = ["x"] if verb == "load" else []
    everywhere = {"-h", "--help", "--listen", "--control"}
    assert offered("gc-simctl", verb, *argument, "-", folder=tmp_path) == options | everywhere


def test_scenarios(tmp_path: Path) -> None:
    assert len(SCENARIOS) == 5
    assert offered("gc-sim", "--scenario", "", folder=tmp_path) == SCENARIOS
    assert offered("gc-simctl", "load", "", folder=tmp_path) == SCENARIOS
    page = (MANUAL / "man1" / "gc-sim.1").read_text(encoding="utf-8")
    text = page.partition(".It Fl -scenario")[2].partition(".It ")[0]
    assert set(re.findall(r"^\.Cm (\S+)", text, re.MULTILINE)) == SCENARIOS


def test_pages_are_well_formed(tmp_path: Path) -> None:
    """In one folder, so that their references to each other are checked too."""
    pages = [shutil.copy(page, tmp_path) for page in MANUAL.glob("man*/*.[1-8]")]
    done = subprocess.run(
        ["mandoc", "-T", "lint", "-W", "style", *sorted(Path(page).name for page in pages)],
        cwd=tmp_path,
        capture_output=True,
        text=True,
        check=False,
    )
    assert (done.stdout, done.stderr, done.returncode) == ("", "", 0)
