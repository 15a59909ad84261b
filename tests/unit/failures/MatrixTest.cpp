// The failure matrix: every operation, every library call it makes, every fault.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <ostream>
#include <sstream>

#include "Expectations.h"

namespace {

/// The number of cells for each operation and fault, and how many of them are undefined.
class MatrixTable : public testing::Environment {
 public:
  void count(const Operation& aOperation, const FaultRow& aFault, bool aDefined) {
    ++mCells[{aOperation.name, aFault.name}];
    mUndefined += aDefined ? 0 : 1;
  }

  void TearDown() override {
    std::printf("\n%-20s", "failure matrix");
    for (const FaultRow& fault : faults()) {
      std::printf("  %4s", fault.name);
    }
    int sum = 0;
    for (const Operation& operation : operations()) {
      std::printf("\n%-20s", operation.name.c_str());
      for (const FaultRow& fault : faults()) {
        const auto width = std::max(4, static_cast<int>(std::strlen(fault.name)));
        const int cells = mCells[{operation.name, fault.name}];
        std::printf("  %*d", width, cells);
        sum += cells;
      }
    }
    std::printf("\n%d cells, %d undefined\n", sum, mUndefined);
  }

 private:
  std::map<std::pair<std::string, std::string>, int> mCells;
  int mUndefined = 0;
};

MatrixTable& table() {
  static auto* const cTable = new MatrixTable;  // GoogleTest deletes it
  return *cTable;
}

const testing::Environment* const sTable = testing::AddGlobalTestEnvironment(&table());

class FailureMatrixTest : public testing::TestWithParam<Operation> {};

GoodRun goodRun(const Operation& aOperation) {
  FakeInstrument instrument;
  setAnswers(instrument);
  GoodRun good;
  const Outcome outcome = run(aOperation);
  good.output = outcome.output;
  good.log = instrument.log();
  good.traffic = instrument.traffic();
  return good;
}

bool changesInstrument(const std::string& aCall) {
  return aCall.rfind("WriteParamList(", 0) == 0 || aCall.rfind("ExecuteCommand(", 0) == 0;
}

std::size_t countCalls(const std::vector<Call>& aLog, const std::string& aFunction) {
  std::size_t count = 0;
  for (const Call& call : aLog) {
    count += call.text.rfind(aFunction + "(", 0) == 0 ? 1 : 0;
  }
  return count;
}

/// Checks what must hold in every cell, whatever the expectations. Returns the violations.
std::string brokenInvariants(const Operation& aOperation, const Injury& aInjury,
                             const std::vector<Call>& aLog, const Outcome& aOutcome) {
  std::string broken;
  bool opened = false;
  bool refused = false;
  for (std::size_t i = 0; i < aLog.size(); ++i) {
    const FunctionRow* const function = findFunction(aLog[i].text);
    const unsigned long status = function == nullptr ? 0 : answerTo(aInjury, i, *function).status;
    opened = opened || (aLog[i].text.rfind("EstablishConnection(", 0) == 0 && status == 0);
    if (changesInstrument(aLog[i].text)) {
      broken += refused ? "goes on after a refusal; " : "";
      broken += aOperation.code < eStreamWrite ? "a report changes the instrument; " : "";
      const bool isClear = aOperation.code == eCalibWrite && aLog[i].records.empty();
      refused = refused || (status != 0 && !isClear);
    }
  }
  const std::size_t closings = opened ? 1 : 0;
  if (countCalls(aLog, "BreakConnection") != closings ||
      countCalls(aLog, "shutdownGC") != closings) {
    broken += "closed more or less than once; ";
  }
  broken += aOutcome.status == 0 ? "" : "exit status; ";
  broken += aOutcome.aceBlocks == 0 ? "" : "a map was not freed; ";
  rapidjson::Document document;
  if (!aOutcome.output.out.empty() && document.Parse(aOutcome.output.out.c_str()).HasParseError()) {
    broken += "not one document; ";
  }
  return broken;
}

/// Runs a cell; returns a description of any difference from the expectation.
std::string tryCell(const Operation& aOperation, const GoodRun& aGood, const Injury& aInjury) {
  FakeInstrument instrument;
  setAnswers(instrument);
  inflict(aInjury, instrument);
  const Outcome outcome = run(aOperation);
  const Expectation expected = expectation(aOperation, aGood, aInjury);
  std::vector<std::string> calls;
  for (const Call& call : instrument.log()) {
    calls.push_back(plainCall(call.text));
  }
  std::string wrong =
      expected.undefined + brokenInvariants(aOperation, aInjury, instrument.log(), outcome);
  if (outcome.output.out != expected.output.out) {
    wrong += "prints\n" + outcome.output.out + "instead of\n" + expected.output.out;
  }
  if (outcome.output.err != expected.output.err) {
    wrong += "says\n" + outcome.output.err + "instead of\n" + expected.output.err;
  }
  if (calls != expected.calls) {
    wrong += "calls " + testing::PrintToString(calls) + "\ninstead of " +
             testing::PrintToString(expected.calls);
  }
  return wrong;
}

std::string cellName(const Operation& aOperation, const GoodRun& aGood, const Injury& aInjury) {
  std::ostringstream name;
  name << aOperation.name << ", call " << aInjury.call << ' ' << aGood.log[aInjury.call].text
       << ", " << aInjury.fault->name;
  if (aInjury.fault->hits == eHits::eRecord || aInjury.fault->hits == eHits::eBatch) {
    name << " in record " << aInjury.record;
  }
  return name.str();
}

}  // namespace

TEST_P(FailureMatrixTest, EveryCellIsDefined) {
  const Operation& operation = GetParam();
  const GoodRun good = goodRun(operation);
  ASSERT_EQ(good.output.err.find("Execute failed"), std::string::npos) << good.output.err;
  for (const FaultRow& fault : faults()) {
    for (const Injury& injury : injuries(fault, good.log)) {
      const std::string wrong = tryCell(operation, good, injury);
      table().count(operation, fault, wrong.empty());
      EXPECT_EQ(wrong, "") << "undefined: " << cellName(operation, good, injury);
    }
  }
}

/// An operation's name, in characters allowed in a test name.
INSTANTIATE_TEST_SUITE_P(Operations, FailureMatrixTest, testing::ValuesIn(operations()),
                         [](const testing::TestParamInfo<Operation>& aInfo) {
                           std::string name = aInfo.param.name;
                           std::replace(name.begin(), name.end(), ' ', '_');
                           return name;
                         });

TEST(FailureMatrix, EveryOperationHasARow) {
  for (int code = 0; code < NR_OF_SECTIONS; ++code) {
    const auto has = [&](const Operation& row) { return row.code == code; };
    EXPECT_TRUE(std::any_of(operations().begin(), operations().end(), has)) << code;
  }
  for (const Operation& row : operations()) {
    std::vector<std::string> words = row.words;
    if (!row.file.empty()) {
      words.emplace_back("file");
    }
    const Parsed parsed = parse(words);
    EXPECT_TRUE(parsed.accepted) << row.name;
    EXPECT_EQ(parsed.request.selected_sections, row.code) << row.name;
  }
}

// An empty matrix would pass.
TEST(FailureMatrix, EveryFaultHitsACall) {
  for (const FaultRow& fault : faults()) {
    std::size_t hits = 0;
    for (const Operation& operation : operations()) {
      hits += injuries(fault, goodRun(operation).log).size();
    }
    EXPECT_GE(hits, 9U) << fault.name;
  }
}
