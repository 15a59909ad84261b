// Values by slot, and what follows from them alone.
#include "StoredValues.h"

#include <JsonText.h>

#include <algorithm>
#include <cmath>

#include "Measurement.h"

namespace simulator::model {

StoredValues::StoredValues(const rapidjson::Value& aScenario) : mValues(slotCount()) {
  mPeaks = loadTables(aScenario, mValues);
  const auto& parameters = aScenario["parameters"];
  for (const auto& member : parameters.GetObject()) {
    if (const auto slot = findName(member.name.GetString())) {
      double value = 0.0;
      readReal(member.value, value);
      mValues[*slot] = slotAt(*slot).row->type == eType::eInteger ? integral(value) : value;
    }
  }
  if (!parameters.HasMember(nameOf(slotOf(eParam::eStartStream)).c_str())) {
    set(of(eParam::eCurrentStream), eParam::eStartStream);
  }
}

double StoredValues::of(eParam aParam, std::uint32_t aMember, std::uint32_t aStep) const {
  return mValues[slotOf(aParam, aMember, aStep)];
}

void StoredValues::set(double aValue, eParam aParam, std::uint32_t aMember, std::uint32_t aStep) {
  mValues[slotOf(aParam, aMember, aStep)] = aValue;
}

double StoredValues::bounded(eParam aParam, std::uint32_t aStep) const {
  const std::size_t slot = slotOf(aParam, 1, aStep);
  const ParameterRow& row = *slotAt(slot).row;
  const double value = mValues[slot];
  return std::isnan(value) ? row.lowest : std::clamp(value, row.lowest, row.highest);
}

double StoredValues::highest(std::size_t aSlot) const {
  const ParameterRow& row = *slotAt(aSlot).row;
  return row.param == eParam::eStreamNr ? std::min(row.highest, of(eParam::eStreamMaxNr))
                                        : row.highest;
}

bool StoredValues::isFitted(std::size_t aSlot) const {
  const Slot slot = slotAt(aSlot);
  switch (slot.row->param) {
    case eParam::eSampleLineTemp:
    case eParam::eSampleLineTempSP:
      return of(eParam::eHeatedSampleLineInstalled) != 0.0;
    case eParam::eLineSolution:  // the channel in its address is no part of the instrument
      return true;
    default:
      return slot.channel == 0 || of(eParam::eInstalled, slot.channel) != 0.0;
  }
}

std::uint32_t StoredValues::stepsOf(eTable aTable, std::uint32_t aChannel) const {
  const auto within = [this](eParam aTotal, double aLowest, double aHighest) {
    return static_cast<std::uint32_t>(std::clamp(of(aTotal), aLowest, aHighest));
  };
  switch (aTable) {
    case eTable::eSequence:
      return within(eParam::eTotalLines, 1.0, cSequenceLines);
    case eTable::eAlarms:
      return within(eParam::eAlarmTotal, 0.0, cAlarmRows);
    case eTable::ePeaks:
      return mPeaks[aChannel - 1];
    default:
      return cSolutionSlots;
  }
}

bool StoredValues::isThere(std::size_t aSlot) const {
  const Slot slot = slotAt(aSlot);
  const eTable table = slot.row->table;
  return table == eTable::eNone || slot.step <= stepsOf(table, slot.member == 0 ? 1 : slot.member);
}

}  // namespace simulator::model
