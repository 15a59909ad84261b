"""Options: their effect, what is rejected, and that a rejection contacts no instrument."""

import pytest
from conftest import StartSimulator, Traced
from programs import Run, Tool

USAGE = """\
Usage: {name}
-s server ip       Specify server IP address.
-t                 Output GC status only.
-g                 Output GC config only.
-a                 Output Alarm status.
-P                 Reset all anyapp alarms.
-V NUM             Switch VICI to Stream NUM.
-R {{auto/single/calib}} [-v NUM] 
   auto            Start automation runs.
   single          Start a single run.
   calib           Start a calibration run (level 1).
   -v NUM          Only meaningful for a single/calibraion run.
                   Indicate the stream position shown in report.
-A {{now/auto}}      Abort the current single run/sequence.
-M NUM             Load the Solution from slot NUM.
-q                 Output current GC sequence table.
-Q file            Read the sequence table from file, and
                   download it to micro GC.
-c                 Output current GC calibration results.
-C file            Read the calibration level amounts from file,
                   and download it to micro GC.

-h                 Show this help
"""
NO_NUMBER = "ERROR: can't convert string to number\n"
NO_STREAM = "ERROR: number out of range for stream\n"
NO_SLOT = "ERROR: number out of range for slot\n"
NO_FILE = "No file specified\n"
NO_ADDRESS = "Invalid IP address\n"
NO_STDIN = "Stdin not supported\n"
# How arguments are parsed, within the ranges of streams and slots.
NUMBERS = {"0": 0, "10": 10, "7.9": 7, " 7": 7, "+7": 7, "-0": 0, "0x10": 0}


def expect(run: Run, status: int, stderr: str) -> None:
    """Expects a run without a document."""
    assert (run.status, run.stdout, run.stderr.decode()) == (status, b"", stderr)


def expect_connecting(run: Run) -> None:
    """Expects a status report that finds no controller at the address."""
    assert run.document == {"ErrorCode": 10053, "Msg": "Unable to connect to GC!"}
    assert run.status == 0


@pytest.mark.parametrize(
    "arguments, stderr",
    [
        (["-V", "47"], NO_STREAM),
        (["-V", "-1"], NO_STREAM),
        (["-V", "47x"], NO_STREAM),
        (["-V", "2147483648"], NO_STREAM),
        (["-V", "4294967296"], NO_STREAM),
        (["-V", "-4294967296"], NO_STREAM),
        (["-V", "99999999999999999999"], NO_STREAM),
        (["-V", "-99999999999999999999"], NO_STREAM),
        (["-V", "abc"], NO_NUMBER),
        (["-V", "x5"], NO_NUMBER),
        (["-V", "-"], NO_NUMBER),
        (["-V", " "], NO_NUMBER),
        (["-V", ""], NO_NUMBER),
        (["-v", "47"], NO_STREAM),
        (["-v", "-1"], NO_STREAM),
        (["-v", "4294967296"], NO_STREAM),
        (["-v", "abc"], NO_NUMBER),
        (["-v", ""], NO_NUMBER),
        (["-M", "11"], NO_SLOT),
        (["-M", "-1"], NO_SLOT),
        (["-M", "4294967296"], NO_SLOT),
        (["-M", "99999999999999999999"], NO_SLOT),
        (["-M", "abc"], NO_NUMBER),
        (["-M", ""], NO_NUMBER),
        (["-R", "Single"], "Operation 'Single' unknown\n"),
        (["-R", "singles"], "Operation 'singles' unknown\n"),
        (["-R", ""], "Operation '' unknown\n"),
        (["-R", "%s%n"], "Operation '%s%n' unknown\n"),
        (["-R", "x" * 5000], f"Operation '{'x' * 5000}' unknown\n"),
        (["-Q", ""], NO_FILE),
        (["-C", ""], NO_FILE),
        (["extra"], NO_STDIN),
        (["-"], NO_STDIN),
        (["-t", "extra"], NO_STDIN),
        (["extra", "-t"], NO_STDIN),
        (["-t", "--", "-t"], NO_STDIN),
        (["-s", "0.1.2.3"], NO_ADDRESS),
        (["-s", "255.1.1.1"], NO_ADDRESS),
        (["-s", "256.0.0.1"], NO_ADDRESS),
        (["-s", "511.0.0.1"], NO_ADDRESS),
        (["-s", "localhost"], NO_ADDRESS),
        (["-s", ""], NO_ADDRESS),
    ],
)
def test_refused(tool: Tool, untouched: str, arguments: list[str], stderr: str) -> None:
    expect(tool("-s", untouched, *arguments), 255, stderr)


