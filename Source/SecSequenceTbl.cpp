// The automation sequence table: one batch for the header and one per line, in both directions.
#include "SecSequenceTbl.h"

#include <InstrumentClient.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "ParameterTable.h"
#include "RunType.h"

namespace {

constexpr std::size_t cBuckets = 20;
constexpr int cMaxLines = 20;
constexpr std::size_t cRunTypeSize = 30;

constexpr unsigned long cInsertLine = 19;
constexpr unsigned long cClearTable = 22;

// The instrument's parameter table: header, and lines, which are addressed by step.
constexpr unsigned long cTableRepeatId = 15;
constexpr unsigned long cContinuousId = 12;
constexpr unsigned long cStreamConfiguredId = 525;
constexpr unsigned long cTotalLinesId = 144;
constexpr unsigned long cRunTypeId = 23;
constexpr unsigned long cRepeatId = 24;
constexpr unsigned long cCalibId = 25;
constexpr unsigned long cStreamId = 22;
constexpr unsigned long cSolutionId = 1010;
constexpr unsigned long cFlushTimeId = 26;
// The instrument keeps solutions on channel 1, everything else about a line on channel 0.
constexpr unsigned long cSolutionChannel = 1;

constexpr ParameterRow cHeader[] = {
    {cTableRepeatId, "mTableRepeat"},
    {cContinuousId, "mContinuous"},
    {cStreamConfiguredId, "mStreamConfigured"},
    {cTotalLinesId, "mTotalLines"},
};
constexpr ParameterRow cLine[] = {
    {cRunTypeId, "mRunType"},     {cRepeatId, "mRepeat"},
    {cStreamId, "mStream"},       {cSolutionId, "mSolution", cSolutionChannel},
    {cFlushTimeId, "mFlushTime"},
};

}  // namespace

void SecSequenceTbl::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
}

int SecSequenceTbl::readGC() {
  LocalMap local(cBuckets);
  ParameterMap& aMap = *local;
  registerParameters(aMap, cHeader);
  unsigned int ulResult = readParams(aMap, mHandle);
  if (!hasArrived(ulResult)) {
    return static_cast<int>(ulResult);
  }

  Document document;
  document.SetObject();
  AllocatorType& al = document.GetAllocator();
  document.AddMember("Table_repeat", getIntValue(aMap, "mTableRepeat", 0), al);
  document.AddMember("Continuous", isSet(aMap, "mContinuous"), al);
  // Without a stream selection there is one line, whatever count the instrument reports.
  const bool bStream = getIntValue(aMap, "mStreamConfigured", 0) > 0;
  const int lines = bStream ? getIntValue(aMap, "mTotalLines", 0) : 1;
  document.AddMember("total", lines, al);
  if (lines >= 1) {
    Value rows(rapidjson::kArrayType);
    for (int n = 1; n <= std::min(lines, cMaxLines); ++n) {
      clearParamMap(aMap, false);
      registerParameters(aMap, cLine, static_cast<unsigned long>(n));
      ulResult = readParams(aMap, mHandle);
      if (!hasArrived(ulResult)) {
        return static_cast<int>(ulResult);
      }
      char buffer[cRunTypeSize];
      printRun_Type(getIntValue(aMap, "mRunType", 0), buffer);
      Value arow(rapidjson::kObjectType);
      addText(arow, "Type", buffer, al);
      arow.AddMember("Repeat", getIntValue(aMap, "mRepeat", 0), al);
      arow.AddMember("Stream", getIntValue(aMap, "mStream", 0), al);
      arow.AddMember("Slot", getIntValue(aMap, "mSolution", 0), al);
      addReal(arow, "Flush_time", getRealValue(aMap, "mFlushTime", 0.0), al);
      rows.PushBack(arow, al);
    }
    document.AddMember("rows", rows, al);
  }
  printDocument(document);
  return 0;
}

int SecSequenceTbl::parseFile(char* file) {
  return parseJsonFile(file, dom4write);
}

int SecSequenceTbl::writeGC() {
  if (findJsonMember(dom4write, "Table_repeat") == nullptr ||
      findJsonMember(dom4write, "total") == nullptr) {
    // Kept odd: code 0 although nothing was done. Only the returned status shows the failure.
    printErroMsg(0, "Format Invalid");
    return -1;
  }

  LocalMap local(cBuckets);
  ParameterMap& aMap = *local;
  const long repeat = getIntJsonMember(dom4write, "Table_repeat", 0);
  const long continuous = getBooleanJsonMember(dom4write, "Continuous", false) ? 1 : 0;
  const ParameterRow header[] = {
      {cTableRepeatId, "mTableRepeat", 0, eSpan::eSingle, repeat},
      {cContinuousId, "mContinuous", 0, eSpan::eSingle, continuous},
  };
  registerParameters(aMap, header);
  unsigned long ulResult = writeParams(aMap, mHandle);
  if (ulResult != 0) {
    return printResult(ulResult, "Refused: unable to set table repeat");
  }
  ulResult = ExecuteCommand(mHandle, 0, cClearTable);
  if (ulResult != 0) {
    // Kept odd, spelling included.
    return printResult(ulResult, "Refused: unabled to clear orignal table");
  }

  const int count = std::min(getIntJsonMember(dom4write, "total", 0), cMaxLines);
  const Value* rows = findJsonMember(dom4write, "rows");
  if (rows != nullptr && rows->IsArray()) {
    int n = 0;
    for (const Value& row : rows->GetArray()) {
      if (++n > count) {
        break;
      }
      // A cleared table already has its first line.
      if (n > 1) {
        ulResult = ExecuteCommand(mHandle, 0, cInsertLine);
        if (ulResult != 0) {
          return printResult(ulResult, "Refused: unable to insert new sequence");
        }
      }
      ulResult = writeLine(aMap, row, static_cast<unsigned long>(n));
      if (ulResult != 0) {
        return printResult(ulResult, "Refused: unable to set sequence line params");
      }
    }
  }
  printErroMsg(0, "Success!");
  return 0;
}

unsigned int SecSequenceTbl::writeLine(ParameterMap& aMap, const Value& row,
                                       unsigned long n) const {
  const long runType = getRunTypeFromString(getStringJsonMember(row, "Type", ""));
  const ParameterRow line[] = {
      {cRunTypeId, "mRunType", 0, eSpan::eSingle, runType},
      {cRepeatId, "mRepeat", 0, eSpan::eSingle, getIntJsonMember(row, "Repeat", 0)},
      {cCalibId, "mCalib", 0, eSpan::eSingle, 1},  // always: the file has no key for it
      {cStreamId, "mStream", 0, eSpan::eSingle, getIntJsonMember(row, "Stream", 0)},
      {cSolutionId, "mSolution", cSolutionChannel, eSpan::eSingle,
       getIntJsonMember(row, "Slot", 0)},
  };
  const double flushTime = getRealJsonMember(row, "Flush_time", 0.0);
  clearParamMap(aMap, false);
  registerParameters(aMap, line, n);
  bindParameter(aMap, "mFlushTime",
                std::make_unique<Parameter>(0, cFlushTimeId, 0, flushTime, n, 0));
  return writeParams(aMap, mHandle);
}

void SecSequenceTbl::printRun_Type(int aValue, char* sRun_type) {
  std::snprintf(sRun_type, cRunTypeSize, "%s", runTypeText(aValue));
}

int SecSequenceTbl::getRunTypeFromString(const ACE_CString& str) {
  return runTypeCode(str.c_str());
}
