// From the command line to the instrument: each operation creates its section, in the right mode,
// with its number or file.
#include <gmock/gmock.h>

#include <ostream>

#include "Arguments.h"
#include "Common.h"
#include "FakeInstrument.h"
#include "SectionBench.h"
#include "TemporaryFile.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// The program's main function.
int gcWebMain(int argc, char* argv[]);

namespace {
/// A command line, and what it sends between opening and closing the connection.
struct OperationRow {
  std::vector<std::string> words;
  std::vector<std::string> traffic;
};

std::ostream& operator<<(std::ostream& aStream, const OperationRow& aRow) {
  for (const std::string& word : aRow.words) {
    aStream << word << ' ';
  }
  return aStream;
}

const OperationRow cReports[] = {
    {{"-g"},
     {"ReadParamList(handle, 24)", "registerObject(SiteInfoTag)", "~SiteInfoTag()",
      "ReadObject(handle, 5)", "registerObject(SiteInfoTag)", "~SiteInfoTag()",
      "ReadObject(handle, 2)", "registerObject(ColumnDescriptions)", "~ColumnDescriptions()",
      "ReadObject(handle, 6)", "registerObject(ColumnDescriptions)", "~ColumnDescriptions()",
      "ReadObject(handle, 6)", "registerObject(ColumnDescriptions)", "~ColumnDescriptions()",
      "ReadObject(handle, 6)", "registerObject(ColumnDescriptions)", "~ColumnDescriptions()",
      "ReadObject(handle, 6)"}},
    {{"-a"}, {"ReadParamList(handle, 2)"}},
    {{"-q"}, {"ReadParamList(handle, 4)", "ReadParamList(handle, 5)"}},
    {{"-c"},
     {"ReadProgramInfo(handle, 0, 1, 1)", "ReadProgramInfo(handle, 0, 2, 1)",
      "ReadProgramInfo(handle, 0, 3, 1)", "ReadProgramInfo(handle, 0, 4, 1)"}},
    {{"-V", "7", "-a"}, {"ReadParamList(handle, 2)"}},
};

const OperationRow cCommands[] = {
    {{"-V", "7"}, {"WriteParamList(handle, 1): 0:39=7"}},
    {{"-V", "0"}, {"WriteParamList(handle, 1): 0:39"}},
    {{"-R", "single"},
     {"WriteParamList(handle, 3): 0:62 0:60 0:61", "ExecuteCommand(handle, 0, 0)"}},
    {{"-R", "single", "-v", "3"},
     {"WriteParamList(handle, 3): 0:62=3 0:60 0:61", "ExecuteCommand(handle, 0, 0)"}},
    {{"-R", "calib", "-v", "46"},
     {"WriteParamList(handle, 6): 0:62=46 0:75=1 0:74=1 0:60=1 0:61=1 0:73=2",
      "ExecuteCommand(handle, 0, 0)"}},
    {{"-v", "3", "-R", "calib"},
     {"WriteParamList(handle, 6): 0:62=3 0:75=1 0:74=1 0:60=1 0:61=1 0:73=2",
      "ExecuteCommand(handle, 0, 0)"}},
    {{"-R", "auto"}, {"ExecuteCommand(handle, 0, 16)"}},
    {{"-A", "now"}, {"ExecuteCommand(handle, 0, 1)", "ExecuteCommand(handle, 0, 17)"}},
    {{"-A", "auto"}, {"ExecuteCommand(handle, 0, 17)"}},
    {{"-A", "x"}, {"ExecuteCommand(handle, 0, 17)"}},
    {{"-M", "10"}, {"WriteParamList(handle, 1): 0:1003@10"}},
    {{"-M", "2", "-v", "9"}, {"WriteParamList(handle, 1): 0:1003@9"}},
    {{"-P"}, {"ExecuteCommand(handle, 0, 35)"}},
};

/// A command whose call the instrument refuses, and what it prints for code 5.
struct RefusedRow {
  std::vector<std::string> words;
  eFunction refused;
  std::string out;
  std::string err;
};

std::ostream& operator<<(std::ostream& aStream, const RefusedRow& aRow) {
  return aStream << aRow.words[0];
}

const RefusedRow cRefused[] = {
    {{"-g"}, eFunction::eReadParamList, "", "Execute failed 5.\n"},
    {{"-a"}, eFunction::eReadParamList, "", "Execute failed 5.\n"},
    {{"-q"}, eFunction::eReadParamList, "", "Execute failed 5.\n"},
    {{"-V", "7"}, eFunction::eWriteParamList, "", "writeParam. return 5.\nExecute failed 5.\n"},
    {{"-R", "single"},
     eFunction::eWriteParamList,
     resultObject(5, "Refused"),
     "writeParam. return 5.\nExecute failed 5.\n"},
    {{"-R", "calib"},
     eFunction::eExecuteCommand,
     resultObject(5, "Refused"),
     "writeParam. return 0.\nExecute failed 5.\n"},
    {{"-R", "auto"}, eFunction::eExecuteCommand, resultObject(5, "Refused"), "Execute failed 5.\n"},
    {{"-A", "now"}, eFunction::eExecuteCommand, resultObject(5, "Refused"), "Execute failed 5.\n"},
    {{"-M", "1"},
     eFunction::eWriteParamList,
     resultObject(5, "Accepted"),
     "writeParam. return 5.\nExecute failed 5.\n"},
    {{"-P"}, eFunction::eExecuteCommand, resultObject(5, "Refused"), "Execute failed 5.\n"},
};

class DispatchTest : public testing::Test {
 protected:
  /// Runs the program, which exits with 0 whatever the instrument answers.
  void run(std::vector<std::string> aOptions) {
    aOptions.insert(aOptions.begin(), "GC_Web");
    Arguments lArguments(std::move(aOptions));
    mOutput = capture([&] { EXPECT_EQ(gcWebMain(lArguments.count(), lArguments.words()), 0); });
  }
  /// All calls of a run in a connection mode, including those around the operation.
  static std::vector<std::string> around(const std::string& aMode,
                                         const std::vector<std::string>& aTraffic) {
    std::vector<std::string> lAll = {"initializeACE()", "startupGC(1, 16777343, 0, 0, 1, \"\")",
                                     "EstablishConnection(" + aMode + ", \"SimUI\", \"\")"};
    lAll.insert(lAll.end(), aTraffic.begin(), aTraffic.end());
    lAll.insert(lAll.end(), {"BreakConnection(handle)", "shutdownGC()", "finishACE()"});
    return lAll;
  }

