// Addresses of the characters of peak and component names.
#include "PeakNames.h"

namespace simulator::model {

namespace {

constexpr std::uint32_t cNameLength = 20;
constexpr std::uint32_t cFirstCharacterId = 1176;
constexpr std::uint32_t cComponentNameId = 2021;

/// The name at a place that counts from 0; null behind the last.
const std::string* nameAt(const std::vector<std::string>& aNames, std::size_t aPlace) {
  return aPlace < aNames.size() ? &aNames[aPlace] : nullptr;
}

}  // namespace

PeakNames::PeakNames(const rapidjson::Value& aScenario) {
  const auto peaks = aScenario.FindMember("peaks");
  if (peaks != aScenario.MemberEnd()) {
    for (const auto& peak : peaks->value.GetArray()) {
      mNames[peak["channel"].GetUint() - 1].emplace_back(peak["name"].GetString());
    }
  }
}

std::optional<std::int32_t> PeakNames::character(std::uint32_t aChannel, std::uint32_t aMethod,
                                                 std::uint32_t aStep, std::uint32_t aParmID) const {
  const std::string* name = nullptr;
  std::uint32_t position = aParmID - cFirstCharacterId;
  std::size_t place = std::size_t{aStep} - 1;
  if (aMethod != 0) {
    return std::nullopt;
  }
  if (aParmID == cComponentNameId) {
    // Components are all peaks, channel after channel.
    position = aChannel - 1;
    for (const auto& names : mNames) {
      name = nameAt(names, place);
      if (name != nullptr) {
        break;
      }
      place -= names.size();
    }
  } else if (aChannel >= 1 && aChannel <= cChannels) {
    name = nameAt(of(aChannel), place);
  }
  if (name == nullptr || position >= cNameLength) {
    return std::nullopt;
  }
  return position < name->size() ? static_cast<unsigned char>((*name)[position]) : 0;
}

}  // namespace simulator::model
