// Texts and their remote objects.
#include "RemoteTexts.h"

#include <JsonText.h>
#include <Message.h>
#include <ObjectTexts.h>
#include <rapidjson/pointer.h>

#include <algorithm>

namespace simulator::model {

namespace {

constexpr std::uint32_t cFirstText = 2;
constexpr std::size_t cMaxCharacters = 1000;  ///< of a scenario's text
constexpr std::uint32_t cColumnDescriptions = 6;
constexpr char cColumnsKey[] = "columns";
// Of objects 2 to 5, in a scenario and a snapshot.
constexpr const char* cTextKeys[] = {"siteInformation", "instrumentName", "application",
                                     "bootpName"};

std::string textOf(const rapidjson::Value& aValue) {
  return {aValue.GetString(), aValue.GetStringLength()};
}

/// As a scenario may have it.
std::string shown(const std::string& aText) {
  const std::string text = toUtf8(aText);
  std::size_t characters = 0;
  const auto end = std::find_if(text.begin(), text.end(), [&characters](char octet) {
    const bool continues = (static_cast<unsigned char>(octet) & 0xC0U) == 0x80U;
    return !continues && ++characters > cMaxCharacters;
  });
  return {text.begin(), end};
}

rapidjson::Value toValue(const std::string& aText, rapidjson::Document::AllocatorType& aAllocator) {
  return rapidjson::Value(aText.data(), static_cast<rapidjson::SizeType>(aText.size()), aAllocator);
}

}  // namespace

RemoteTexts::RemoteTexts(const rapidjson::Value& aScenario) {
  const auto& texts = aScenario["texts"];
  const auto* octets = rapidjson::Pointer("/snapshot/octets").Get(aScenario);
  for (std::size_t n = 0; n < mTexts.size(); ++n) {
    mTexts[n] = textOf(texts[cTextKeys[n]]);
    mColumns[n] = textOf(texts[cColumnsKey][static_cast<rapidjson::SizeType>(n)]);
    if (octets != nullptr && octets->HasMember(cTextKeys[n])) {
      mTexts[n] = fromHex(textOf((*octets)[cTextKeys[n]]));
    }
  }
}

bool RemoteTexts::set(std::uint32_t aNumber, const std::string& aText) {
  if (aNumber < cFirstText || aNumber - cFirstText >= mTexts.size() ||
      aText.size() > wire::cMaxText) {
    return false;
  }
  mTexts[aNumber - cFirstText] = aText;
  return true;
}

bool RemoteTexts::marshal(std::uint32_t aNumber, ACE_CString& className,
                          std::vector<char>& contents) const {
  if (aNumber == cColumnDescriptions) {
    className = wire::cColumnDescriptions;
    contents = wire::marshalTexts(mColumns.data(), mColumns.size());
    return true;
  }
  if (aNumber >= cFirstText && aNumber - cFirstText < mTexts.size()) {
    className = wire::cSiteInfoTag;
    contents = wire::marshalTexts(&mTexts[aNumber - cFirstText], wire::cSiteInfoTexts);
    return true;
  }
  return false;
}

rapidjson::Value RemoteTexts::describe(rapidjson::Document::AllocatorType& aAllocator) const {
  rapidjson::Value texts(rapidjson::kObjectType);
  rapidjson::Value columns(rapidjson::kArrayType);
  for (std::size_t n = 0; n < mTexts.size(); ++n) {
    texts.AddMember(rapidjson::StringRef(cTextKeys[n]), toValue(shown(mTexts[n]), aAllocator),
                    aAllocator);
    columns.PushBack(toValue(mColumns[n], aAllocator), aAllocator);
  }
  texts.AddMember(rapidjson::StringRef(cColumnsKey), columns, aAllocator);
  return texts;
}

rapidjson::Value RemoteTexts::describeOctets(rapidjson::Document::AllocatorType& aAllocator) const {
  rapidjson::Value octets(rapidjson::kObjectType);
  for (std::size_t n = 0; n < mTexts.size(); ++n) {
    if (shown(mTexts[n]) != mTexts[n]) {
      octets.AddMember(rapidjson::StringRef(cTextKeys[n]), toValue(toHex(mTexts[n]), aAllocator),
                       aAllocator);
    }
  }
  return octets;
}

}  // namespace simulator::model