  FakeInstrument mInstrument;
  Output mOutput;
};

class ReportDispatchTest : public DispatchTest, public testing::WithParamInterface<OperationRow> {};
class CommandDispatchTest : public DispatchTest,
                            public testing::WithParamInterface<OperationRow> {};
class RefusedDispatchTest : public DispatchTest, public testing::WithParamInterface<RefusedRow> {};
}  // namespace

TEST_P(ReportDispatchTest, ReadsInModeOne) {
  run(GetParam().words);
  EXPECT_EQ(mInstrument.calls(), around("1", GetParam().traffic));
  EXPECT_THAT(mOutput.out, Not(IsEmpty()));
  EXPECT_EQ(mOutput.err, "");
}

INSTANTIATE_TEST_SUITE_P(Reports, ReportDispatchTest, testing::ValuesIn(cReports));

TEST_P(CommandDispatchTest, WritesInModeZero) {
  run(GetParam().words);
  EXPECT_EQ(mInstrument.traffic(), around("0", GetParam().traffic));
  EXPECT_THAT(mOutput.err, Not(HasSubstr("Execute failed")));
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandDispatchTest, testing::ValuesIn(cCommands));

TEST_P(RefusedDispatchTest, IsToldAndTheConnectionClosed) {
  mInstrument.setStatus(GetParam().refused, 5);
  run(GetParam().words);
  EXPECT_EQ(mOutput.out, GetParam().out);
  EXPECT_EQ(mOutput.err, GetParam().err);
  const std::vector<std::string> calls = mInstrument.calls();
  EXPECT_THAT(std::vector<std::string>(calls.end() - 3, calls.end()),
              ElementsAre("BreakConnection(handle)", "shutdownGC()", "finishACE()"));
}

INSTANTIATE_TEST_SUITE_P(Operations, RefusedDispatchTest, testing::ValuesIn(cRefused));

TEST_F(DispatchTest, FailureAboveTheRangeOfIntIsNegative) {
  mInstrument.setStatus(eFunction::eExecuteCommand, 0xFFFFFFFFUL);
  run({"-P"});
  EXPECT_EQ(mOutput.out, resultObject(4294967295UL, "Refused"));
  EXPECT_EQ(mOutput.err, "Execute failed -1.\n");
}

