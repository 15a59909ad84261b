// The configuration report: one batch, six object reads, one document.
#include "SecConfig.h"

#include <RemoteObjects.h>

#include <cstdio>

#include "CodeText.h"
#include "FetchObject.h"
#include "ParameterTable.h"

namespace {

constexpr std::size_t cGasSize = 20;

// The instrument's parameter table, in registration order. The installed flags belong to the
// instrument, one id each; everything else about a channel belongs to that channel.
constexpr ParameterRow cConfigParameters[] = {
    {601, "mInstSerial"},
    {525, "mStreamConfigured"},
    {524, "mStreamMaxNr"},
    {502, "mInstalled", 0, eSpan::eById},
    {200, "mColumnHeader", 1, eSpan::eByChannel},
    {826, "mAM_SerialNumber", 1, eSpan::eByChannel},
    {827, "mAM_PN", 1, eSpan::eByChannel},
    {201, "mCarrierGas", 1, eSpan::eByChannel},
    {602, "mHeatedSampleLineInstalled"},
};
static_assert(countParameters(cConfigParameters) == 24);

// Carrier gas codes (parameter 201).
constexpr CodeText cGases[] = {
    {0, "Helium"},
    {1, "Hydrogen"},
    {2, "Nitrogen"},
    {3, "Argon"},
};
static_assert(isIndexedByCode(cGases));

}  // namespace

void SecConfig::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
  registerParameters(*aMap, cConfigParameters);
}

int SecConfig::readGC() {
  const ParameterMap& aMap = *mMap;
  const unsigned int ulResult = readParams(aMap, mHandle);
  if (!hasArrived(ulResult)) {
    return static_cast<int>(ulResult);
  }

  Document document;
  document.SetObject();
  AllocatorType& al = document.GetAllocator();
  // Kept odd: one string for both texts, so that an instrument without site information shows its
  // name twice.
  ACE_CString str;
  getBOOTPName(str);
  addText(document, "Inst_name", str.c_str(), al);
  getSiteInfoTag(str);
  addText(document, "Site_info", str.c_str(), al);
  document.AddMember("Inst_serial", getIntValue(aMap, "mInstSerial", 0), al);
  document.AddMember("Stream_configured", isSet(aMap, "mStreamConfigured"), al);
  document.AddMember("Stream_max", getIntValue(aMap, "mStreamMaxNr", 0), al);
  for (int n = 1; n <= cChannels; ++n) {
    AddChannelConfig(aMap, n, document, al);
  }
  printDocument(document);
  return 0;
}

void SecConfig::getSiteInfoTag(ACE_CString& aTagName) const {
  fetchText(mHandle, eSiteInformation, aTagName);
}

void SecConfig::getInstrumentName(ACE_CString& aTagName) const {
  fetchText(mHandle, eInstrumentName, aTagName);
}

void SecConfig::getBOOTPName(ACE_CString& aTagName) const {
  fetchText(mHandle, eBOOTPName, aTagName);
}

void SecConfig::getColumnDescriptions(ACE_CString& aTagName, int channel) const {
  const auto* descriptions = fetchObject<ColumnDescriptions>(mHandle, eColumnDescriptions);
  if (descriptions == nullptr) {
    return;
  }
  using Getter = const ACE_CString& (ColumnDescriptions::*)() const;
  constexpr Getter cGetters[cChannels] = {
      &ColumnDescriptions::getDescriptionColumn1, &ColumnDescriptions::getDescriptionColumn2,
      &ColumnDescriptions::getDescriptionColumn3, &ColumnDescriptions::getDescriptionColumn4};
  if (channel >= 1 && channel <= cChannels) {
    aTagName = (descriptions->*cGetters[channel - 1])();
  } else {
    aTagName = "Unknown";
  }
}

void SecConfig::convertGasType(int aGasType, char* aDescription) {
  std::snprintf(aDescription, cGasSize, "%s", textOfCode(cGases, aGasType, "Unknown"));
}

void SecConfig::AddChannelConfig(const ParameterMap& aMap, int channel, Value& parent,
                                 AllocatorType& al) const {
  const auto valueOf = [&](const char* family) {
    return getIntValue(aMap, ChannelName(family, channel), 0);
  };
  Value contactor(rapidjson::kObjectType);
  contactor.AddMember("Installed", valueOf("mInstalled") != 0, al);
  contactor.AddMember("Disabled", valueOf("mColumnHeader") != 0, al);
  contactor.AddMember("Serial", valueOf("mAM_SerialNumber"), al);
  contactor.AddMember("PN", valueOf("mAM_PN"), al);
  // Fetched again for every channel: six object reads per report, in this order.
  ACE_CString description;
  getColumnDescriptions(description, channel);
  addText(contactor, "Description", description.c_str(), al);
  char buffer[cGasSize];
  convertGasType(valueOf("mCarrierGas"), buffer);
  addText(contactor, "Gas", buffer, al);
  parent.AddMember(Value(ChannelName("Channel", channel).text(), al), contactor, al);
}