@pytest.mark.parametrize(
    "arguments, stderr",
    [
        (["-V", "99", "-Q", "", "-x"], NO_STREAM),
        (["-Q", "", "-V", "99"], NO_FILE),
        (["-V", "99", "-V", "1"], NO_STREAM),
        (["extra", "-M", "11"], NO_SLOT),
        (["-s", "0.0.0.0", "-M", "x"], NO_NUMBER),
        (["-s", "0.0.0.0", "extra"], NO_STDIN),
        (["-V", "99", "-h"], NO_STREAM),
    ],
)
def test_first_fault_is_told(tool: Tool, untouched: str, arguments: list[str], stderr: str) -> None:
    """Each argument is checked as it is read, the operands after all options."""
    expect(tool("-s", untouched, *arguments), 255, stderr)


@pytest.mark.parametrize(
    "arguments", [["-h"], ["-h", "-t"], ["-t", "-h"], ["-h", "-x", "-V", "99"]]
)
def test_help(tool: Tool, untouched: str, arguments: list[str]) -> None:
    expect(tool("-s", untouched, *arguments), 0, USAGE.format(name="GC_Web"))


@pytest.mark.parametrize(
    "arguments, complaint",
    [
        (["-x"], "invalid option -- 'x'"),
        (["-tx", "-h"], "invalid option -- 'x'"),
        (["--help"], "invalid option -- '-'"),
        (["-?"], "invalid option -- '?'"),
        *[([f"-{letter}"], f"option requires an argument -- '{letter}'") for letter in "svAVRMQC"],
    ],
)
def test_no_such_option(tool: Tool, untouched: str, arguments: list[str], complaint: str) -> None:
    expected = f"GC_Web: {complaint}\n" + USAGE.format(name="GC_Web")
    expect(tool("-s", untouched, *arguments), 255, expected)


@pytest.mark.parametrize("name", ["/usr/lib/cgi-bin/status", "%s%n", "x" * 5000, ""])
def test_usage_tells_the_name_of_invocation(tool: Tool, untouched: str, name: str) -> None:
    expect(tool("-s", untouched, "-h", name=name), 0, USAGE.format(name=name))


