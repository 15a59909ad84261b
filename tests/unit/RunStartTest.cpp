// Starting single, calibration and automation runs.
#include <gmock/gmock.h>

#include "SecAutoRun.h"
#include "SecCalibRun.h"
#include "SecSingleRun.h"
#include "SectionBench.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
/// Exposes a run section's fields.
template <class Section>
class OpenRun : public Section {
 public:
  using Section::stream;
};

using SingleRunTest = SectionBench<OpenRun<SecSingleRun>>;
using CalibRunTest = SectionBench<OpenRun<SecCalibRun>>;

class SingleRun : public SingleRunTest, public testing::Test {};
class CalibRun : public CalibRunTest, public testing::Test {};
class AutoRun : public SectionBench<SecAutoRun>, public testing::Test {};

class SingleRunStatus : public SingleRun, public testing::WithParamInterface<unsigned long> {};
class CalibRunStatus : public CalibRun, public testing::WithParamInterface<unsigned long> {};
class AutoRunStatus : public AutoRun, public testing::WithParamInterface<unsigned long> {};

// The parameters in the iteration order of a map with 128 buckets. Single run: stream, run type,
// level. Calibration run: stream, calibration type, current replicate, run type, level, replicates.
constexpr const char* cSingleRun = "WriteParamList(handle, 3): 0:62=46 0:60 0:61";
constexpr const char* cCalibRun =
    "WriteParamList(handle, 6): 0:62=46 0:75=1 0:74=1 0:60=1 0:61=1 0:73=2";
constexpr const char* cStart = "ExecuteCommand(handle, 0, 0)";

std::string written(unsigned long aStatus) {
  return "writeParam. return " + std::to_string(asInt(aStatus)) + ".\n";
}

/// The names that a section registers, in order; uses a map with one bucket, which iterates from
/// the last parameter bound to the first.
template <class Section>
std::vector<std::string> registered() {
  TestMap lMap(1);
  Section lSection;
  lSection.init(&lMap, 1);
  std::vector<std::string> lNames;
  for (ParameterMapConstIter it(lMap); !it.done(); it.advance()) {
    lNames.insert(lNames.begin(), (*it).ext_id_.c_str());
  }
  return lNames;
}
}  // namespace

TEST_F(SingleRun, RegistersInOrderAndSendsNothing) {
  EXPECT_THAT(registered<SecSingleRun>(), ElementsAre("mRunType", "mLevel", "mStream"));
  EXPECT_THAT(registered<SecCalibRun>(),
              ElementsAre("mRunType", "mLevel", "mStream", "mRFCalibType", "mReplicate",
                          "mCurrentReplicate"));
  EXPECT_THAT(registered<SecAutoRun>(), IsEmpty());
  EXPECT_THAT(mInstrument.calls(), IsEmpty());
}

TEST_F(SingleRun, WritesItsParametersThenStarts) {
  mSection.setArgument(46);
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cSingleRun, cStart));
  EXPECT_EQ(mOutput.out, resultObject(0, "Accepted"));
  EXPECT_EQ(mOutput.err, "writeParam. return 0.\n");
}

TEST_F(SingleRun, WithoutStreamWritesStreamZero) {
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(),
              ElementsAre("WriteParamList(handle, 3): 0:62 0:60 0:61", cStart));
}

TEST_F(SingleRun, StreamIsKeptWithTheParameter) {
  mSection.setArgument(46);
  EXPECT_EQ(mSection.stream, 46);
  EXPECT_EQ(getIntValue(mMap, "mStream", -1), 46);
  mSection.setArgument(0);
  EXPECT_EQ(mSection.stream, 0);
  EXPECT_EQ(getIntValue(mMap, "mStream", -1), 0);
}

TEST_F(SingleRun, StreamIsNotKeptWithoutTheParameter) {
  mSection.setArgument(3);
  clearParamMap(mMap, false);
  mSection.setArgument(46);
  EXPECT_EQ(mSection.stream, 3);
  EXPECT_EQ(mMap.current_size(), 0U);
}

TEST_P(SingleRunStatus, RefusedParametersStartNothing) {
  mSection.setArgument(46);
  mInstrument.setStatus(eFunction::eWriteParamList, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cSingleRun));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused"));
  EXPECT_EQ(mOutput.err, written(GetParam()));
}

TEST_P(SingleRunStatus, RefusedStart) {
  mSection.setArgument(46);
  mInstrument.setStatus(eFunction::eExecuteCommand, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cSingleRun, cStart));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused"));
  EXPECT_EQ(mOutput.err, written(0));
}

INSTANTIATE_TEST_SUITE_P(Statuses, SingleRunStatus, testing::ValuesIn(cRefusals));

TEST_F(CalibRun, WritesItsFixedValuesThenStarts) {
  mSection.setArgument(46);
  EXPECT_EQ(mSection.stream, 46);
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cCalibRun, cStart));
  EXPECT_EQ(mOutput.out, resultObject(0, "Accepted"));
  EXPECT_EQ(mOutput.err, "writeParam. return 0.\n");
}

TEST_F(CalibRun, WithoutStreamWritesStreamZero) {
  EXPECT_EQ(write(), 0);
  EXPECT_EQ(mInstrument.traffic()[0],
            "WriteParamList(handle, 6): 0:62 0:75=1 0:74=1 0:60=1 0:61=1 0:73=2");
}

TEST_F(CalibRun, StreamIsNotKeptWithoutTheParameter) {
  clearParamMap(mMap, false);
  mSection.setArgument(46);
  EXPECT_EQ(mSection.stream, 0);
}

TEST_P(CalibRunStatus, RefusedParametersStartNothing) {
  mSection.setArgument(46);
  mInstrument.setStatus(eFunction::eWriteParamList, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cCalibRun));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused"));
  EXPECT_EQ(mOutput.err, written(GetParam()));
}

TEST_P(CalibRunStatus, RefusedStart) {
  mSection.setArgument(46);
  mInstrument.setStatus(eFunction::eExecuteCommand, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cCalibRun, cStart));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused"));
  EXPECT_EQ(mOutput.err, written(0));
}

INSTANTIATE_TEST_SUITE_P(Statuses, CalibRunStatus, testing::ValuesIn(cRefusals));

TEST_F(AutoRun, IsOneCommandAndNoParameters) {
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("ExecuteCommand(handle, 0, 16)"));
  EXPECT_EQ(mOutput.out, resultObject(0, "Accepted"));
  EXPECT_EQ(mOutput.err, "");
}

TEST_P(AutoRunStatus, Refused) {
  mInstrument.setStatus(eFunction::eExecuteCommand, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("ExecuteCommand(handle, 0, 16)"));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused"));
  EXPECT_EQ(mOutput.err, "");
}

INSTANTIATE_TEST_SUITE_P(Statuses, AutoRunStatus, testing::ValuesIn(cRefusals));
