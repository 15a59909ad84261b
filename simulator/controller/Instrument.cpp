// The simulated instrument's answers.
#include "Instrument.h"

#include <JsonText.h>
#include <Status.h>

#include "Scenario.h"
#include "model/Behaviour.h"
#include "model/Commands.h"
#include "model/PeakNames.h"
#include "model/RemoteTexts.h"

namespace simulator {

using model::Behaviour;
using model::eAccess;
using model::eParam;
using model::eType;

namespace {

constexpr std::uint32_t cCalibrationLevels = 7;

double valueOf(const ParamList& record, std::size_t aSlot) {
  return model::slotAt(aSlot).row->type == eType::eReal ? record.realvalue : record.intvalue;
}

rapidjson::Value describe(std::size_t aSlot, double aValue) {
  return model::slotAt(aSlot).row->type == eType::eInteger
             ? rapidjson::Value(static_cast<std::int32_t>(aValue))
             : realValue(aValue);
}

/// Of any number: NaN is not.
bool isWithinBounds(std::size_t aSlot, double aValue) {
  const model::ParameterRow& row = *model::slotAt(aSlot).row;
  return aValue >= row.lowest && aValue <= row.highest;
}

}  // namespace

struct Instrument::State {
  State(const rapidjson::Value& aScenario, std::uint32_t aSeed)
      : behaviour(aScenario, aSeed), names(aScenario), texts(aScenario) {}

  /// Slot of a record's parameter, if there is one that has a slot.
  std::optional<std::size_t> findSlot(const ParamList& record) const {
    const auto slot = model::findAddress(record.Channel, record.Method, record.Step, record.ParmID);
    return slot && behaviour.stored().isThere(*slot) ? slot : std::nullopt;
  }

  std::optional<std::int32_t> findCharacter(const ParamList& record) const {
    return names.character(record.Channel, record.Method, record.Step, record.ParmID);
  }

  /// Whether, and why not, the instrument takes a record.
  std::uint32_t check(const ParamList& record) const {
    const auto slot = findSlot(record);
    if (!slot) {
      return findCharacter(record) ? eReadOnly : eParameterUnknown;
    }
    const model::ParameterRow& row = *model::slotAt(*slot).row;
    if (row.access != eAccess::eReadWrite) {
      return eReadOnly;
    }
    if (!behaviour.takes(*slot)) {
      return eStateForbids;
    }
    const double value = valueOf(record, *slot);
    return value >= row.lowest && value <= behaviour.stored().highest(*slot) ? eSuccess
                                                                             : eOutOfBounds;
  }

  /// As a scenario has them.
  rapidjson::Value describePeaks(rapidjson::Document::AllocatorType& aAllocator) const {
    rapidjson::Value peaks(rapidjson::kArrayType);
    for (std::uint32_t channel = 1; channel <= model::cChannels; ++channel) {
      std::uint32_t step = 0;
      for (const std::string& name : names.of(channel)) {
        ++step;
        const auto valueOf = [&](eParam aParam) {
          const std::size_t slot = model::slotOf(aParam, channel, step);
          const double value = behaviour.value(slot);
          // The parameters, which come before this table, may be beyond their bounds.
          return describe(slot, isWithinBounds(slot, value) ? value : 0.0);
        };
        rapidjson::Value peak(rapidjson::kObjectType);
        peak.AddMember("channel", channel, aAllocator);
        peak.AddMember("name", rapidjson::Value(name.c_str(), aAllocator), aAllocator);
        peak.AddMember("retentionTime", valueOf(eParam::ePeakRetention), aAllocator);
        peak.AddMember("levelAmount", valueOf(eParam::ePeakLevelAmount), aAllocator);
        peak.AddMember("linearCoefficient", valueOf(eParam::ePeakLinear), aAllocator);
        peaks.PushBack(peak, aAllocator);
      }
    }
    return peaks;
  }

