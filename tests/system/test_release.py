"""The tool as installed on a controller: linked to libraries that the build did not make.

The stand-ins from the build under test are given the names of the maker's libraries.
"""

import fcntl
import re
import subprocess
from pathlib import Path

import pytest
from conftest import StartSimulator
from programs import ROOT, Run, Tool

pytestmark = pytest.mark.release

LIBRARIES = {
    "GC_CLIENT_LIBRARY": "libgcclient.so",
    "GC_PLATFORM_LIBRARY": "libgcplatform.so",
    "GC_ERRORTEXT_LIBRARY": "libgcerrortext.so",
}


def run(*command: str | Path) -> str:
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


def configure(bin_dir: Path, build: Path, names: list[str]) -> subprocess.CompletedProcess[str]:
    library_dir = bin_dir.parent / "lib"
    named = [f"-D{name}={library_dir / LIBRARIES[name]}" for name in names]
    command = ["cmake", "--preset", "release", "-B", build, *named]
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False)


@pytest.fixture(scope="module")
def installed(bin_dir: Path, tmp_path_factory: pytest.TempPathFactory) -> Path:
    """The folder into which the tool is installed."""
    build = bin_dir.parent / "as-installed"  # kept with the build, so that it is made only once
    prefix = tmp_path_factory.mktemp("prefix")
    with (bin_dir.parent / "as-installed.lock").open("w") as lock:
        # Every worker of a run sets up this fixture; CMake and Ninja can only run one at a time.
        fcntl.flock(lock, fcntl.LOCK_EX)
        assert configure(bin_dir, build, list(LIBRARIES)).returncode == 0
        run("cmake", "--build", build)
        run("cmake", "--install", build, "--prefix", prefix, "--component", "tool")
    return prefix


def test_no_stand_in_is_installed(installed: Path) -> None:
    files = [path.relative_to(installed) for path in installed.rglob("*") if path.is_file()]
    assert Path("bin/GC_Web") in files and Path("share/man/man1/GC_Web.1") in files
    assert [path for path in files if re.search(r"gc-?(sim|client|platform|error)", path.name)] == []


@pytest.mark.parametrize("program", ["report", "command"])
def test_the_gateway_needs_only_the_c_library(bin_dir: Path, program: str) -> None:
    dynamic = run("readelf", "-dW", bin_dir.parent / "web" / program)
    needed = re.findall(r"\(NEEDED\) .*\[(.*)\]", dynamic)
    # The runtime asks the loader itself for its variables of each thread.
    assert [name for name in needed if not name.startswith("ld-linux")] == ["libc.so.6"]


def test_the_loader_has_little_to_do(installed: Path) -> None:
    dynamic = run("readelf", "-dW", installed / "bin/GC_Web")
    assert "(GNU_HASH)" in dynamic and "(HASH)" not in dynamic
    assert "BIND_NOW" in dynamic
    assert dynamic.count("(NEEDED)") == 7
    assert "GNU_RELRO" in run("readelf", "-lW", installed / "bin/GC_Web")


def test_nothing_in_the_tool_leads_into_a_build(installed: Path) -> None:
    """The loader finds the libraries by their names, wherever the controller has them."""
    tool = installed / "bin/GC_Web"
    dynamic = run("readelf", "-dW", tool)
    assert "RUNPATH" not in dynamic and "RPATH" not in dynamic
    needed = re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic)
    assert set(LIBRARIES.values()) <= set(needed)
    assert not [name for name in needed if "/" in name]
    assert str(ROOT).encode() not in tool.read_bytes()


def test_no_stream_is_set_up_at_start(installed: Path) -> None:
    symbols = run("nm", "-DC", installed / "bin/GC_Web")
    assert "std::ios_base::Init" not in symbols
    assert "setlocale" not in symbols and "getaddrinfo" not in symbols


def test_the_factory_of_remote_objects_can_be_shared(installed: Path) -> None:
    symbols = run("nm", "-DC", "--defined-only", installed / "bin/GC_Web")
    assert "ACE_Singleton<CloneFactory, ACE_Thread_Mutex>::singleton_" in symbols


@pytest.mark.parametrize("count", [1, 2])
def test_some_libraries_are_not_enough(bin_dir: Path, tmp_path: Path, count: int) -> None:
    done = configure(bin_dir, tmp_path, list(LIBRARIES)[:count])
    assert done.returncode != 0
    assert "Set all of GC_CLIENT_LIBRARY" in done.stderr


def test_a_library_that_is_not_there_is_refused(bin_dir: Path, tmp_path: Path) -> None:
    done = configure(bin_dir.parent / "nowhere" / "bin", tmp_path, list(LIBRARIES))
    assert done.returncode != 0
    assert "no such file" in done.stderr


def make_library(
    path: Path, soname: str | None = None, needs: list[Path] | None = None
) -> Path:
    """An empty library, or one that needs others."""
    command = ["g++", "-shared", "-nostdlib", "-o", path, "-x", "c++", "/dev/null", "-x", "none"]
    if soname is not None:
        command.append(f"-Wl,-soname,{soname}")
    run(*command, "-Wl,--no-as-needed", *(needs or []))
    return path


