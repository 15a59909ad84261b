// One parameter: its fields on the way into a record and back.
#include "Parameter.h"

#include <InstrumentClient.h>
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

#include "Capture.h"

namespace {
ParamList filled(const Parameter& aParameter) {
  ParamList lRecord = {91, 92, 93, 94, 95.5, 96, 97};
  aParameter.fill(lRecord);
  return lRecord;
}

void expectRecord(const ParamList& aRecord, const ParamList& aExpected) {
  EXPECT_EQ(aRecord.Channel, aExpected.Channel);
  EXPECT_EQ(aRecord.Method, aExpected.Method);
  EXPECT_EQ(aRecord.Step, aExpected.Step);
  EXPECT_EQ(aRecord.ParmID, aExpected.ParmID);
  EXPECT_EQ(aRecord.realvalue, aExpected.realvalue);
  EXPECT_EQ(aRecord.intvalue, aExpected.intvalue);
  EXPECT_EQ(aRecord.ServiceStatus, aExpected.ServiceStatus);
}
}  // namespace

static_assert(!std::is_polymorphic_v<Parameter>);

TEST(ParameterTest, ShortConstructorLeavesAllButTheAddressZero) {
  const Parameter parameter(4, 502);
  expectRecord(filled(parameter), {4, 0, 0, 502, 0.0, 0, 0});
}

TEST(ParameterTest, LongConstructorTakesIntegerRealStepMethod) {
  const Parameter parameter(1, 1010, 7, 2.5, 3, 9);
  expectRecord(filled(parameter), {1, 9, 3, 1010, 2.5, 7, 0});
}

TEST(ParameterTest, ReadsBackZeroBeforeAnyTransfer) {
  const Parameter parameter(2, 300);
  EXPECT_EQ(parameter.getIntValue(), 0);
  EXPECT_EQ(parameter.getRealValue(), 0.0);
}

TEST(ParameterTest, LongConstructorValuesReadBack) {
  const Parameter parameter(1, 2, -7, -0.25, 0, 0);
  EXPECT_EQ(parameter.getIntValue(), -7);
  EXPECT_EQ(parameter.getRealValue(), -0.25);
}

TEST(ParameterTest, FillCopiesExtremes) {
  constexpr std::uint32_t cMost = std::numeric_limits<std::uint32_t>::max();
  constexpr std::int32_t cLeast = std::numeric_limits<std::int32_t>::min();
  const Parameter parameter(cMost, cMost, cLeast, 1e308, cMost, cMost);
  expectRecord(filled(parameter), {cMost, cMost, cMost, cMost, 1e308, cLeast, 0});
}

TEST(ParameterTest, SettersChangeTheirFieldOnly) {
  Parameter parameter(1, 2, 3, 4.0, 5, 6);
  parameter.setIntValue(-30);
  expectRecord(filled(parameter), {1, 6, 5, 2, 4.0, -30, 0});
  parameter.setRealValue(40.5);
  expectRecord(filled(parameter), {1, 6, 5, 2, 40.5, -30, 0});
  parameter.setStep(50);
  expectRecord(filled(parameter), {1, 6, 50, 2, 40.5, -30, 0});
}

TEST(ParameterTest, UpdateTakesValuesAndServiceStatus) {
  Parameter parameter(3, 204);
  EXPECT_EQ(parameter.update({3, 0, 0, 204, 1.5, -8, 77}), 0);
  EXPECT_EQ(parameter.getIntValue(), -8);
  EXPECT_EQ(parameter.getRealValue(), 1.5);
  expectRecord(filled(parameter), {3, 0, 0, 204, 1.5, -8, 77});
}

TEST(ParameterTest, UpdateKeepsMethodAndStep) {
  Parameter parameter(3, 204, 0, 0.0, 11, 12);
  EXPECT_EQ(parameter.update({3, 99, 98, 204, 1.5, 8, 1}), 0);
  expectRecord(filled(parameter), {3, 12, 11, 204, 1.5, 8, 1});
}

TEST(ParameterTest, UpdateRefusesAnotherChannel) {
  Parameter parameter(3, 204, 5, 6.0, 7, 8);
  EXPECT_EQ(parameter.update({2, 8, 7, 204, 1.5, 9, 1}), -1);
  EXPECT_EQ(parameter.update({4, 8, 7, 204, 1.5, 9, 1}), -1);
  expectRecord(filled(parameter), {3, 8, 7, 204, 6.0, 5, 0});
}

TEST(ParameterTest, UpdateRefusesAnotherId) {
  Parameter parameter(3, 204, 5, 6.0, 7, 8);
  EXPECT_EQ(parameter.update({3, 8, 7, 203, 1.5, 9, 1}), -1);
  EXPECT_EQ(parameter.update({3, 8, 7, 205, 1.5, 9, 1}), -1);
  expectRecord(filled(parameter), {3, 8, 7, 204, 6.0, 5, 0});
}

TEST(ParameterTest, UpdateRefusesChannelAndIdExchanged) {
  Parameter parameter(3, 204);
  EXPECT_EQ(parameter.update({204, 0, 0, 3, 1.5, 9, 1}), -1);
  EXPECT_EQ(parameter.getIntValue(), 0);
}

TEST(ParameterTest, PrintShowsFiveFields) {
  Parameter parameter(2, 300, 0, 0.0, 0, 0);
  parameter.update({2, 0, 0, 300, 45.25, -6, 28});
  const Output output = capture([&] { parameter.print(); });
  EXPECT_EQ(output.out,
            "mChannel[2],  mParmID[300] , mRealvalue[45.250000], mIntvalue[-6]  "
            ",mServiceStatus[28]\n");
  EXPECT_EQ(output.err, "");
}
