// Gives tests access to the parts of the status report.
#pragma once

#include <array>
#include <string>

#include "SecStatus.h"

class SecStatusAccess {
 public:
  using TextFunction = void (*)(int, char*, const ParameterMap&);

  static std::string gcState(int aCode, const ParameterMap& aMap) {
    return text(SecStatus::printGC_State, aCode, aMap);
  }
  static std::string autoState(int aCode, const ParameterMap& aMap) {
    return text(SecStatus::printAutoState, aCode, aMap);
  }
  static std::string runType(int aCode, const ParameterMap& aMap) {
    return text(SecStatus::printRun_Type, aCode, aMap);
  }
  static int maxRunTime(const ParameterMap& aMap) { return SecStatus::GetMaxRunTime(aMap); }
  static void application(const SecStatus& aSection, ACE_CString& aText) {
    aSection.GetInstrumentApplication(aText);
  }
  static void addPair(const ParameterMap& aMap, const char* aName, const char* aSetKey,
                      const char* aActKey, Document& aDocument) {
    SecStatus::AddSetpointAndActual(aMap, aName, aSetKey, aActKey, aDocument,
                                    aDocument.GetAllocator());
  }
  static void addEmptyPair(const char* aName, Document& aDocument) {
    SecStatus::AddEmptySetpointAndActual(aName, aDocument, aDocument.GetAllocator());
  }
  static void addChannel(const ParameterMap& aMap, int aChannel, Document& aDocument) {
    SecStatus::AddChannel(aMap, aChannel, aDocument, aDocument.GetAllocator());
  }

 private:
  /// The text that a function leaves in a used buffer of the minimum size.
  static std::string text(TextFunction aFunction, int aCode, const ParameterMap& aMap) {
    std::array<char, 128> lBuffer = {};
    lBuffer.fill('#');
    aFunction(aCode, lBuffer.data(), aMap);
    return std::string(lBuffer.data());
  }
};
