// Every parameter: its address, its field, its bounds; and addresses that the instrument lacks.
#include <Status.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <model/Parameters.h>

#include <algorithm>
#include <iterator>

#include "Bench.h"
#include "ExpectedParameters.h"

namespace simulator {

static_assert(std::size(cExpectedParameters) == 97);

TEST(Parameters, EachAnswersAtItsAddressInItsField) {
  Bench bench;
  std::vector<ParamList> records;
  for (const ExpectedParameter& parameter : cExpectedParameters) {
    bench.set(0.0, parameter.name, 1000.0 + static_cast<double>(records.size()));
    records.push_back({parameter.channel, 0, 0, parameter.id, -1.0, -1, 99});
  }
  EXPECT_EQ(bench.instrument->read(0.0, records), eSuccess);
  for (std::size_t n = 0; n < records.size(); ++n) {
    const ExpectedParameter& parameter = cExpectedParameters[n];
    const int value = 1000 + static_cast<int>(n);
    EXPECT_EQ(records[n].realvalue, parameter.isReal ? value : 0.0) << parameter.name;
    EXPECT_EQ(records[n].intvalue, parameter.isReal ? 0 : value) << parameter.name;
    EXPECT_EQ(records[n].ServiceStatus, eSuccess) << parameter.name;
    EXPECT_EQ(records[n].Channel, parameter.channel);
    EXPECT_EQ(records[n].ParmID, parameter.id);
  }
}

TEST(Parameters, TableHoldsTheWrittenOutBoundsAndUnits) {
  for (const ExpectedParameter& expected : cExpectedParameters) {
    const auto slot = model::findName(expected.name);
    ASSERT_TRUE(slot) << expected.name;
    const model::ParameterRow& row = *model::slotAt(*slot).row;
    EXPECT_EQ(row.lowest, expected.lowest) << expected.name;
    EXPECT_EQ(row.highest, expected.highest) << expected.name;
    EXPECT_STREQ(row.unit, expected.unit) << expected.name;
  }
}

TEST(Parameters, SnapshotNamesExactlyThese) {
  Bench bench;
  rapidjson::Document document;
  bench.instrument->snapshot(0.0, document);
  std::vector<std::string> names;
  for (const auto& member : document["parameters"].GetObject()) {
    names.emplace_back(member.name.GetString());
  }
  // Those with a step are 11 slots, 6 parameters of 3 lines, 3 of 11 peaks, 5 of 5 alarm rows.
  const auto isStepped = [](const std::string& name) { return name.back() == ']'; };
  EXPECT_EQ(std::count_if(names.begin(), names.end(), isStepped), 11 + 18 + 33 + 25);
  names.erase(std::remove_if(names.begin(), names.end(), isStepped), names.end());
  std::vector<std::string> expected;
  for (const ExpectedParameter& parameter : cExpectedParameters) {
    expected.emplace_back(parameter.name);
  }
  EXPECT_THAT(names, ::testing::UnorderedElementsAreArray(expected));
}

TEST(Parameters, UnknownAddressesAreMarkedAndTheOthersAnswered) {
  Bench bench;
  std::vector<ParamList> records{
      {0, 0, 0, 102, 7.0, 7, 7},       // the state
      {0, 0, 0, 9999, 7.0, 7, 7},      // no such id
      {5, 0, 0, 300, 7.0, 7, 7},       // no such channel
      {0, 0, 0, 300, 7.0, 7, 7},       // a channel's parameter, asked of the instrument
      {1, 0, 0, 502, 7.0, 7, 7},       // the instrument's, asked of a channel
      {0, 0, 0, 506, 7.0, 7, 7},       // one past the four installed flags
      {1, 1, 0, 202, 7.0, 7, 7},       // another method
      {1, 0, 1, 202, 7.0, 7, 7},       // a step of what has none
      {UINT32_MAX, 0, 0, 1, 7, 7, 7},  // nonsense
      {1, 0, 0, 202, 7.0, 7, 7},       // column temperature setpoint
  };
  EXPECT_EQ(bench.instrument->read(0.0, records), eBatchIncomplete);
  EXPECT_EQ(records.front().intvalue, 4);
  EXPECT_EQ(records.front().ServiceStatus, eSuccess);
  for (std::size_t n = 1; n <= 8; ++n) {
    EXPECT_EQ(records[n].ServiceStatus, eParameterUnknown) << n;
    EXPECT_EQ(records[n].realvalue, 0.0) << n;
    EXPECT_EQ(records[n].intvalue, 0) << n;
  }
  EXPECT_EQ(records.back().realvalue, 60.0);
  EXPECT_EQ(records.back().ServiceStatus, eSuccess);
}

TEST(Parameters, AnEmptyBatchSucceeds) {
  Bench bench;
  std::vector<ParamList> none;
  EXPECT_EQ(bench.instrument->read(0.0, none), eSuccess);
  EXPECT_EQ(bench.instrument->write(0.0, none), eSuccess);
}

TEST(Parameters, OfAPartThatIsNotThereReadZero) {
  Bench bench("bare");
  for (std::uint32_t id : {300U, 302U, 304U, 202U, 203U, 342U, 307U}) {
    EXPECT_EQ(bench.real(5.0, 2, id), 0.0) << id;
  }
  EXPECT_EQ(bench.real(5.0, 0, 100), 0.0);
  EXPECT_EQ(bench.integer(5.0, 0, 602), 0);
}

}  // namespace simulator
