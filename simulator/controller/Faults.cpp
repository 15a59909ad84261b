// Which fault acts on a call.
#include "Faults.h"

#include <utility>

#include "Calls.h"
#include "FaultKinds.h"

namespace simulator {

using rapidjson::Value;

namespace {

std::string toJson(const Value& aValue) {
  rapidjson::StringBuffer buffer;
  JsonWriter writer(buffer);
  aValue.Accept(writer);
  return buffer.GetString();
}

}  // namespace

bool FaultList::add(const Value& aFault, std::string& error) {
  const FaultKind* kind = findKind(aFault, error);
  if (kind == nullptr) {
    return false;
  }
  if (mFaults.size() >= cMaxFaults) {
    error = ": too many faults wait already";
    return false;
  }
  Fault fault;
  if (!readFault(*kind, aFault, fault, error)) {
    return false;
  }
  fault.source = toJson(aFault);
  mFaults.push_back(std::move(fault));
  return true;
}

std::optional<Fault> FaultList::match(wire::eType aCall) {
  return matchBit(callBit(aCall), false);
}

bool FaultList::matchAccepted() {
  return matchBit(callBit(wire::eType::eConnect), true).has_value();
}

std::optional<Fault> FaultList::matchBit(std::uint32_t aCall, bool aAccepted) {
  std::optional<Fault> acting;
  for (auto fault = mFaults.begin(); fault != mFaults.end();) {
    const auto current = fault++;
    if ((current->kind == eFault::eRefuse) != aAccepted || (current->calls & aCall) == 0) {
      continue;
    }
    ++current->seen;
    if (acting || current->seen < current->nth) {
      continue;
    }
    ++current->hits;
    acting = *current;
    if (current->hits == current->times) {
      mFaults.erase(current);
    }
  }
  return acting;
}

void FaultList::describe(JsonWriter& writer) const {
  writer.StartArray();
  for (const Fault& fault : mFaults) {
    writer.StartObject();
    writer.Key("fault");
    writer.RawValue(fault.source.data(), fault.source.size(), rapidjson::kObjectType);
    writer.Key("seen");
    writer.Uint64(fault.seen);
    writer.Key("hits");
    writer.Uint64(fault.hits);
    writer.EndObject();
  }
  writer.EndArray();
}

}  // namespace simulator
