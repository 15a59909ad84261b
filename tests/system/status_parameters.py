"""The parameters of the status report, and their order in a batch."""

from batches import Address, in_order, of_channels

# On each of the channels 1 to 4, with the channel's digit after the name.
OF_CHANNELS = {
    "mColumnTemp": 300,
    "mInjTemp": 302,
    "mPress": 304,
    "mColumnTempSP": 202,
    "mInjTempSP": 203,
    "mPressSP": 342,
    "mRunTimeSP": 204,
    "mAutoZero": 307,
    "mDetState": 215,
    "mDetCalibrated": 323,
}

OF_THE_INSTRUMENT = {
    "mSampleLineTemp": 100,
    "mSampleLineTempSP": 1,
    "mAmbientTemp": 103,
    "mAmbientPressure": 104,
    "mServiceSwitch": 70,
    "mAutoState": 138,
    "mExtReady": 131,
    "mGC_State": 102,
    "mCurrentStream": 58,
    "mGC_Error_Status": 132,
    "mGC_CurRunTime": 161,
    "mGC_FlushingStream": 134,
    "mGC_WaitingBetweenRuns": 162,
    "mGC_CleaningTimeLeft": 96,
    "mAnalysisCounter": 2202,
    "mContinuous": 12,
    "mSeq_line": 136,
    "mLine_replicate": 137,
    "mSeq_replicate": 135,
    "mRunType": 141,
    "mAlarmOverall": 2211,
    "mHasController": 173,
}


def registered() -> dict[str, Address]:
    """Name to address, in the report's registration order."""
    rows = {f"mInstalled{n}": Address(0, 0, 0, 501 + n) for n in range(1, 5)}
    rows |= of_channels("mColumnHeader", 200)
    rows["mHeatedSampleLineInstalled"] = Address(0, 0, 0, 602)
    for name, parameter in OF_CHANNELS.items():
        rows |= of_channels(name, parameter)
    rows |= {name: Address(0, 0, 0, parameter) for name, parameter in OF_THE_INSTRUMENT.items()}
    return rows


def sent() -> list[str]:
    """Names in batch order."""
    return in_order(registered(), 128)
