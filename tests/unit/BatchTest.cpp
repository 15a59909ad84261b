// Batch transfers: one library call for a whole map, and what happens to its records.
#include <gmock/gmock.h>

#include <utility>

#include "Capture.h"
#include "FakeInstrument.h"
#include "TestMap.h"

using testing::ElementsAre;

namespace {
class BatchTest : public testing::Test {
 protected:
  FakeInstrument mInstrument;
  TestMap mMap{1};  // one bucket: the last parameter bound comes first
};

/// A record as sent.
void expectSent(const ParamList& aRecord, const ParamList& aExpected) {
  EXPECT_EQ(aRecord.Channel, aExpected.Channel);
  EXPECT_EQ(aRecord.Method, aExpected.Method);
  EXPECT_EQ(aRecord.Step, aExpected.Step);
  EXPECT_EQ(aRecord.ParmID, aExpected.ParmID);
  EXPECT_EQ(aRecord.realvalue, aExpected.realvalue);
  EXPECT_EQ(aRecord.intvalue, aExpected.intvalue);
  EXPECT_EQ(aRecord.ServiceStatus, aExpected.ServiceStatus);
}
}  // namespace

TEST_F(BatchTest, EmptyMapIsOneCallOfNoRecords) {
  mInstrument.setStatus(eFunction::eReadParamList, 5);
  mInstrument.setStatus(eFunction::eWriteParamList, 6);
  EXPECT_EQ(readParams(mMap, 7), 5U);
  EXPECT_EQ(writeParams(mMap, 8), 6U);
  EXPECT_THAT(mInstrument.calls(), ElementsAre("ReadParamList(7, 0)", "WriteParamList(8, 0)"));
}

/// Only the lower half of a 64-bit long is the status of the batch.
TEST_F(BatchTest, StatusHas32Bits) {
  mInstrument.setStatus(eFunction::eReadParamList, ~0xFFFFFFFFUL | 5);
  mInstrument.setStatus(eFunction::eWriteParamList, ~0xFFFFFFFFUL);
  EXPECT_EQ(readParams(mMap, 7), 5U);
  EXPECT_EQ(writeParams(mMap, 8), 0U);
}

TEST_F(BatchTest, ClosedMapIsOneCallOfNoRecords) {
  mMap.add("m", 0, 1);
  clearParamMap(mMap, true);
  EXPECT_EQ(readParams(mMap, 7), 0U);
  EXPECT_THAT(mInstrument.calls(), ElementsAre("ReadParamList(7, 0)"));
}

TEST_F(BatchTest, ReadSendsEveryFieldOfEveryParameter) {
  mMap.add("a", 1, 300);
  mMap.bind(ACE_CString("b"), new Parameter(0, 23, 4, 5.5, 6, 7));
  EXPECT_EQ(readParams(mMap, FakeInstrument::cHandle), 0U);
  EXPECT_THAT(mInstrument.calls(), ElementsAre("ReadParamList(handle, 2)"));
  const std::vector<ParamList> sent = mInstrument.batch(0);
  ASSERT_EQ(sent.size(), 2U);
  expectSent(sent[0], {0, 7, 6, 23, 5.5, 4, 0});
  expectSent(sent[1], {1, 0, 0, 300, 0.0, 0, 0});
}

TEST_F(BatchTest, WriteSendsEveryFieldOfEveryParameter) {
  mMap.add("a", 0, 39)->setIntValue(46);
  Parameter* const slot = mMap.add("b", 0, 1003);
  slot->setStep(10);
  slot->setRealValue(-1.25);
  EXPECT_EQ(writeParams(mMap, FakeInstrument::cHandle), 0U);
  EXPECT_THAT(mInstrument.calls(), ElementsAre("WriteParamList(handle, 2)"));
  const std::vector<ParamList> sent = mInstrument.batch(0);
  ASSERT_EQ(sent.size(), 2U);
  expectSent(sent[0], {0, 0, 10, 1003, -1.25, 0, 0});
  expectSent(sent[1], {0, 0, 0, 39, 0.0, 46, 0});
}

TEST_F(BatchTest, ReadBringsValuesAndServiceStatus) {
  Parameter* const first = mMap.add("a", 1, 300);
  Parameter* const second = mMap.add("b", 2, 300);
  mInstrument.setValue(1, 300, {11, 1.5, 91});
  mInstrument.setValue(2, 300, {22, 2.5, 92});
  EXPECT_EQ(readParams(mMap, 1), 0U);
  EXPECT_EQ(first->getIntValue(), 11);
  EXPECT_EQ(first->getRealValue(), 1.5);
  EXPECT_EQ(second->getIntValue(), 22);
  EXPECT_EQ(second->getRealValue(), 2.5);
  readParams(mMap, 1);  // the next batch shows what was kept
  expectSent(mInstrument.batch(1)[0], {2, 0, 0, 300, 2.5, 22, 92});
  expectSent(mInstrument.batch(1)[1], {1, 0, 0, 300, 1.5, 11, 91});
}

TEST_F(BatchTest, ReadTellsStepsApart) {
  Parameter* const parameter = mMap.add("a", 0, 23);
  mInstrument.setStepValue(0, 23, 1, {10});
  mInstrument.setStepValue(0, 23, 2, {20});
  for (const int step : {2, 1}) {
    parameter->setStep(static_cast<unsigned long>(step));
    EXPECT_EQ(readParams(mMap, 1), 0U);
    EXPECT_EQ(parameter->getIntValue(), step * 10);
  }
}

