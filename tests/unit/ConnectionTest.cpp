// A run from start to end: every library call in order, connection failures, and the program as a
// whole.
#include <gmock/gmock.h>

#include "AceBlocks.h"
#include "Arguments.h"
#include "Common.h"
#include "EverydayInstrument.h"
#include "FakeInstrument.h"
#include "UsageText.h"

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// The program's main function.
int gcWebMain(int argc, char* argv[]);

namespace {
constexpr const char* cNotStarted = "{\n    \"ErrorCode\": 1,\n    \"Msg\": \"GC DLL error!\"\n}\n";
constexpr const char* cNotConnected =
    "{\n    \"ErrorCode\": 10053,\n    \"Msg\": \"Unable to connect to GC!\"\n}\n";

class ConnectionTest : public testing::Test {
 protected:
  ConnectionTest() { setEveryday(mInstrument); }

  /// Runs the program; returns its exit status.
  int run(std::vector<std::string> aOptions) {
    aOptions.insert(aOptions.begin(), "GC_Web");
    Arguments lArguments(std::move(aOptions));
    int lResult = 99;
    mOutput = capture([&] { lResult = gcWebMain(lArguments.count(), lArguments.words()); });
    return lResult;
  }

  FakeInstrument mInstrument;
  Output mOutput;
};

class ReportStatusTest : public ConnectionTest,
                         public testing::WithParamInterface<unsigned long> {};
}  // namespace

TEST_F(ConnectionTest, EveryCallInOrder) {
  EXPECT_EQ(run({}), 0);
  EXPECT_EQ(mOutput.out, cEverydayStatus);
  EXPECT_EQ(mOutput.err, "");
  EXPECT_THAT(mInstrument.calls(),
              ElementsAre("initializeACE()", "startupGC(1, 16777343, 0, 0, 1, \"\")",
                          "EstablishConnection(1, \"SimUI\", \"\")", "ReadParamList(handle, 71)",
                          "plxGetTime(null)", "registerObject(SiteInfoTag)", "~SiteInfoTag()",
                          "ReadObject(handle, 4)", "getErrorText(17)", "BreakConnection(handle)",
                          "shutdownGC()", "finishACE()"));
}

TEST_F(ConnectionTest, StatusOptionIsTheSameReport) {
  EXPECT_EQ(run({"-t"}), 0);
  EXPECT_EQ(mOutput.out, cEverydayStatus);
  EXPECT_EQ(mOutput.err, "");
}

// The report sends its records in the iteration order of a map with 128 buckets.
TEST_F(ConnectionTest, MapOfTheProgramHas128Buckets) {
  EXPECT_EQ(run({}), 0);
  const std::vector<ParamList> sent = mInstrument.batch(0);
  ASSERT_EQ(sent.size(), 71U);
  EXPECT_EQ(sent[0].ParmID, 102U);
  EXPECT_EQ(sent[1].ParmID, 96U);
  EXPECT_EQ(sent[2].ParmID, 323U);
  EXPECT_EQ(sent[2].Channel, 4U);
  EXPECT_EQ(sent[70].ParmID, 204U);
  EXPECT_EQ(sent[70].Channel, 1U);
}

TEST_F(ConnectionTest, MapIsClearedAndClosedBeforeThePlatformLayerFinishes) {
  AceBlocks blocks;
  int heldAtBreak = -1;
  int heldAtFinish = -1;
  mInstrument.atCall = [&](const std::string& call) {
    if (call == "BreakConnection(handle)") {
      heldAtBreak = blocks.held();
    } else if (call == "finishACE()") {
      heldAtFinish = blocks.held();
    }
  };
  EXPECT_EQ(run({}), 0);
  EXPECT_GT(heldAtBreak, 71);  // the map's table, and at least one entry per parameter
  EXPECT_EQ(heldAtFinish, 0);
}

TEST_F(ConnectionTest, AddressIsHandedOverAsAnUnsignedNumber) {
  run({"-s", "10.0.0.1"});
  EXPECT_EQ(mInstrument.calls()[1], "startupGC(1, 16777226, 0, 0, 1, \"\")");
}

// With a 64-bit long the number is positive, otherwise it has the same 32 bits.
TEST_F(ConnectionTest, AddressAboveTheRangeOfInt) {
  run({"-s", "1.2.3.200"});
  const long address = static_cast<long>(3355640321UL);
  EXPECT_EQ(mInstrument.calls()[1], "startupGC(1, " + std::to_string(address) + ", 0, 0, 1, \"\")");
}

TEST_F(ConnectionTest, HighestAddress) {
  run({"-s", "254.255.255.255"});
  const long address = static_cast<long>(4294967294UL);
  EXPECT_EQ(mInstrument.calls()[1], "startupGC(1, " + std::to_string(address) + ", 0, 0, 1, \"\")");
}

TEST_F(ConnectionTest, LibraryThatDoesNotStart) {
  for (const unsigned long status : {1UL, 28UL, ~0UL}) {
    FakeInstrument* const instrument = FakeInstrument::current();
    instrument->setStatus(eFunction::eStartupGC, status);
    EXPECT_EQ(run({}), 0);
    EXPECT_EQ(mOutput.out, cNotStarted);
    EXPECT_EQ(mOutput.err, "startupGC An error occured.\n");
    const std::vector<std::string> calls = instrument->calls();
    EXPECT_THAT(
        std::vector<std::string>(calls.end() - 3, calls.end()),
        ElementsAre("initializeACE()", "startupGC(1, 16777343, 0, 0, 1, \"\")", "finishACE()"));
  }
  EXPECT_EQ(mInstrument.calls().size(), 9U);
}

