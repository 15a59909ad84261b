// The instrument's texts, and the remote objects that carry them.
#pragma once

#include <ace/SString.h>
#include <rapidjson/document.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace simulator::model {

/// Remote objects 2 to 5 carry one text each, number 6 one for each channel's column.
class RemoteTexts {
 public:
  explicit RemoteTexts(const rapidjson::Value& aScenario);

  /// Replaces a text, any octets. False, and nothing changed, for a number other than 2 to 5 or a
  /// text longer than the instrument's protocol carries.
  bool set(std::uint32_t aNumber, const std::string& aText);

  /// Marshals an object as its class would. False for an unknown number.
  bool marshal(std::uint32_t aNumber, ACE_CString& className, std::vector<char>& contents) const;

  /// As a scenario has them: octets that are no UTF-8 show as U+FFFD, a long text is cut.
  rapidjson::Value describe(rapidjson::Document::AllocatorType& aAllocator) const;

  /// The octets, in hexadecimal digits, of the texts that this changes.
  rapidjson::Value describeOctets(rapidjson::Document::AllocatorType& aAllocator) const;

 private:
  std::array<std::string, 4> mTexts;    ///< of objects 2 to 5
  std::array<std::string, 4> mColumns;  ///< of channels 1 to 4
};

}  // namespace simulator::model
