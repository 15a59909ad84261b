// The scripted instrument itself: what it logs and how it answers.
#include "FakeInstrument.h"

#include <ErrorText.h>
#include <PlatformLayer.h>
#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {
class FakeInstrumentTest : public testing::Test {
 protected:
  FakeInstrument mInstrument;
};
}  // namespace

TEST_F(FakeInstrumentTest, LogsEveryCallWithItsArguments) {
  unsigned long handle = 0;
  initializeACE();
  EXPECT_EQ(startupGC(1, 2, 3, 4, 5, "six"), 0UL);
  EXPECT_EQ(EstablishConnection(1, "two", nullptr, &handle), 0UL);
  EXPECT_EQ(handle, FakeInstrument::cHandle);
  EXPECT_EQ(ExecuteCommand(handle, 0, 16), 0UL);
  EXPECT_EQ(BreakConnection(7), 0UL);
  EXPECT_EQ(shutdownGC(), 0UL);
  finishACE();
  EXPECT_THAT(mInstrument.calls(),
              ElementsAre("initializeACE()", "startupGC(1, 2, 3, 4, 5, \"six\")",
                          "EstablishConnection(1, \"two\", null)", "ExecuteCommand(handle, 0, 16)",
                          "BreakConnection(7)", "shutdownGC()", "finishACE()"));
}

TEST_F(FakeInstrumentTest, StatusOfOneCallGoesBeforeThatOfAll) {
  mInstrument.setStatus(eFunction::eExecuteCommand, 5);
  mInstrument.setStatusOfCall(eFunction::eExecuteCommand, 2, 6);
  EXPECT_EQ(ExecuteCommand(1, 0, 1), 5UL);
  EXPECT_EQ(ExecuteCommand(1, 0, 17), 6UL);
  EXPECT_EQ(ExecuteCommand(1, 0, 17), 5UL);
  EXPECT_EQ(BreakConnection(1), 0UL);
}

TEST_F(FakeInstrumentTest, KeepsTheRecordsAsTheyWereSent) {
  ParamList records[] = {{1, 2, 3, 4, 5.5, 6, 7}, {0, 0, 0, 39, 0.0, 46, 0}};
  mInstrument.setValue(1, 4, {8, 9.5, 10});
  EXPECT_EQ(WriteParamList(1, records + 1, 1), 0UL);
  EXPECT_EQ(ReadParamList(1, records, 2), 0UL);
  EXPECT_THAT(mInstrument.calls(), ElementsAre("WriteParamList(1, 1)", "ReadParamList(1, 2)"));
  ASSERT_EQ(mInstrument.batch(0).size(), 1U);
  EXPECT_EQ(mInstrument.batch(0)[0].intvalue, 46);
  ASSERT_EQ(mInstrument.batch(1).size(), 2U);
  EXPECT_EQ(mInstrument.batch(1)[0].intvalue, 6);
  EXPECT_EQ(records[0].intvalue, 8);
  EXPECT_EQ(records[0].realvalue, 9.5);
  EXPECT_EQ(records[0].ServiceStatus, 10U);
  EXPECT_EQ(records[1].intvalue, 46);  // no scripted answer
}

TEST_F(FakeInstrumentTest, AnswerForAStepGoesBeforeThatForAll) {
  mInstrument.setValue(0, 23, {1});
  mInstrument.setStepValue(0, 23, 2, {2});
  ParamList records[] = {{0, 0, 1, 23, 0.0, 0, 0}, {0, 0, 2, 23, 0.0, 0, 0}};
  ReadParamList(1, records, 2);
  EXPECT_EQ(records[0].intvalue, 1);
  EXPECT_EQ(records[1].intvalue, 2);
}