TEST_F(ConnectionTest, ConnectionThatIsRefused) {
  for (const unsigned long status : {1UL, 28UL, 10053UL, ~0UL}) {
    mInstrument.setStatus(eFunction::eEstablishConnection, status);
    EXPECT_EQ(run({}), 0);
    EXPECT_EQ(mOutput.out, cNotConnected);
    EXPECT_EQ(mOutput.err, "EstablishConnection An error occured while connecting to the GC.\n");
    const std::vector<std::string> calls = mInstrument.calls();
    EXPECT_THAT(std::vector<std::string>(calls.end() - 4, calls.end()),
                ElementsAre("initializeACE()", "startupGC(1, 16777343, 0, 0, 1, \"\")",
                            "EstablishConnection(1, \"SimUI\", \"\")", "finishACE()"));
  }
  EXPECT_EQ(mInstrument.calls().size(), 16U);
}

TEST_P(ReportStatusTest, FailedReportIsToldAndTheConnectionClosed) {
  mInstrument.setStatus(eFunction::eReadParamList, GetParam());
  EXPECT_EQ(run({}), 0);
  EXPECT_EQ(mOutput.out, "");
  const auto status = static_cast<int>(GetParam());
  EXPECT_EQ(mOutput.err, "Execute failed " + std::to_string(status) + ".\n");
  EXPECT_THAT(mInstrument.calls(),
              ElementsAre("initializeACE()", "startupGC(1, 16777343, 0, 0, 1, \"\")",
                          "EstablishConnection(1, \"SimUI\", \"\")", "ReadParamList(handle, 71)",
                          "BreakConnection(handle)", "shutdownGC()", "finishACE()"));
}

INSTANTIATE_TEST_SUITE_P(Statuses, ReportStatusTest,
                         testing::Values(1UL, 27UL, 29UL, 10053UL, 0x7FFFFFFFUL));

TEST_F(ConnectionTest, FailureAboveTheRangeOfIntIsNegative) {
  mInstrument.setStatus(eFunction::eReadParamList, 0x80000000UL);
  run({});
  EXPECT_EQ(mOutput.err, "Execute failed -2147483648.\n");
  mInstrument.setStatus(eFunction::eReadParamList, 0xFFFFFFFFUL);
  run({});
  EXPECT_EQ(mOutput.err, "Execute failed -1.\n");
}

TEST_F(ConnectionTest, IncompleteBatchIsNoFailure) {
  mInstrument.setStatus(eFunction::eReadParamList, 28);
  EXPECT_EQ(run({}), 0);
  EXPECT_EQ(mOutput.out, cEverydayStatus);
  EXPECT_EQ(mOutput.err, "");
}

TEST_F(ConnectionTest, FailuresOfTheEndAreNotLookedAt) {
  mInstrument.setStatus(eFunction::eBreakConnection, 5);
  mInstrument.setStatus(eFunction::eShutdownGC, 6);
  EXPECT_EQ(run({}), 0);
  EXPECT_EQ(mOutput.out, cEverydayStatus);
  EXPECT_EQ(mOutput.err, "");
  EXPECT_EQ(mInstrument.calls().back(), "finishACE()");
}

TEST_F(ConnectionTest, RefusedCommandLineReachesNoLibrary) {
  EXPECT_EQ(run({"-V", "47"}), -1);
  EXPECT_EQ(mOutput.out, "");
  EXPECT_EQ(mOutput.err, "ERROR: number out of range for stream\n");
  EXPECT_EQ(run({"-t", "extra"}), -1);
  EXPECT_EQ(run({"-s", "0.1.2.3"}), -1);
  EXPECT_EQ(run({"-X"}), -1);
  EXPECT_EQ(mOutput.err, std::string("GC_Web: invalid option -- 'X'\n") + cUsage);
  EXPECT_THAT(mInstrument.calls(), IsEmpty());
}

TEST_F(ConnectionTest, HelpReachesNoLibrary) {
  EXPECT_EQ(run({"-h", "-t"}), 0);
  EXPECT_EQ(mOutput.out, "");
  EXPECT_EQ(mOutput.err, cUsage);
  EXPECT_THAT(mInstrument.calls(), IsEmpty());
}

// A single request with the caller's map.

TEST_F(ConnectionTest, RequestLeavesItsParametersInTheMap) {
  ParameterMap map(128);
  Request request;
  mOutput = capture([&] { performRequest(request, map); });
  EXPECT_EQ(mOutput.out, cEverydayStatus);
  EXPECT_EQ(map.current_size(), 71U);
  EXPECT_EQ(getIntValue(map, "mAnalysisCounter", 0), 412);
  clearParamMap(map, true);
  EXPECT_THAT(mInstrument.calls(), Contains("shutdownGC()"));
}

TEST_F(ConnectionTest, RequestWithoutConnectionLeavesTheMapEmpty) {
  mInstrument.setStatus(eFunction::eEstablishConnection, 9);
  ParameterMap map(128);
  Request request;
  mOutput = capture([&] { performRequest(request, map); });
  EXPECT_EQ(mOutput.out, cNotConnected);
  EXPECT_EQ(map.current_size(), 0U);
  EXPECT_THAT(mInstrument.calls(), Each(Not(HasSubstr("shutdownGC"))));
}
