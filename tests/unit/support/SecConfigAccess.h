// Gives tests access to the parts of the configuration report.
#pragma once

#include <array>
#include <string>

#include "SecConfig.h"

/// Each function returns the string that held `aBefore`, as the section leaves it.
class SecConfigAccess {
 public:
  static std::string siteInfo(const SecConfig& aSection, const char* aBefore) {
    ACE_CString lText(aBefore);
    aSection.getSiteInfoTag(lText);
    return lText.c_str();
  }
  static std::string instrumentName(const SecConfig& aSection, const char* aBefore) {
    ACE_CString lText(aBefore);
    aSection.getInstrumentName(lText);
    return lText.c_str();
  }
  static std::string bootpName(const SecConfig& aSection, const char* aBefore) {
    ACE_CString lText(aBefore);
    aSection.getBOOTPName(lText);
    return lText.c_str();
  }
  static std::string column(const SecConfig& aSection, int aChannel, const char* aBefore) {
    ACE_CString lText(aBefore);
    aSection.getColumnDescriptions(lText, aChannel);
    return lText.c_str();
  }
  /// The text left in a used buffer of the minimum size.
  static std::string gasType(int aCode) {
    std::array<char, 20> lBuffer = {};
    lBuffer.fill('#');
    SecConfig::convertGasType(aCode, lBuffer.data());
    return std::string(lBuffer.data());
  }
  static void addChannel(const SecConfig& aSection, const ParameterMap& aMap, int aChannel,
                         Document& aDocument) {
    aSection.AddChannelConfig(aMap, aChannel, aDocument, aDocument.GetAllocator());
  }
};