TEST_F(BatchTest, ReadTakesValuesWhateverTheStatus) {
  Parameter* const parameter = mMap.add("a", 1, 300);
  mInstrument.setValue(1, 300, {11, 1.5, 91});
  mInstrument.setStatus(eFunction::eReadParamList, 12345);
  EXPECT_EQ(readParams(mMap, 1), 12345U);
  EXPECT_EQ(parameter->getIntValue(), 11);
  EXPECT_EQ(parameter->getRealValue(), 1.5);
}

TEST_F(BatchTest, UnansweredParameterKeepsItsValues) {
  Parameter* const parameter = mMap.add("a", 1, 300);
  parameter->setIntValue(3);
  parameter->setRealValue(4.5);
  mInstrument.setStatus(eFunction::eReadParamList, 28);
  EXPECT_EQ(readParams(mMap, 1), 28U);
  EXPECT_EQ(parameter->getIntValue(), 3);
  EXPECT_EQ(parameter->getRealValue(), 4.5);
}

TEST_F(BatchTest, SwappedRecordsChangeNothing) {
  Parameter* const first = mMap.add("a", 1, 300);
  Parameter* const second = mMap.add("b", 2, 300);
  Parameter* const third = mMap.add("c", 3, 300);
  for (const std::uint32_t channel : {1U, 2U, 3U}) {
    mInstrument.setValue(channel, 300, {static_cast<std::int32_t>(channel) * 11, 1.5, 0});
  }
  mInstrument.tamper = [](ParamList* records, unsigned long) { std::swap(records[0], records[1]); };
  EXPECT_EQ(readParams(mMap, 1), 0U);
  EXPECT_EQ(first->getIntValue(), 11);  // the third record stayed in its place
  EXPECT_EQ(second->getIntValue(), 0);
  EXPECT_EQ(second->getRealValue(), 0.0);
  EXPECT_EQ(third->getIntValue(), 0);
  EXPECT_EQ(third->getRealValue(), 0.0);
}

TEST_F(BatchTest, RecordOfAnotherParameterIsIgnored) {
  Parameter* const parameter = mMap.add("a", 1, 300);
  mInstrument.setValue(1, 300, {11, 1.5, 0});
  mInstrument.tamper = [](ParamList* records, unsigned long) { records[0].ParmID = 301; };
  EXPECT_EQ(readParams(mMap, 1), 0U);
  EXPECT_EQ(parameter->getIntValue(), 0);
}

TEST_F(BatchTest, WriteTakesNothingBack) {
  Parameter* const parameter = mMap.add("a", 0, 39);
  parameter->setIntValue(5);
  mInstrument.tamper = [](ParamList* records, unsigned long) {
    records[0].intvalue = 6;
    records[0].realvalue = 6.5;
    records[0].ServiceStatus = 7;
  };
  EXPECT_EQ(writeParams(mMap, 1), 0U);
  EXPECT_EQ(parameter->getIntValue(), 5);
  EXPECT_EQ(parameter->getRealValue(), 0.0);
  EXPECT_EQ(writeParams(mMap, 1), 0U);
  EXPECT_EQ(mInstrument.batch(1)[0].ServiceStatus, 0U);
}

TEST_F(BatchTest, ParameterUnderTwoNamesIsTwoRecords) {
  Parameter* const parameter = mMap.add("a", 1, 300);
  mMap.bind(ACE_CString("b"), parameter);
  mInstrument.setValue(1, 300, {11, 1.5, 0});
  EXPECT_EQ(readParams(mMap, 1), 0U);
  EXPECT_THAT(mInstrument.calls(), ElementsAre("ReadParamList(1, 2)"));
  expectSent(mInstrument.batch(0)[0], {1, 0, 0, 300, 0.0, 0, 0});
  expectSent(mInstrument.batch(0)[1], {1, 0, 0, 300, 0.0, 0, 0});
  EXPECT_EQ(parameter->getIntValue(), 11);
  mMap.unbind(ACE_CString("b"));  // owned once only
}

TEST_F(BatchTest, StatusPassesUnchanged) {
  const unsigned long statuses[] = {1, 28, 0x7FFFFFFFUL, 0x80000000UL, 0xFFFFFFFFUL};
  for (const unsigned long status : statuses) {
    mInstrument.setStatus(eFunction::eReadParamList, status);
    mInstrument.setStatus(eFunction::eWriteParamList, status);
    EXPECT_EQ(readParams(mMap, 1), status);
    EXPECT_EQ(writeParams(mMap, 1), status);
  }
}

TEST_F(BatchTest, NothingIsPrinted) {
  mMap.add("a", 1, 300);
  mInstrument.setStatus(eFunction::eReadParamList, 5);
  mInstrument.setStatus(eFunction::eWriteParamList, 5);
  const Output output = capture([&] {
    readParams(mMap, 1);
    writeParams(mMap, 1);
  });
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "");
}

TEST_F(BatchTest, RecordsGoInTheOrderOfTheMapEvenWhenThereAreMany) {
  for (unsigned long id = 1; id <= 500; ++id) {
    mMap.add(("p" + std::to_string(id)).c_str(), 0, id);
  }
  EXPECT_EQ(readParams(mMap, 1), 0U);
  const std::vector<ParamList> sent = mInstrument.batch(0);
  ASSERT_EQ(sent.size(), 500U);
  for (std::size_t i = 0; i < sent.size(); ++i) {
    EXPECT_EQ(sent[i].ParmID, 500 - i);
  }
}

TEST(BatchStatusTest, IncompleteBatchIs28) {
  EXPECT_EQ(cBatchIncomplete, 28U);
}

static_assert(hasArrived(0));
static_assert(hasArrived(28));
static_assert(!hasArrived(1));
static_assert(!hasArrived(27));
static_assert(!hasArrived(29));
static_assert(!hasArrived(0x80000000U));
static_assert(!hasArrived(0xFFFFFFFFU));
