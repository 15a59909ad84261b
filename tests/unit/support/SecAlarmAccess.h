// Gives tests access to the names of the alarms.
#pragma once

#include <string>

#include "SecAlarm.h"

/// Each function returns the string that held `aBefore`, as the section leaves it.
class SecAlarmAccess {
 public:
  static std::string sampleType(int aType, const char* aBefore = "") {
    ACE_CString lText(aBefore);
    SecAlarm::getSampleTypeString(lText, aType);
    return lText.c_str();
  }
  static std::string group(int aGroup, const char* aBefore = "") {
    ACE_CString lText(aBefore);
    SecAlarm::getGroupString(lText, aGroup);
    return lText.c_str();
  }
  static std::string parameter(const SecAlarm& aSection, int aGroup, int aId,
                               const char* aBefore = "") {
    ACE_CString lText(aBefore);
    aSection.getParamString(lText, aGroup, aId);
    return lText.c_str();
  }
  static std::string component(const SecAlarm& aSection, int aIndex, const char* aBefore = "") {
    ACE_CString lText(aBefore);
    aSection.getCompNameByNormIdx(lText, aIndex);
    return lText.c_str();
  }
};
