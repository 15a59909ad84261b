// Texts and their remote objects.
#include "RemoteTexts.h"

#include <Message.h>
#include <ObjectTexts.h>

#include "../JsonText.h"

namespace model {

namespace {

constexpr std::uint32_t cFirstText = 2;
constexpr std::uint32_t cColumnDescriptions = 6;
constexpr char cColumnsKey[] = "columns";
// Of objects 2 to 5, in a scenario and a snapshot.
constexpr const char* cTextKeys[] = {"siteInformation", "instrumentName", "application",
                                     "bootpName"};

std::string textOf(const rapidjson::Value& aValue) {
  return {aValue.GetString(), aValue.GetStringLength()};
}

}  // namespace

RemoteTexts::RemoteTexts(const rapidjson::Value& aTexts) {
  for (std::size_t n = 0; n < mTexts.size(); ++n) {
    mTexts[n] = textOf(aTexts[cTextKeys[n]]);
    mColumns[n] = textOf(aTexts[cColumnsKey][static_cast<rapidjson::SizeType>(n)]);
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
  const auto value = [&aAllocator](const std::string& aText) {
    const std::string text = toUtf8(aText);
    return rapidjson::Value(text.data(), static_cast<rapidjson::SizeType>(text.size()), aAllocator);
  };
  rapidjson::Value texts(rapidjson::kObjectType);
  rapidjson::Value columns(rapidjson::kArrayType);
  for (std::size_t n = 0; n < mTexts.size(); ++n) {
    texts.AddMember(rapidjson::StringRef(cTextKeys[n]), value(mTexts[n]), aAllocator);
    columns.PushBack(value(mColumns[n]), aAllocator);
  }
  texts.AddMember(rapidjson::StringRef(cColumnsKey), columns, aAllocator);
  return texts;
}

}  // namespace model
