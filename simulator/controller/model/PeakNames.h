// The names of the calibrated peaks, which the instrument answers character by character.
#pragma once

#include <rapidjson/document.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Parameters.h"

namespace simulator::model {

class PeakNames {
 public:
  /// `aScenario`: names of up to 20 characters.
  explicit PeakNames(const rapidjson::Value& aScenario);

  /// The character at an address: of a peak's name, by channel and step; or of a component's, whose
  /// index is the step and the position the channel. Behind the end of a name it is 0. Nothing when
  /// the address is none of a name.
  std::optional<std::int32_t> character(std::uint32_t aChannel, std::uint32_t aMethod,
                                        std::uint32_t aStep, std::uint32_t aParmID) const;

  /// Names of the peaks of a channel, 1 to 4.
  const std::vector<std::string>& of(std::uint32_t aChannel) const { return mNames[aChannel - 1]; }

 private:
  std::array<std::vector<std::string>, cChannels> mNames;
};

}  // namespace simulator::model
