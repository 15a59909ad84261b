// Every parameter of the instrument that has no step, written out: the tests' own copy.
#pragma once

#include <cstdint>

struct ExpectedParameter {
  const char* name;
  std::uint32_t channel;
  std::uint32_t id;
  bool isReal;
  bool isSetting;
  double lowest;
  double highest;
  const char* unit;
};

/// Those that have a step, which are as many parameters as their table has rows.
struct ExpectedSteps {
  const char* name;
  std::uint32_t first;
  std::uint32_t last;
  bool isReal;
  double highest;  ///< the lowest is 0
  const char* unit;
};

constexpr ExpectedSteps cExpectedSteps[] = {
    {"mSlotNr", 0, 10, false, 1, ""},        {"mRunType", 1, 20, false, 3, ""},
    {"mRepeat", 1, 20, false, 999, ""},      {"mStream", 1, 20, false, 46, ""},
    {"mCalib", 1, 20, false, 1, ""},         {"mSolution", 1, 20, false, 10, ""},
    {"mFlushTime", 1, 20, true, 60, "min"},  {"mRT1", 1, 400, true, 60, "min"},
    {"mRT2", 1, 400, true, 60, "min"},       {"mRT3", 1, 400, true, 60, "min"},
    {"mRT4", 1, 400, true, 60, "min"},       {"mLevelAmt1", 1, 400, true, 1e6, ""},
    {"mLevelAmt2", 1, 400, true, 1e6, ""},   {"mLevelAmt3", 1, 400, true, 1e6, ""},
    {"mLevelAmt4", 1, 400, true, 1e6, ""},   {"mLinearCoef1", 1, 400, true, 1e6, ""},
    {"mLinearCoef2", 1, 400, true, 1e6, ""}, {"mLinearCoef3", 1, 400, true, 1e6, ""},
    {"mLinearCoef4", 1, 400, true, 1e6, ""}, {"mAlarmOn", 1, 38, false, 4, ""},
    {"mAlarmOnAll", 1, 38, false, 1, ""},    {"mGroupID", 1, 38, false, 12, ""},
    {"mParamID", 1, 38, false, 400, ""},     {"mTriggered", 1, 38, false, 1, ""},
};

