// The automation sequence table: a batch for the header and one for each line, both ways.
#include "SecSequenceTbl.h"

#include <InstrumentClient.h>

#include <algorithm>
#include <cstdio>

#include "ParameterTable.h"
#include "RunType.h"

namespace {

constexpr std::size_t cBuckets = 20;
constexpr int cMaxLines = 20;
constexpr std::size_t cRunTypeSize = 30;

constexpr unsigned long cInsertLine = 19;
constexpr unsigned long cClearTable = 22;

// The instrument's parameter table: header, and lines, which are addressed by their step.
constexpr ParameterRow cHeader[] = {
    {15, "mTableRepeat", eSpan::eSingle, 0},
    {12, "mContinuous", eSpan::eSingle, 0},
    {525, "mStreamConfigured", eSpan::eSingle, 0},
    {144, "mTotalLines", eSpan::eSingle, 0},
};
// Solutions belong to channel 1 on the instrument, everything else about a line to channel 0.
constexpr ParameterRow cLine[] = {
    {23, "mRunType", eSpan::eSingle, 0},   {24, "mRepeat", eSpan::eSingle, 0},
    {22, "mStream", eSpan::eSingle, 0},    {1010, "mSolution", eSpan::eSingle, 1},
    {26, "mFlushTime", eSpan::eSingle, 0},
};

/// Prints the verdict and returns its status as the front end takes it.
int refuse(unsigned long ulResult, const char* msg) {
  printErroMsg(static_cast<unsigned int>(ulResult), msg);
  return static_cast<int>(ulResult);
}

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
  // Without a stream selection there is one line, whatever the instrument counts.
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
    // Code 0 although nothing was done: the page matches the words.
    printErroMsg(0, "Format Invalid");
    return -1;
  }

  LocalMap local(cBuckets);
  ParameterMap& aMap = *local;
  const long repeat = getIntJsonMember(dom4write, "Table_repeat", 0);
  const long continuous = getBooleanJsonMember(dom4write, "Continuous", false) ? 1 : 0;
  const ParameterRow header[] = {
      {15, "mTableRepeat", eSpan::eSingle, 0, repeat},
      {12, "mContinuous", eSpan::eSingle, 0, continuous},
  };
  registerParameters(aMap, header);
  unsigned long ulResult = writeParams(aMap, mHandle);
  if (ulResult != 0) {
    return refuse(ulResult, "Refused: unable to set table repeat");
  }
  ulResult = ExecuteCommand(mHandle, 0, cClearTable);
  if (ulResult != 0) {
    return refuse(ulResult, "Refused: unabled to clear orignal table");
  }

  const int count = std::min(getIntJsonMember(dom4write, "total", 0), cMaxLines);
  const Value* rows = findJsonMember(dom4write, "rows");
  if (rows != nullptr && rows->IsArray()) {
    int n = 0;
    for (const Value& row : rows->GetArray()) {
      if (++n > count) {
        break;
      }
      // A cleared table has its first line already.
      if (n > 1) {
        ulResult = ExecuteCommand(mHandle, 0, cInsertLine);
        if (ulResult != 0) {
          return refuse(ulResult, "Refused: unable to insert new sequence");
        }
      }
      ulResult = writeLine(aMap, row, static_cast<unsigned long>(n));
      if (ulResult != 0) {
        return refuse(ulResult, "Refused: unable to set sequence line params");
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
      {23, "mRunType", eSpan::eSingle, 0, runType},
      {24, "mRepeat", eSpan::eSingle, 0, getIntJsonMember(row, "Repeat", 0)},
      {25, "mCalib", eSpan::eSingle, 0, 1},  // every line may calibrate; the file has no say in it
      {22, "mStream", eSpan::eSingle, 0, getIntJsonMember(row, "Stream", 0)},
      {1010, "mSolution", eSpan::eSingle, 1, getIntJsonMember(row, "Slot", 0)},
  };
  const double flushTime = getRealJsonMember(row, "Flush_time", 0.0);
  clearParamMap(aMap, false);
  registerParameters(aMap, line, n);
  bindParameter(aMap, "mFlushTime", std::make_unique<Parameter>(0, 26, 0, flushTime, n, 0));
  return writeParams(aMap, mHandle);
}

void SecSequenceTbl::printRun_Type(int aValue, char* sRun_type) {
  std::snprintf(sRun_type, cRunTypeSize, "%s", runTypeText(aValue));
}

int SecSequenceTbl::getRunTypeFromString(const ACE_CString& str) {
  return runTypeCode(str.c_str());
}
