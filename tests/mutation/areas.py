"""The areas of the code that are mutated: what belongs to each, and which tests cover it."""

from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


@dataclass(frozen=True)
class Program:
    """A test program, by the names of its CMake targets."""

    tests: str
    code: tuple[str, ...]
    """Targets whose objects are linked to the tests."""
    libraries: tuple[str, ...]
    needs: tuple[str, ...] = ()
    """Programs that the tests start; these are not mutated."""

    @property
    def targets(self) -> tuple[str, ...]:
        return (*self.code, self.tests)


@dataclass(frozen=True)
class Area:
    name: str
    folders: tuple[str, ...]
    """Whose headers and sources are changed, including subfolders."""
    programs: tuple[Program, ...]
    """In the order in which they are run."""
    least_killed: float
    """As a share of the mutants that compile and can be noticed."""
    mains: tuple[str, ...] = ()
    """Files of programs that no unit test links; not mutated."""
    is_explained: bool = True
    """Whether every survivor is known. Until then a sample only shows what survives, since it would
    fail at random; a full run always fails."""

    def sources(self) -> list[str]:
        """Relative to the root."""
        found = [f for folder in self.folders for f in (ROOT / folder).rglob("*.*")]
        names = [str(f.relative_to(ROOT)) for f in found if f.suffix in {".h", ".cpp"}]
        return sorted(name for name in names if name not in self.mains)

    @property
    def explanations(self) -> Path:
        """The list of changes that no unit test can notice."""
        return Path(__file__).parent / f"equivalent-{self.name}"


GTEST = ("-lgtest_main", "-lgtest")

AREAS = (
    Area(
        "tool",
        ("Source",),
        (
            Program(
                "gc_unit_tests",
                ("gc_web_sections", "gc_fake_instrument"),
                ("-lgmock", *GTEST, "-lACE"),
            ),
        ),
        0.97,
        ("Source/Version.cpp",),
    ),
    Area(
        "simulator",
        ("simulator",),
        (
            Program(
                "gc_library_tests",
                ("gcclient", "gc_client_connection", "gcplatform", "gcerrortext", "gc_wire"),
                (*GTEST, "-lACE"),
            ),
            Program(
                "gc_instrument_tests",
                ("gc_instrument", "gc_json", "gc_wire"),
                ("-lgmock", *GTEST, "-lACE"),
            ),
            Program(
                "gc_server_tests",
                ("gc_server", "gc_remote_control", "gc_instrument", "gc_json", "gc_wire"),
                (*GTEST, "-lACE"),
            ),
        ),
        0.95,
        ("simulator/controller/gc-sim.cpp", "simulator/controller/gc-simctl.cpp"),
        is_explained=False,
    ),
    Area(
        "gateway",
        ("web/gateway",),
        (
            Program(
                "gc_gateway_tests",
                ("gc_gateway",),
                (*GTEST, "-l:libcgicc.a"),
                ("gc_fake_tool",),
            ),
            Program("gc_kept_status_tests", ("gc_gateway",), (*GTEST, "-l:libcgicc.a")),
        ),
        0.95,
        ("web/gateway/command.cpp", "web/gateway/report.cpp"),
        is_explained=False,
    ),
)