TEST_F(FakeInstrumentTest, ProgramInfo) {
  mInstrument.setProgramInfo(2, 11, 12);
  unsigned long first = 1;
  unsigned long second = 1;
  EXPECT_EQ(ReadProgramInfo(FakeInstrument::cHandle, 5, 2, 6, &first, &second), 0UL);
  EXPECT_EQ(first, 11UL);
  EXPECT_EQ(second, 12UL);
  ReadProgramInfo(9, 0, 3, 0, &first, &second);  // no info for this channel
  EXPECT_EQ(first, 11UL);
  EXPECT_EQ(second, 12UL);
  EXPECT_THAT(mInstrument.calls(),
              ElementsAre("ReadProgramInfo(handle, 5, 2, 6)", "ReadProgramInfo(9, 0, 3, 0)"));
}

TEST_F(FakeInstrumentTest, TrafficShowsEveryFieldThatIsNotZero) {
  ParamList records[] = {{0, 0, 0, 39, 0.0, 0, 0}, {4294967295, 2, 3, 23, -1.5, -7, 9}};
  WriteParamList(FakeInstrument::cHandle, records, 2);
  ReadParamList(FakeInstrument::cHandle, records, 0);
  ExecuteCommand(FakeInstrument::cHandle, 0, 22);
  EXPECT_THAT(mInstrument.traffic(),
              ElementsAre("WriteParamList(handle, 2): 0:39 4294967295:23@3=-7~-1.5#2!9",
                          "ReadParamList(handle, 0)", "ExecuteCommand(handle, 0, 22)"));
}

TEST_F(FakeInstrumentTest, RemoteObjects) {
  mInstrument.setTag(5, "gc-12");
  mInstrument.setColumns(6, {"one", "two", "three", "four"});
  RemoteObject* object = nullptr;
  ReadObject(1, 5, object);
  const auto* const tag = dynamic_cast<SiteInfoTag*>(object);
  ASSERT_NE(tag, nullptr);
  EXPECT_STREQ(tag->getTagName().c_str(), "gc-12");
  ReadObject(1, 6, object);
  const auto* const columns = dynamic_cast<ColumnDescriptions*>(object);
  ASSERT_NE(columns, nullptr);
  EXPECT_STREQ(columns->getDescriptionColumn1().c_str(), "one");
  EXPECT_STREQ(columns->getDescriptionColumn2().c_str(), "two");
  EXPECT_STREQ(columns->getDescriptionColumn3().c_str(), "three");
  EXPECT_STREQ(columns->getDescriptionColumn4().c_str(), "four");
  mInstrument.setObject(6, nullptr);
  ReadObject(1, 6, object);
  EXPECT_EQ(object, nullptr);
}

TEST_F(FakeInstrumentTest, ErrorTextEndsWithAZeroUnlessItFillsTheBuffer) {
  char buffer[FakeInstrument::cErrorTextSize + 1];
  std::fill(std::begin(buffer), std::end(buffer), '#');
  getErrorText(3, buffer);
  EXPECT_STREQ(buffer, "text of error 3");
  mInstrument.setErrorText(4, std::string(500, 'e'));
  getErrorText(4, buffer);
  EXPECT_EQ(std::string(buffer, sizeof buffer),
            std::string(FakeInstrument::cErrorTextSize, 'e') + '#');
}

TEST_F(FakeInstrumentTest, SilentLibrariesWriteNothing) {
  mInstrument.setValue(0, 1, {5, 5.5, 5});
  mInstrument.setTag(4, "tag");
  mInstrument.silent = true;
  ParamList record = {0, 0, 0, 1, 0.0, 0, 0};
  ReadParamList(1, &record, 1);
  EXPECT_EQ(record.intvalue, 0);
  RemoteObject* object = nullptr;
  ReadObject(1, 4, object);
  EXPECT_EQ(object, nullptr);
  unsigned long handle = 3;
  EstablishConnection(1, "", "", &handle);
  EXPECT_EQ(handle, 3UL);
  unsigned long first = 4;
  unsigned long second = 5;
  ReadProgramInfo(1, 0, 1, 0, &first, &second);
  EXPECT_EQ(first, 4UL);
  EXPECT_EQ(second, 5UL);
}
