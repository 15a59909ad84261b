// The alarms: one batch per row, and the reset command.
#include "SecAlarm.h"

#include <InstrumentClient.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "AlarmTexts.h"
#include "ParameterTable.h"

namespace {

constexpr std::size_t cBuckets = 40;
constexpr int cMaxRows = 38;
constexpr std::uint32_t cComponentNameId = 2021;

constexpr unsigned long cResetAlarms = 35;

// The instrument's parameter table: header, and rows, which are addressed by step.
constexpr ParameterRow cHeader[] = {
    {2028, "mEnabled"},
    {2029, "mTotal"},
};
constexpr ParameterRow cRow[] = {
    {2030, "mAlarmOn"}, {2038, "mAlarmOnAll"}, {2031, "mGroupID"},
    {2032, "mParamID"}, {2212, "mTriggered"},
};

/// One more than the instrument's code; INT_MAX, which has no text either, stays as it is.
int sampleTypeOfCode(int code) {
  return code < std::numeric_limits<int>::max() ? code + 1 : code;
}

}  // namespace

void SecAlarm::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
}

int SecAlarm::readGC() {
  LocalMap local(cBuckets);
  ParameterMap& aMap = *local;
  registerParameters(aMap, cHeader);
  unsigned int ulResult = readParams(aMap, mHandle);
  // Nothing can be reported without both of these: 28 is a failure here, though not below.
  if (ulResult != 0) {
    return static_cast<int>(ulResult);
  }

  Document document;
  document.SetObject();
  AllocatorType& al = document.GetAllocator();
  const int total = isSet(aMap, "mEnabled") ? getIntValue(aMap, "mTotal", 0) : 0;
  document.AddMember("total", total, al);
  if (total >= 1) {
    Value rows(rapidjson::kArrayType);
    for (int row = 1; row <= std::min(total, cMaxRows); ++row) {
      clearParamMap(aMap, false);
      registerParameters(aMap, cRow, static_cast<unsigned long>(row));
      ulResult = readParams(aMap, mHandle);
      if (!hasArrived(ulResult)) {
        return static_cast<int>(ulResult);
      }
      rows.PushBack(makeRow(aMap, al), al);
    }
    document.AddMember("rows", rows, al);
  }
  printDocument(document);
  return 0;
}

int SecAlarm::writeGC() {
  return printVerdict(ExecuteCommand(mHandle, 0, cResetAlarms));
}

Value SecAlarm::makeRow(const ParameterMap& aMap, AllocatorType& al) const {
  const int grp = getIntValue(aMap, "mGroupID", 0);
  const int prm = getIntValue(aMap, "mParamID", 0);
  // One string for all texts: a parameter without a text of its own repeats its group's text.
  ACE_CString str;
  if (isSet(aMap, "mAlarmOnAll")) {
    str = "All";
  } else {
    getSampleTypeString(str, sampleTypeOfCode(getIntValue(aMap, "mAlarmOn", 0)));
  }
  Value arow(rapidjson::kObjectType);
  addText(arow, "SampleType", str.c_str(), al);
  arow.AddMember("GroupID", grp, al);
  getGroupString(str, grp);
  addText(arow, "GroupStr", str.c_str(), al);
  arow.AddMember("ParamID", prm, al);
  getParamString(str, grp, prm);
  addText(arow, "ParamStr", str.c_str(), al);
  arow.AddMember("Triggered", isSet(aMap, "mTriggered"), al);
  return arow;
}

void SecAlarm::getSampleTypeString(ACE_CString& str, int type) {
  str = sampleTypeText(type);
}

void SecAlarm::getGroupString(ACE_CString& str, int grp) {
  str = alarmGroupText(grp);
}

void SecAlarm::getParamString(ACE_CString& str, int grp, int id) const {
  if (isComponentGroup(grp)) {
    ACE_CString name;
    getCompNameByNormIdx(name, id);
    char buffer[100] = "";
    std::snprintf(buffer, sizeof buffer, "%d. %s", id, name.c_str());
    str = buffer;
  } else if (const char* text = alarmParameterText(grp, id)) {
    str = text;
  }
}

void SecAlarm::getCompNameByNormIdx(ACE_CString& name, int norm_idx) const {
  ParamList pList[cNameLength] = {};
  for (std::size_t i = 0; i < cNameLength; ++i) {
    // The character's position takes the place of the channel.
    pList[i].Channel = static_cast<std::uint32_t>(i + 1);
    pList[i].ParmID = cComponentNameId;
    pList[i].Step = static_cast<std::uint32_t>(norm_idx);
  }
  if (ReadParamList(mHandle, pList, cNameLength) != 0) {
    name = "Unknown";
    return;
  }
  char text[cNameLength + 1] = "";
  for (std::size_t i = 0; i < cNameLength; ++i) {
    text[i] = toCharacter(pList[i].intvalue);
  }
  name = text;
}
