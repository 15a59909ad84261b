// Values by slot, of those that are held.
#include "Holds.h"

#include <algorithm>

namespace simulator::model {

Holds::Holds() : mValues(slotCount()) {}

Holds::Holds(const rapidjson::Value& aSnapshot, const StoredValues& aStored) : Holds() {
  const auto names = aSnapshot.FindMember("held");
  if (names != aSnapshot.MemberEnd()) {
    for (const auto& name : names->value.GetArray()) {
      if (const auto slot = findName(name.GetString())) {
        hold(*slot, aStored.at(*slot));
      }
    }
  }
}

void Holds::releaseAll() {
  std::fill(mValues.begin(), mValues.end(), std::nullopt);
}

rapidjson::Value Holds::describe(rapidjson::Document::AllocatorType& aAllocator) const {
  rapidjson::Value names(rapidjson::kArrayType);
  for (std::size_t slot = 0; slot < mValues.size(); ++slot) {
    if (mValues[slot]) {
      names.PushBack(rapidjson::Value(nameOf(slot).c_str(), aAllocator), aAllocator);
    }
  }
  return names;
}

}  // namespace simulator::model