@pytest.mark.parametrize(
    "arguments, calls",
    [
        (["-g"], [("Connect", 1), "Read", *["Object"] * 6]),
        (["-a"], [("Connect", 1), "Read"]),
        (["-q"], [("Connect", 1), "Read", "Read"]),
        (["-c"], [("Connect", 1), *["ProgramInfo"] * 4]),
        (["-P"], [("Connect", 0), ("Command", 35)]),
        *[(["-V", word], [("Connect", 0), ("Write", 39, 0, n)]) for word, n in NUMBERS.items()],
        (["-V", "46x"], [("Connect", 0), ("Write", 39, 0, 46)]),
        (["-V5"], [("Connect", 0), ("Write", 39, 0, 5)]),
        *[(["-M", word], [("Connect", 0), ("Write", 1003, n, 0)]) for word, n in NUMBERS.items()],
        (["-M", "10x"], [("Connect", 0), ("Write", 1003, 10, 0)]),
        (["-V", "3", "-M", "9"], [("Connect", 0), ("Write", 1003, 9, 0)]),
        (["-M", "9", "-v", "46"], [("Connect", 0), ("Write", 1003, 46, 0)]),
        (["-v", "8", "-V", "3"], [("Connect", 0), ("Write", 39, 0, 3)]),
        (["-V", "3", "-v", "8"], [("Connect", 0), ("Write", 39, 0, 8)]),
        (["-M", "9", "-A", "later", "-V", "3"], [("Connect", 0), ("Write", 39, 0, 3)]),
        (["-R", "auto"], [("Connect", 0), ("Command", 16)]),
        (["-R", "auto", "--"], [("Connect", 0), ("Command", 16)]),
        (["-R", "calib", "-R", "auto"], [("Connect", 0), ("Command", 16)]),
        (["-A", "now"], [("Connect", 0), ("Command", 1), ("Command", 17)]),
        *[
            (["-A", word], [("Connect", 0), ("Command", 17)])
            for word in ["auto", "later", "Now", "now ", "", "x" * 5000]
        ],
        (["-A", "auto", "-A", "now"], [("Connect", 0), ("Command", 1), ("Command", 17)]),
        (["-A", "auto", "-v", "0"], [("Connect", 0), ("Command", 1), ("Command", 17)]),
        (["-A", "now", "-v", "5"], [("Connect", 0), ("Command", 17)]),
        (["-Q", "no-such-file"], [("Connect", 0)]),
        (["-C", "no-such-file"], [("Connect", 0)]),
        (["-tg"], [("Connect", 1), "Read", *["Object"] * 6]),
        (["-P", "-t", "-g"], [("Connect", 1), "Read", *["Object"] * 6]),
        (["-g", "-v", "3"], [("Connect", 1), "Read", *["Object"] * 6]),
    ],
)
def test_operation(
    tool: Tool, simulator: StartSimulator, arguments: list[str], calls: list[object]
) -> None:
    """The operation that a command line selects, judged by what the instrument receives."""
    controller = simulator("bare")
    # The instrument accepts and ignores everything.
    for call in ["Write", "Command"]:
        controller.fault(kind="ignore", call=call, times=0)
    controller.control("set", "mEnabled", "0")
    controller.fault(kind="status", call="ProgramInfo", status=210, times=0)
    assert tool("-s", controller.address, *arguments).status == 0

    seen: list[object] = []
    for line in controller.last_run():
        if line["call"] == "Connect":
            seen.append(("Connect", line["mode"]))
        elif line["call"] == "Command":
            seen.append(("Command", line["command"]))
        elif line["call"] == "Write":
            (record,) = line["records"]
            seen.append(("Write", record["id"], record["step"], record["int"]))
        else:
            seen.append(line["call"])
    assert seen == [*calls, "Disconnect"]


@pytest.mark.parametrize(
    "arguments",
    [
        [],
        ["-t"],
        ["-t", "-t"],
        ["-tt"],
        ["-g", "-t"],
        ["-R", "single", "-t"],
        ["-V", "5", "-M", "3", "-A", "now", "-Q", "file", "-C", "file", "-P", "-t"],
        ["-v", "46"],
        ["-v", "0x10", "-t"],
        ["-t", "--"],
    ],
)
def test_status_is_asked_for(tool: Tool, address: str, arguments: list[str]) -> None:
    expect_connecting(tool("-s", address, *arguments))


@pytest.mark.parametrize(
    "form",
    [
        "{0}.{1}.{2}.{3}",
        "{0}.{1}.{2}.{3}.9",
        "{0}.{1}.{2}.{3}x",
        " {0}. {1}. {2}. {3}",
        "00{0}.{1}.{2}.00{3}",
        "{4}.{5}.{6}.{7}",
        "-{8}.{1}.{2}.{3}",
    ],
)
def test_address(tool: Tool, simulator: StartSimulator, address: str, form: str) -> None:
    """Numbers are cut to their low eight bits; anything after the fourth is ignored."""
    simulator()
    octets = [int(octet) for octet in address.split(".")]
    run = tool("-s", form.format(*octets, *[octet + 256 for octet in octets], 256 - octets[0]))
    assert "GC_time" in run.document
    assert (run.status, run.stderr) == (0, b"")


def test_last_address_counts(tool: Tool, simulator: StartSimulator, address: str) -> None:
    simulator()
    assert "GC_time" in tool("-s", "0.0.0.0", "-s", address).document


@pytest.mark.parametrize("arguments, expected", [([], "127.0.0.1"), (["-s", "127.9"], "127.9.0.0")])
def test_address_not_given(traced: Traced, arguments: list[str], expected: str) -> None:
    # A controller may or may not be running there, so the test looks at the system call.
    calls = traced("connect", *arguments)
    assert [call for call in calls if f'htons(20047), sin_addr=inet_addr("{expected}")' in call]