def configure_with(folder: Path, **libraries: Path) -> subprocess.CompletedProcess[str]:
    """With libraries in the place of the maker's; those not named are empty."""
    named = ["-DGC_BUILD_WEB=OFF"]
    for name in LIBRARIES:
        path = libraries.pop(name, None) or make_library(folder / f"{name}.so", f"lib{name}.so.1")
        named.append(f"-D{name}={path}")
    named += [f"-D{name}={path}" for name, path in libraries.items()]
    command = ["cmake", "--preset", "release", "-B", folder / "build", *named]
    done = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False)
    done.stderr = " ".join(done.stderr.split())
    return done


@pytest.mark.parametrize("soname", ["libACE-6.5.8.so", "libACE.so.6.2.2"])
def test_another_version_of_ace_is_refused(tmp_path: Path, soname: str) -> None:
    """Both would be in one process. The message tells how to build with the maker's."""
    ace = make_library(tmp_path / "libACE.so", soname)
    client = make_library(tmp_path / "client.so", "libclient.so.1", [ace])
    done = configure_with(tmp_path, GC_CLIENT_LIBRARY=client)
    assert done.returncode != 0
    for words in (
        f"GC_CLIENT_LIBRARY: {client} needs {soname}, but this build links libACE",
        f"-DACE_LIBRARY=/path/to/{soname} -DACE_INCLUDE_DIR=",
    ):
        assert words in done.stderr
    assert configure_with(tmp_path, GC_CLIENT_LIBRARY=client, ACE_LIBRARY=ace).returncode == 0


def test_a_library_without_a_soname_is_refused(tmp_path: Path) -> None:
    """A tool linked to it would have the path of this build in it."""
    platform = make_library(tmp_path / "platform.so")
    done = configure_with(tmp_path, GC_PLATFORM_LIBRARY=platform)
    assert done.returncode != 0
    assert f"GC_PLATFORM_LIBRARY: {platform} has no soname" in done.stderr


def test_a_fourth_library(tmp_path: Path) -> None:
    """May be beside the others; otherwise the message names it."""
    (tmp_path / "elsewhere").mkdir()
    fourth = make_library(tmp_path / "elsewhere" / "libfourth.so.4", "libfourth.so.4")
    text = make_library(tmp_path / "text.so", "libtext.so.1", [fourth])
    done = configure_with(tmp_path, GC_ERRORTEXT_LIBRARY=text)
    assert done.returncode != 0
    assert f"GC_ERRORTEXT_LIBRARY: {text} also needs libfourth.so.4" in done.stderr
    fourth.rename(tmp_path / fourth.name)
    assert configure_with(tmp_path, GC_ERRORTEXT_LIBRARY=text).returncode == 0


def test_a_library_for_another_processor_is_refused(tmp_path: Path) -> None:
    client = make_library(tmp_path / "client.so", "libclient.so.1")
    octets = bytearray(client.read_bytes())
    octets[18:20] = b"\x00\x00"  # the machine in the header: none
    client.write_bytes(octets)
    done = configure_with(tmp_path, GC_CLIENT_LIBRARY=client)
    assert done.returncode != 0
    assert f"GC_CLIENT_LIBRARY: {client} is no library for this processor" in done.stderr


MEMORY = {
    "status": [],
    "configuration": ["-g"],
    "alarms": ["-a"],
    "reset of the alarms": ["-P"],
    "sequence": ["-q"],
    "sequence download": ["-Q", "{sequence}"],
    "calibration": ["-c"],
    "calibration download": ["-C", "{calibration}"],
    "single run": ["-R", "single", "-v", "2"],
    "calibration run": ["-R", "calib", "-v", "1"],
    "automation": ["-R", "auto"],
    "abort": ["-A", "now"],
    "abort of the automation": ["-A", "auto"],
    "stream": ["-V", "2"],
    "solution": ["-M", "1"],
    "usage": ["-h"],
    "refused file": ["-Q", "/"],
}


def timeless(run: Run) -> bytes:
    return re.sub(rb'"GC_time": "[^"]*"', b"", run.stdout)


@pytest.mark.parametrize(
    "arguments",
    [
        # Only one per test run, because valgrind is slow.
        pytest.param(arguments, id=name, marks=[] if name == "status" else [pytest.mark.valgrind])
        for name, arguments in MEMORY.items()
    ],
)
def test_memory_is_used_well(
    arguments: list[str],
    installed: Path,
    bin_dir: Path,
    simulator: StartSimulator,
    tmp_path: Path,
) -> None:
    folder = tmp_path / "empty"
    folder.mkdir()
    controller = simulator("four-channel")
    environment = {"LD_LIBRARY_PATH": str(bin_dir.parent / "lib")}
    tool = Tool(installed / "bin/GC_Web", folder)
    files = {}
    for name, option in ("sequence", "-q"), ("calibration", "-c"):
        files[name] = tmp_path / f"{name}.json"
        report = tool("-s", controller.address, option, environment=environment)
        files[name].write_bytes(report.stdout)
    arguments = ["-s", controller.address, *(word.format(**files) for word in arguments)]
    plain = tool(*arguments, name=str(installed / "bin/GC_Web"), environment=environment)
    controller.ask(verb="load", scenario="four-channel")
    valgrind = ["valgrind", "-q", "--leak-check=full", "--error-exitcode=99"]
    done = tool(*arguments, under=valgrind, environment=environment)
    assert (timeless(done), done.stderr, done.status) == (
        timeless(plain),
        plain.stderr,
        plain.status,
    )