constexpr ExpectedParameter cExpectedParameters[] = {
    {"mInstalled1", 0, 502, false, false, 0, 1, ""},
    {"mInstalled2", 0, 503, false, false, 0, 1, ""},
    {"mInstalled3", 0, 504, false, false, 0, 1, ""},
    {"mInstalled4", 0, 505, false, false, 0, 1, ""},
    {"mColumnHeader1", 1, 200, false, false, 0, 1, ""},
    {"mColumnHeader2", 2, 200, false, false, 0, 1, ""},
    {"mColumnHeader3", 3, 200, false, false, 0, 1, ""},
    {"mColumnHeader4", 4, 200, false, false, 0, 1, ""},
    {"mHeatedSampleLineInstalled", 0, 602, false, false, 0, 1, ""},
    {"mColumnTemp1", 1, 300, true, false, -40, 250, "degC"},
    {"mColumnTemp2", 2, 300, true, false, -40, 250, "degC"},
    {"mColumnTemp3", 3, 300, true, false, -40, 250, "degC"},
    {"mColumnTemp4", 4, 300, true, false, -40, 250, "degC"},
    {"mInjTemp1", 1, 302, true, false, -40, 250, "degC"},
    {"mInjTemp2", 2, 302, true, false, -40, 250, "degC"},
    {"mInjTemp3", 3, 302, true, false, -40, 250, "degC"},
    {"mInjTemp4", 4, 302, true, false, -40, 250, "degC"},
    {"mPress1", 1, 304, true, false, 0, 500, "kPa"},
    {"mPress2", 2, 304, true, false, 0, 500, "kPa"},
    {"mPress3", 3, 304, true, false, 0, 500, "kPa"},
    {"mPress4", 4, 304, true, false, 0, 500, "kPa"},
    {"mColumnTempSP1", 1, 202, true, true, 0, 180, "degC"},
    {"mColumnTempSP2", 2, 202, true, true, 0, 180, "degC"},
    {"mColumnTempSP3", 3, 202, true, true, 0, 180, "degC"},
    {"mColumnTempSP4", 4, 202, true, true, 0, 180, "degC"},
    {"mInjTempSP1", 1, 203, true, true, 0, 110, "degC"},
    {"mInjTempSP2", 2, 203, true, true, 0, 110, "degC"},
    {"mInjTempSP3", 3, 203, true, true, 0, 110, "degC"},
    {"mInjTempSP4", 4, 203, true, true, 0, 110, "degC"},
    {"mPressSP1", 1, 342, true, true, 0, 350, "kPa"},
    {"mPressSP2", 2, 342, true, true, 0, 350, "kPa"},
    {"mPressSP3", 3, 342, true, true, 0, 350, "kPa"},
    {"mPressSP4", 4, 342, true, true, 0, 350, "kPa"},
    {"mRunTimeSP1", 1, 204, false, true, 0, 3600, "s"},
    {"mRunTimeSP2", 2, 204, false, true, 0, 3600, "s"},
    {"mRunTimeSP3", 3, 204, false, true, 0, 3600, "s"},
    {"mRunTimeSP4", 4, 204, false, true, 0, 3600, "s"},
    {"mAutoZero1", 1, 307, true, false, -1000, 1000, "mV"},
    {"mAutoZero2", 2, 307, true, false, -1000, 1000, "mV"},
    {"mAutoZero3", 3, 307, true, false, -1000, 1000, "mV"},
    {"mAutoZero4", 4, 307, true, false, -1000, 1000, "mV"},
    {"mDetState1", 1, 215, false, false, 0, 1, ""},
    {"mDetState2", 2, 215, false, false, 0, 1, ""},
    {"mDetState3", 3, 215, false, false, 0, 1, ""},
    {"mDetState4", 4, 215, false, false, 0, 1, ""},
    {"mDetCalibrated1", 1, 323, false, false, 0, 1, ""},
    {"mDetCalibrated2", 2, 323, false, false, 0, 1, ""},
    {"mDetCalibrated3", 3, 323, false, false, 0, 1, ""},
    {"mDetCalibrated4", 4, 323, false, false, 0, 1, ""},
    {"mSampleLineTemp", 0, 100, true, false, -40, 250, "degC"},
    {"mSampleLineTempSP", 0, 1, true, true, 0, 110, "degC"},
    {"mAmbientTemp", 0, 103, false, false, -40, 80, "degC"},
    {"mAmbientPressure", 0, 104, true, false, 50, 120, "kPa"},
    {"mServiceSwitch", 0, 70, false, false, 0, 1, ""},
    {"mAutoState", 0, 138, false, false, 0, 6, ""},
    {"mExtReady", 0, 131, false, false, 0, 1, ""},
    {"mGC_State", 0, 102, false, false, 0, 10, ""},
    {"mCurrentStream", 0, 58, false, false, 0, 46, ""},
    {"mGC_Error_Status", 0, 132, false, false, 0, 65535, ""},
    {"mGC_CurRunTime", 0, 161, false, false, 0, 3600, "s"},
    {"mGC_FlushingStream", 0, 134, true, false, 0, 60, "min"},
    {"mGC_WaitingBetweenRuns", 0, 162, true, false, 0, 1440, "min"},
    {"mGC_CleaningTimeLeft", 0, 96, false, false, 0, 1440, "min"},
    {"mAnalysisCounter", 0, 2202, false, false, 0, 2147483647, ""},
    {"mContinuous", 0, 12, false, true, 0, 1, ""},
    {"mSeq_line", 0, 136, false, false, 0, 20, ""},
    {"mLine_replicate", 0, 137, false, false, 0, 999, ""},
    {"mSeq_replicate", 0, 135, false, false, 0, 999, ""},
    {"mRunType", 0, 141, false, false, 0, 3, ""},
    {"mAlarmOverall", 0, 2211, false, false, 0, 1, ""},
    {"mHasController", 0, 173, false, false, 0, 1, ""},
    {"mInstSerial", 0, 601, false, false, 0, 2147483647, ""},
    {"mStreamConfigured", 0, 525, false, false, 0, 1, ""},
    {"mStreamMaxNr", 0, 524, false, false, 0, 46, ""},
    {"mAM_SerialNumber1", 1, 826, false, false, 0, 2147483647, ""},
    {"mAM_SerialNumber2", 2, 826, false, false, 0, 2147483647, ""},
    {"mAM_SerialNumber3", 3, 826, false, false, 0, 2147483647, ""},
    {"mAM_SerialNumber4", 4, 826, false, false, 0, 2147483647, ""},
    {"mAM_PN1", 1, 827, false, false, 0, 2147483647, ""},
    {"mAM_PN2", 2, 827, false, false, 0, 2147483647, ""},
    {"mAM_PN3", 3, 827, false, false, 0, 2147483647, ""},
    {"mAM_PN4", 4, 827, false, false, 0, 2147483647, ""},
    {"mCarrierGas1", 1, 201, false, false, 0, 3, ""},
    {"mCarrierGas2", 2, 201, false, false, 0, 3, ""},
    {"mCarrierGas3", 3, 201, false, false, 0, 3, ""},
    {"mCarrierGas4", 4, 201, false, false, 0, 3, ""},
    {"mStartRunType", 0, 60, false, true, 0, 3, ""},
    {"mLevel", 0, 61, false, true, 0, 7, ""},
    {"mStream", 0, 62, false, true, 0, 46, ""},
    {"mRFCalibType", 0, 75, false, true, 0, 3, ""},
    {"mReplicate", 0, 73, false, true, 0, 99, ""},
    {"mCurrentReplicate", 0, 74, false, true, 0, 99, ""},
    {"mStreamNr", 0, 39, false, true, 0, 46, ""},
    {"mTableRepeat", 0, 15, false, true, 0, 999, ""},
    {"mTotalLines", 0, 144, false, false, 0, 20, ""},
    {"mEnabled", 0, 2028, false, false, 0, 1, ""},
    {"mTotal", 0, 2029, false, false, 0, 38, ""},
};