  Behaviour behaviour;
  model::PeakNames names;
  model::RemoteTexts texts;
};

Instrument::Instrument(const Scenario& aScenario, std::uint32_t aSeed)
    : mState(std::make_unique<State>(aScenario.document, aSeed)) {}

Instrument::~Instrument() = default;

std::uint32_t Instrument::read(double aNow, std::vector<ParamList>& records) {
  Behaviour& behaviour = mState->behaviour;
  behaviour.advance(aNow);
  std::uint32_t status = eSuccess;
  for (ParamList& record : records) {
    record.realvalue = 0.0;
    record.intvalue = 0;
    record.ServiceStatus = eSuccess;
    const auto slot = mState->findSlot(record);
    if (const auto character = mState->findCharacter(record)) {
      record.intvalue = *character;
    } else if (!slot) {
      record.ServiceStatus = eParameterUnknown;
      status = eBatchIncomplete;
    } else if (model::slotAt(*slot).row->type == eType::eReal) {
      record.realvalue = behaviour.value(*slot);
    } else {
      record.intvalue = static_cast<std::int32_t>(behaviour.value(*slot));
    }
  }
  return status;
}

std::uint32_t Instrument::write(double aNow, const std::vector<ParamList>& records) {
  Behaviour& behaviour = mState->behaviour;
  behaviour.advance(aNow);
  for (const ParamList& record : records) {
    const std::uint32_t status = mState->check(record);
    if (status != eSuccess) {
      return status;
    }
  }
  for (const ParamList& record : records) {
    const auto slot = mState->findSlot(record);
    behaviour.write(*slot, valueOf(record, *slot));
  }
  return eSuccess;
}

std::uint32_t Instrument::command(double aNow, std::uint32_t aChannel, std::uint32_t aCommand) {
  mState->behaviour.advance(aNow);
  return aChannel == 0 ? model::executeCommand(mState->behaviour, aCommand)
                       : std::uint32_t{eChannelUnknown};
}

std::uint32_t Instrument::object(std::uint32_t aNumber, ACE_CString& className,
                                 std::vector<char>& contents) {
  return mState->texts.marshal(aNumber, className, contents) ? eSuccess : eObjectUnknown;
}

std::uint32_t Instrument::programInfo(std::uint32_t aChannel, std::uint64_t& first,
                                      std::uint64_t& second) {
  if (aChannel < 1 || aChannel > model::cChannels) {
    return eChannelUnknown;
  }
  first = mState->behaviour.stored().stepsOf(model::eTable::ePeaks, aChannel);
  second = cCalibrationLevels;
  return eSuccess;
}

bool Instrument::set(double aNow, const std::string& aName, double aValue) {
  mState->behaviour.advance(aNow);
  const auto slot = model::findName(aName);
  const bool isThere = slot && mState->behaviour.stored().isThere(*slot);
  if (isThere) {
    mState->behaviour.set(*slot, aValue);
  }
  return isThere;
}

bool Instrument::setText(std::uint32_t aNumber, const std::string& aText) {
  return mState->texts.set(aNumber, aText);
}

void Instrument::snapshot(double aNow, rapidjson::Document& aDocument) {
  Behaviour& behaviour = mState->behaviour;
  behaviour.advance(aNow);
  aDocument.SetObject();
  auto& allocator = aDocument.GetAllocator();
  rapidjson::Value parameters(rapidjson::kObjectType);
  rapidjson::Value unchecked(rapidjson::kArrayType);
  for (std::size_t slot = 0; slot < model::slotCount(); ++slot) {
    if (!behaviour.stored().isThere(slot)) {
      continue;
    }
    const std::string name = model::nameOf(slot);
    const double value = behaviour.value(slot);
    parameters.AddMember(rapidjson::Value(name.c_str(), allocator), describe(slot, value),
                         allocator);
    if (!isWithinBounds(slot, value)) {
      unchecked.PushBack(rapidjson::Value(name.c_str(), allocator), allocator);
    }
  }
  rapidjson::Value snapshot = behaviour.describe(allocator);
  snapshot.AddMember("unchecked", unchecked, allocator);
  snapshot.AddMember("octets", mState->texts.describeOctets(allocator), allocator);
  aDocument.AddMember("parameters", parameters, allocator);
  aDocument.AddMember("texts", mState->texts.describe(allocator), allocator);
  aDocument.AddMember("peaks", mState->describePeaks(allocator), allocator);
  aDocument.AddMember("snapshot", snapshot, allocator);
}

}  // namespace simulator
