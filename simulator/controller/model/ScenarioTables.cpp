// Scenario tables into parameter slots.
#include "ScenarioTables.h"

#include <algorithm>

namespace simulator::model {

namespace {

struct MemberRow {
  const char* name;
  eParam param;
};

constexpr MemberRow cLineMembers[] = {
    {"runType", eParam::eLineRunType}, {"repeat", eParam::eLineRepeat},
    {"stream", eParam::eLineStream},   {"calibrate", eParam::eLineCalib},
    {"slot", eParam::eLineSolution},   {"flushTime", eParam::eLineFlushTime},
};
constexpr MemberRow cAlarmMembers[] = {
    {"sampleType", eParam::eAlarmOn},
    {"allSampleTypes", eParam::eAlarmOnAll},
    {"group", eParam::eAlarmGroup},
    {"parameter", eParam::eAlarmParam},
};
constexpr MemberRow cPeakMembers[] = {
    {"retentionTime", eParam::ePeakRetention},
    {"levelAmount", eParam::ePeakLevelAmount},
    {"linearCoefficient", eParam::ePeakLinear},
};

template <std::size_t size>
void loadRow(const MemberRow (&members)[size], const rapidjson::Value& aRow, std::uint32_t aMember,
             std::uint32_t aStep, std::vector<double>& values) {
  for (const MemberRow& member : members) {
    const auto found = aRow.FindMember(member.name);
    if (found != aRow.MemberEnd()) {
      values[slotOf(member.param, aMember, aStep)] = found->value.GetDouble();
    }
  }
}

template <std::size_t size>
std::uint32_t loadTable(const MemberRow (&members)[size], const rapidjson::Value& aScenario,
                        const char* aName, std::vector<double>& values) {
  std::uint32_t step = 0;
  const auto table = aScenario.FindMember(aName);
  if (table != aScenario.MemberEnd()) {
    for (const auto& row : table->value.GetArray()) {
      loadRow(members, row, 1, ++step, values);
    }
  }
  return step;
}

}  // namespace

PeakCounts loadTables(const rapidjson::Value& aScenario, std::vector<double>& values) {
  const std::uint32_t lines = loadTable(cLineMembers, aScenario, "sequence", values);
  values[slotOf(eParam::eTotalLines)] = std::max(lines, 1U);
  values[slotOf(eParam::eAlarmTotal)] = loadTable(cAlarmMembers, aScenario, "alarms", values);
  PeakCounts peaks{};
  const auto table = aScenario.FindMember("peaks");
  if (table != aScenario.MemberEnd()) {
    for (const auto& peak : table->value.GetArray()) {
      const std::uint32_t channel = peak["channel"].GetUint();
      loadRow(cPeakMembers, peak, channel, ++peaks[channel - 1], values);
    }
  }
  return peaks;
}

}  // namespace simulator::model