TEST_F(DispatchTest, FailedCalibrationReportIsTold) {
  mInstrument.setProgramInfo(1, 1, 0);
  mInstrument.setStatus(eFunction::eReadParamList, 5);
  run({"-c"});
  EXPECT_EQ(mOutput.out, "");
  EXPECT_EQ(mOutput.err, "Execute failed 5.\n");
}

TEST_F(DispatchTest, SequenceDownloadReadsItsFile) {
  TemporaryFile file(R"({"Table_repeat": 4, "total": 1, "rows": [{"Stream": 5}]})");
  run({"-Q", file.name()});
  EXPECT_EQ(mInstrument.traffic(),
            around("0", {"WriteParamList(handle, 2): 0:12 0:15=4", "ExecuteCommand(handle, 0, 22)",
                         "WriteParamList(handle, 6): 0:23@1 1:1010@1 0:25@1=1 0:24@1 0:26@1 "
                         "0:22@1=5"}));
  EXPECT_EQ(mOutput.out, resultObject(0, "Success!"));
  EXPECT_EQ(mOutput.err, "");
}

TEST_F(DispatchTest, CalibrationDownloadReadsItsFile) {
  TemporaryFile file(R"({"total": 1, "rows": [{"Channel": 1, "ID": 2, "Level_amt": 3}]})");
  run({"-C", file.name()});
  EXPECT_EQ(mInstrument.traffic(), around("0", {"ExecuteCommand(handle, 0, 26)",
                                                "WriteParamList(handle, 1): 1:1230@2~3"}));
  EXPECT_EQ(mOutput.out, resultObject(0, "Success"));
  EXPECT_EQ(mOutput.err, "");
}

// The result of parsing is ignored: the section itself refuses, with its own verdict.

TEST_F(DispatchTest, SequenceDownloadWithoutFileIsRefusedBySection) {
  run({"-Q", testing::TempDir() + "no/such/file.json"});
  EXPECT_EQ(mInstrument.traffic(), around("0", {}));
  EXPECT_EQ(mOutput.out, resultObject(0, "Format Invalid"));
  EXPECT_EQ(mOutput.err, "Execute failed -1.\n");
}

TEST_F(DispatchTest, CalibrationDownloadWithoutFileIsRefusedBySection) {
  run({"-C", testing::TempDir() + "no/such/file.json"});
  EXPECT_EQ(mInstrument.traffic(), around("0", {}));
  EXPECT_EQ(mOutput.out, resultObject(2, "Format invalid"));
  EXPECT_EQ(mOutput.err, "Execute failed -1.\n");
}

TEST_F(DispatchTest, EmptyFileIsRefusedBySection) {
  TemporaryFile file("");
  run({"-C", file.name()});
  EXPECT_EQ(mInstrument.traffic(), around("0", {}));
  EXPECT_EQ(mOutput.err, "Execute failed -1.\n");
}

// An unknown operation number selects the status section, in the mode for that number.
TEST_F(DispatchTest, UnknownOperationIsTheStatusSection) {
  ParameterMap map(128);
  Request request;
  request.selected_sections = NR_OF_SECTIONS;
  mOutput = capture([&] { performRequest(request, map); });
  EXPECT_EQ(map.current_size(), 71U);
  EXPECT_NE(findParameter(map, "mGC_State"), nullptr);
  clearParamMap(map, true);
  EXPECT_EQ(mInstrument.calls()[2], "EstablishConnection(0, \"SimUI\", \"\")");
  EXPECT_EQ(mOutput.err, "");
}

// How many parameters an operation leaves in the caller's map.
TEST_F(DispatchTest, ReportsWithMapsOfTheirOwnLeaveTheLentMapEmpty) {
  struct Row {
    eSections operation;
    std::size_t parameters;
  };
  for (const Row& row : {Row{eConfigRead, 24}, Row{eAlarmRead, 0}, Row{eSequenceRead, 0},
                         Row{eCalibRead, 0}, Row{eStreamWrite, 1}, Row{eCalibrationRun, 6}}) {
    ParameterMap map(128);
    Request request;
    request.selected_sections = row.operation;
    capture([&] { performRequest(request, map); });
    EXPECT_EQ(map.current_size(), row.parameters) << row.operation;
    clearParamMap(map, true);
  }
}
