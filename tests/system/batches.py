"""The batches of every operation except the status report, and the order of their records."""

from collections.abc import Mapping
from typing import Any, NamedTuple


class Address(NamedTuple):
    """The address of a parameter, as in a record."""

    channel: int
    method: int
    step: int
    id: int


def address_of(record: Mapping[str, Any]) -> Address:
    return Address(record["channel"], record["method"], record["step"], record["id"])


def addresses(line: Mapping[str, Any]) -> list[Address]:
    """The addresses of the records of a journal line, in order."""
    return [address_of(record) for record in line["records"]]


def values(line: Mapping[str, Any]) -> dict[Address, tuple[int, float]]:
    """The integer and real values of the records of a journal line."""
    return {address_of(record): (record["int"], record["real"]) for record in line["records"]}


def bucket(name: str, buckets: int) -> int:
    """The bucket of a name in ACE's hash map: ACE's variant of P. J. Weinberger's hash."""
    value = 0
    for octet in name.encode():
        value = (value << 4) + octet * 13
        high = value & 0xF0000000
        if high:
            value ^= high >> 24
            value ^= high
    return value % buckets


def in_order(registered: Mapping[str, Address], buckets: int) -> list[str]:
    """Names in the order of a batch: bucket by bucket, each with the last registered name first."""
    return sorted(reversed(registered), key=lambda name: bucket(name, buckets))


def batch(registered: Mapping[str, Address], buckets: int) -> list[Address]:
    return [registered[name] for name in in_order(registered, buckets)]


def of_channels(name: str, parameter: int) -> dict[str, Address]:
    """A parameter on each of the channels 1 to 4, with the channel's digit after the name."""
    return {f"{name}{n}": Address(n, 0, 0, parameter) for n in range(1, 5)}


CONFIGURATION = {
    "mInstSerial": Address(0, 0, 0, 601),
    "mStreamConfigured": Address(0, 0, 0, 525),
    "mStreamMaxNr": Address(0, 0, 0, 524),
    **{f"mInstalled{n}": Address(0, 0, 0, 501 + n) for n in range(1, 5)},
    **of_channels("mColumnHeader", 200),
    **of_channels("mAM_SerialNumber", 826),
    **of_channels("mAM_PN", 827),
    **of_channels("mCarrierGas", 201),
    "mHeatedSampleLineInstalled": Address(0, 0, 0, 602),
}

SEQUENCE_BUCKETS = 20
SEQUENCE_HEADER = {
    "mTableRepeat": Address(0, 0, 0, 15),
    "mContinuous": Address(0, 0, 0, 12),
    "mStreamConfigured": Address(0, 0, 0, 525),
    "mTotalLines": Address(0, 0, 0, 144),
}
SEQUENCE_HEADER_TO_WRITE = {
    "mTableRepeat": Address(0, 0, 0, 15),
    "mContinuous": Address(0, 0, 0, 12),
}


def sequence_line(line: int) -> dict[str, Address]:
    """The batch for a line, from 1, as the report reads it."""
    return {
        "mRunType": Address(0, 0, line, 23),
        "mRepeat": Address(0, 0, line, 24),
        "mStream": Address(0, 0, line, 22),
        "mSolution": Address(1, 0, line, 1010),
        "mFlushTime": Address(0, 0, line, 26),
    }


def sequence_line_to_write(line: int) -> dict[str, Address]:
    """The batch for a line, from 1, as the download writes it."""
    return {
        "mRunType": Address(0, 0, line, 23),
        "mRepeat": Address(0, 0, line, 24),
        "mCalib": Address(0, 0, line, 25),
        "mStream": Address(0, 0, line, 22),
        "mSolution": Address(1, 0, line, 1010),
        "mFlushTime": Address(0, 0, line, 26),
    }


PEAK_BUCKETS = 25


def peak(channel: int, number: int) -> dict[str, Address]:
    """The batch for a peak, from 1: twenty characters of its name, and three real values."""
    letters = {f"mNameC{i}": Address(channel, 0, number, 1176 + i) for i in range(20)}
    return {
        **letters,
        "mRT": Address(channel, 0, number, 1196),
        "mLevelAmt": Address(channel, 0, number, 1230),
        "mLinearCoef": Address(channel, 0, number, 1242),
    }


def level(channel: int, number: int) -> Address:
    """The level amount of a peak, from 1: the only parameter that a download writes."""
    return Address(channel, 0, number, 1230)


ALARM_BUCKETS = 40
ALARM_HEADER = {"mEnabled": Address(0, 0, 0, 2028), "mTotal": Address(0, 0, 0, 2029)}


def alarm_row(row: int) -> dict[str, Address]:
    """The batch for a row, from 1."""
    return {
        "mAlarmOn": Address(0, 0, row, 2030),
        "mAlarmOnAll": Address(0, 0, row, 2038),
        "mGroupID": Address(0, 0, row, 2031),
        "mParamID": Address(0, 0, row, 2032),
        "mTriggered": Address(0, 0, row, 2212),
    }


def component_name(index: int) -> list[Address]:
    """Twenty characters; the channel is the character's position."""
    return [Address(n, 0, index, 2021) for n in range(1, 21)]


SINGLE_RUN = {
    "mRunType": Address(0, 0, 0, 60),
    "mLevel": Address(0, 0, 0, 61),
    "mStream": Address(0, 0, 0, 62),
}
CALIBRATION_RUN = {
    **SINGLE_RUN,
    "mRFCalibType": Address(0, 0, 0, 75),
    "mReplicate": Address(0, 0, 0, 73),
    "mCurrentReplicate": Address(0, 0, 0, 74),
}
STREAM = Address(0, 0, 0, 39)
