// The simulated instrument's answers.
#include "Instrument.h"

#include <Status.h>

#include <array>
#include <cmath>

#include "Scenario.h"
#include "model/Behaviour.h"
#include "model/Commands.h"
#include "model/RemoteTexts.h"

using model::Behaviour;
using model::eAccess;
using model::eType;

namespace {

constexpr std::uint32_t cCalibrationLevels = 7;

// Settings belong to the method that a run, a cleaning or the self-test is working with.
constexpr model::StateSet cSettingStates =
    model::cIdleStates | model::statesOf(model::eError, model::eRecoverableError);

std::optional<std::size_t> findSlot(const ParamList& record) {
  return model::findAddress(record.Channel, record.Method, record.Step, record.ParmID);
}

double valueOf(const ParamList& record, std::size_t aSlot) {
  return model::slotAt(aSlot).row->type == eType::eReal ? record.realvalue : record.intvalue;
}

/// Whether, and why not, the instrument takes a record.
std::uint32_t check(const Behaviour& aBehaviour, const ParamList& record) {
  const auto slot = findSlot(record);
  if (!slot) {
    return eParameterUnknown;
  }
  const model::ParameterRow& row = *model::slotAt(*slot).row;
  if (row.access != eAccess::eReadWrite) {
    return eReadOnly;
  }
  if (!aBehaviour.isFitted(*slot) || !model::contains(cSettingStates, aBehaviour.state())) {
    return eStateForbids;
  }
  const double value = valueOf(record, *slot);
  return value >= row.lowest && value <= row.highest ? eSuccess : eOutOfBounds;
}

rapidjson::Value describe(double aValue, eType aType) {
  if (std::isnan(aValue)) {
    return rapidjson::Value("NaN");
  }
  if (std::isinf(aValue)) {
    return aValue > 0 ? rapidjson::Value("Infinity") : rapidjson::Value("-Infinity");
  }
  return aType == eType::eInteger ? rapidjson::Value(static_cast<std::int32_t>(aValue))
                                  : rapidjson::Value(aValue);
}

}  // namespace

struct Instrument::State {
  State(const rapidjson::Value& aScenario, std::uint32_t aSeed)
      : behaviour(aScenario["parameters"], aSeed), texts(aScenario["texts"]) {
    const auto found = aScenario.FindMember("peaks");
    if (found != aScenario.MemberEnd()) {
      for (const auto& peak : found->value.GetArray()) {
        ++peaks[peak["channel"].GetUint() - 1];
      }
    }
  }

  Behaviour behaviour;
  model::RemoteTexts texts;
  std::array<std::uint64_t, model::cChannels> peaks{};  ///< how many are calibrated
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
    const auto slot = findSlot(record);
    if (!slot) {
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
    const std::uint32_t status = check(behaviour, record);
    if (status != eSuccess) {
      return status;
    }
  }
  for (const ParamList& record : records) {
    const auto slot = findSlot(record);
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
  first = mState->peaks[aChannel - 1];
  second = cCalibrationLevels;
  return eSuccess;
}

bool Instrument::set(double aNow, const std::string& aName, double aValue) {
  mState->behaviour.advance(aNow);
  const auto slot = model::findName(aName);
  if (slot) {
    mState->behaviour.set(*slot, aValue);
  }
  return slot.has_value();
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
  for (std::size_t slot = 0; slot < model::cSlots; ++slot) {
    parameters.AddMember(rapidjson::Value(model::nameOf(slot).c_str(), allocator),
                         describe(behaviour.value(slot), model::slotAt(slot).row->type), allocator);
  }
  aDocument.AddMember("parameters", parameters, allocator);
  aDocument.AddMember("texts", mState->texts.describe(allocator), allocator);
}
