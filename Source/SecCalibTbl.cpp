// The calibration table: one batch per peak, in both directions.
#include "SecCalibTbl.h"

#include <InstrumentClient.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>

#include "ParameterTable.h"

namespace {

constexpr unsigned long cMaxPeaks = 100;  // per channel
constexpr int cMaxRows = 400;
constexpr std::size_t cReportBuckets = 25;
constexpr std::size_t cDownloadBuckets = 10;

constexpr unsigned long cClearCalibration = 26;

// The instrument's parameter table. A name is twenty parameters of one character each; channel and
// step identify the peak.
constexpr unsigned long cFirstNameId = 1176;
constexpr const char* cNameKeys[] = {"mNameC0",  "mNameC1",  "mNameC2",  "mNameC3",  "mNameC4",
                                     "mNameC5",  "mNameC6",  "mNameC7",  "mNameC8",  "mNameC9",
                                     "mNameC10", "mNameC11", "mNameC12", "mNameC13", "mNameC14",
                                     "mNameC15", "mNameC16", "mNameC17", "mNameC18", "mNameC19"};
constexpr unsigned long cRetentionTimeId = 1196;
static_assert(std::size(cNameKeys) == cNameLength);
static_assert(cFirstNameId + cNameLength == cRetentionTimeId);
constexpr unsigned long cLevelAmountId = 1230;
constexpr unsigned long cLinearCoefficientId = 1242;

void registerPeak(ParameterMap& aMap, unsigned long channel, unsigned long peak) {
  const auto bind = [&](const char* name, unsigned long id) {
    bindParameter(aMap, name, std::make_unique<Parameter>(channel, id, 0, 0.0, peak, 0));
  };
  for (std::size_t i = 0; i < cNameLength; ++i) {
    bind(cNameKeys[i], cFirstNameId + i);
  }
  bind("mRT", cRetentionTimeId);
  bind("mLevelAmt", cLevelAmountId);
  bind("mLinearCoef", cLinearCoefficientId);
}

Value makeRow(const ParameterMap& aMap, int channel, int peak, AllocatorType& al) {
  char name[cNameLength + 1] = "";
  for (std::size_t i = 0; i < cNameLength; ++i) {
    name[i] = toCharacter(getIntValue(aMap, cNameKeys[i], 0));
  }
  Value arow(rapidjson::kObjectType);
  arow.AddMember("Channel", channel, al);
  arow.AddMember("ID", peak, al);
  addText(arow, "PkName", name, al);
  // The instrument counts retention in minutes, the document in seconds.
  addReal(arow, "Ret_time", getRealValue(aMap, "mRT", 0.0) * 60.0, al);
  addReal(arow, "Level_amt", getRealValue(aMap, "mLevelAmt", 0.0), al);
  addReal(arow, "Linear", getRealValue(aMap, "mLinearCoef", 0.0), al);
  return arow;
}

}  // namespace

void SecCalibTbl::init(ParameterMap* /*aMap*/, unsigned long handle) {
  mHandle = handle;
}

int SecCalibTbl::readGC() {
  Document document;
  document.SetObject();
  AllocatorType& al = document.GetAllocator();

  int sum = 0;
  for (int ch = 1; ch <= cChannels; ++ch) {
    unsigned long peaks = 0;
    unsigned long unused = 0;
    ReadProgramInfo(mHandle, 0, static_cast<unsigned long>(ch), 1, &peaks, &unused);
    peakcount[ch - 1] = static_cast<unsigned int>(std::min(peaks, cMaxPeaks));
    sum += static_cast<int>(peakcount[ch - 1]);
  }
  document.AddMember("total", sum, al);

  Value rows(rapidjson::kArrayType);
  for (int ch = 1; ch <= cChannels; ++ch) {
    for (unsigned int k = 1; k <= peakcount[ch - 1]; ++k) {
      LocalMap aMap(cReportBuckets);
      registerPeak(*aMap, static_cast<unsigned long>(ch), k);
      const unsigned int ulResult = readParams(*aMap, mHandle);
      if (!hasArrived(ulResult)) {
        return static_cast<int>(ulResult);
      }
      rows.PushBack(makeRow(*aMap, ch, static_cast<int>(k), al), al);
    }
  }
  document.AddMember("rows", rows, al);
  printDocument(document);
  return 0;
}

int SecCalibTbl::parseFile(char* file) {
  return parseJsonFile(file, dom4write);
}

int SecCalibTbl::writeGC() {
  if (findJsonMember(dom4write, "total") == nullptr) {
    // Kept odd: code and capitals differ from the sequence download's.
    printErroMsg(2, "Format invalid");
    return -1;
  }
  // Kept odd: the result is ignored. What could not be cleared is overwritten peak by peak.
  ExecuteCommand(mHandle, 0, cClearCalibration);

  const int count = std::min(getIntJsonMember(dom4write, "total", 0), cMaxRows);
  const Value* rows = findJsonMember(dom4write, "rows");
  if (rows != nullptr && rows->IsArray()) {
    int place = 0;
    for (const Value& row : rows->GetArray()) {
      if (++place > count) {
        break;
      }
      const Value* chn = findJsonMember(row, "Channel");
      const Value* pkid = findJsonMember(row, "ID");
      const Value* amt = findJsonMember(row, "Level_amt");
      // A malformed row is skipped silently, and still uses up its place.
      if (chn == nullptr || !chn->IsInt() || pkid == nullptr || !pkid->IsInt() || amt == nullptr ||
          !amt->IsNumber()) {
        continue;
      }
      const unsigned int ulResult = writeLevel(chn->GetInt(), pkid->GetInt(), amt->GetDouble());
      if (ulResult != 0) {
        char msg[100];
        std::snprintf(msg, sizeof msg, "Refused: Unable to set new level for chan[%d] peak[%d]",
                      chn->GetInt(), pkid->GetInt());
        return printResult(ulResult, msg);
      }
    }
  }
  printErroMsg(0, "Success");
  return 0;
}

unsigned int SecCalibTbl::writeLevel(int chn, int pkid, double amt) const {
  LocalMap aMap(cDownloadBuckets);
  bindParameter(*aMap, "mLvlamt",
                std::make_unique<Parameter>(static_cast<unsigned long>(chn), cLevelAmountId, 0, amt,
                                            static_cast<unsigned long>(pkid), 0));
  return writeParams(*aMap, mHandle);
}
