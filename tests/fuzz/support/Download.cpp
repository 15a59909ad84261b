// Reads the content in a different way than the tool: from memory, with the recursive parser.
#include "Download.h"

#include <rapidjson/document.h>

#include <algorithm>
#include <limits>
#include <tuple>

#include "MemoryFile.h"
#include "Program.h"
#include "Require.h"

namespace {

using rapidjson::Value;

/// Channel, id, step, integer, real. Reals are compared by their octets.
using Written = std::tuple<unsigned, unsigned, unsigned, int, std::uint64_t>;

/// A write or a command, and the text printed if it is refused.
struct Step {
  std::string call;
  std::vector<Written> records;
  std::string refusal;  ///< empty if a refusal is ignored
};

struct Plan {
  bool valid = false;
  std::vector<Step> steps;
};

std::uint64_t octetsOf(double aReal) {
  std::uint64_t octets = 0;
  std::memcpy(&octets, &aReal, sizeof octets);
  return octets;
}

Written integer(unsigned aChannel, unsigned aId, unsigned aStep, int aValue) {
  return {aChannel, aId, aStep, aValue, 0};
}

Written real(unsigned aChannel, unsigned aId, unsigned aStep, double aValue) {
  return {aChannel, aId, aStep, 0, octetsOf(aValue)};
}

Step write(const std::vector<Written>& aRecords, const std::string& aRefusal) {
  return {"WriteParamList(handle, " + std::to_string(aRecords.size()) + ")", aRecords, aRefusal};
}

Step command(int aNumber, const std::string& aRefusal) {
  return {"ExecuteCommand(handle, 0, " + std::to_string(aNumber) + ")", {}, aRefusal};
}

const Value& member(const Value& aParent, const char* aName) {
  static const Value cMissing;
  if (aParent.IsObject()) {
    const auto found = aParent.FindMember(aName);
    if (found != aParent.MemberEnd()) {
      return found->value;
    }
  }
  return cMissing;
}

int intOf(const Value& aValue) {
  return aValue.IsInt() ? aValue.GetInt() : 0;
}

int runTypeOf(const Value& aType) {
  const std::string type = aType.IsString() ? aType.GetString() : "";
  return type == "Calibration" ? 1 : type == "Blank" ? 2 : type == "Verification" ? 3 : 0;
}

/// How many rows are read.
unsigned rowsOf(const rapidjson::Document& aTable, int aMost) {
  const Value& rows = member(aTable, "rows");
  const int total = std::clamp(intOf(member(aTable, "total")), 0, aMost);
  return rows.IsArray() ? std::min<unsigned>(rows.Size(), static_cast<unsigned>(total)) : 0;
}

Plan planSequence(const rapidjson::Document& aTable) {
  if (!aTable.HasMember("Table_repeat") || !aTable.HasMember("total")) {
    return {};
  }
  const Value& continuous = member(aTable, "Continuous");
  std::vector<Step> steps = {
      write({integer(0, 15, 0, intOf(member(aTable, "Table_repeat"))),
             integer(0, 12, 0, continuous.IsTrue() ? 1 : 0)},
            "Refused: unable to set table repeat"),
      command(22, "Refused: unabled to clear orignal table"),
  };
  for (unsigned n = 1; n <= rowsOf(aTable, 20); ++n) {
    const Value& row = aTable["rows"][n - 1];
    const Value& flushing = member(row, "Flush_time");
    if (n > 1) {
      steps.push_back(command(19, "Refused: unable to insert new sequence"));
    }
    steps.push_back(write({integer(0, 23, n, runTypeOf(member(row, "Type"))),
                           integer(0, 24, n, intOf(member(row, "Repeat"))), integer(0, 25, n, 1),
                           integer(0, 22, n, intOf(member(row, "Stream"))),
                           integer(1, 1010, n, intOf(member(row, "Slot"))),
                           real(0, 26, n, flushing.IsNumber() ? flushing.GetDouble() : 0.0)},
                          "Refused: unable to set sequence line params"));
  }
  return {true, steps};
}

Plan planCalibration(const rapidjson::Document& aTable) {
  if (!aTable.HasMember("total")) {
    return {};
  }
  std::vector<Step> steps = {command(26, "")};
  for (unsigned n = 0; n < rowsOf(aTable, 400); ++n) {
    const Value& row = aTable["rows"][n];
    const Value& channel = member(row, "Channel");
    const Value& peak = member(row, "ID");
    const Value& amount = member(row, "Level_amt");
    if (channel.IsInt() && peak.IsInt() && amount.IsNumber()) {
      steps.push_back(write({real(static_cast<unsigned>(channel.GetInt()), 1230,
                                  static_cast<unsigned>(peak.GetInt()), amount.GetDouble())},
                            "Refused: Unable to set new level for chan[" +
                                std::to_string(channel.GetInt()) + "] peak[" +
                                std::to_string(peak.GetInt()) + "]"));
    }
  }
  return {true, steps};
}

Plan plan(eDownload aDownload, const std::string& aContent) {
  rapidjson::Document table;
  // A zero octet ends a text in memory but makes a file invalid. Parsed as a stream, because the
  // parser skips a byte order mark in a text.
  rapidjson::StringStream stream(aContent.c_str());
  if (aContent.find('\0') != std::string::npos || table.ParseStream(stream).HasParseError() ||
      !table.IsObject()) {
    return {};
  }
  return aDownload == eDownload::eSequence ? planSequence(table) : planCalibration(table);
}

std::vector<Written> sortedRecords(const std::vector<ParamList>& aRecords) {
  std::vector<Written> written;
  for (const ParamList& record : aRecords) {
    require(record.Method == 0 && record.ServiceStatus == 0, "method and status are 0");
    written.emplace_back(record.Channel, record.ParmID, record.Step, record.intvalue,
                         octetsOf(record.realvalue));
  }
  std::sort(written.begin(), written.end());
  return written;
}

bool isSame(const Call& aCall, const Step& aStep) {
  std::vector<Written> expected = aStep.records;
  std::sort(expected.begin(), expected.end());
  return aCall.text == aStep.call && sortedRecords(aCall.records) == expected;
}

/// The call that is refused, and with what status.
struct Refusal {
  eFunction function = eFunction::eWriteParamList;
  unsigned call = 0;  ///< counts from 1
  unsigned long status = 0;
};

bool isRefused(const Refusal& aRefusal, const Step& aStep, unsigned& writes, unsigned& commands) {
  const bool isWrite = !aStep.records.empty();
  const unsigned call = isWrite ? ++writes : ++commands;
  return aRefusal.status != 0 && call == aRefusal.call &&
         isWrite == (aRefusal.function == eFunction::eWriteParamList);
}

}  // namespace

bool requireDownload(eDownload aDownload, const std::string& aContent, Input& input) {
  FakeInstrument instrument;
  const eReached reached = scriptConnection(input, instrument);
  Refusal refusal;
  if (input.flag()) {
    refusal.function = input.flag() ? eFunction::eWriteParamList : eFunction::eExecuteCommand;
    refusal.call = 1 + static_cast<unsigned>(input.below(8));
    refusal.status = takeStatus(input);
    instrument.setStatusOfCall(refusal.function, refusal.call, refusal.status);
  }
  const bool isSequence = aDownload == eDownload::eSequence;
  const MemoryFile file(aContent);
  const Run run = runProgram({isSequence ? "-Q" : "-C", file.name()});
  const auto verdict =
      requireOrderly(instrument, run, isSequence ? eSequenceWrite : eCalibWrite, reached);
  const Plan expected = plan(aDownload, aContent);
  if (reached != eReached::eInstrument) {
    return expected.valid;
  }
  const std::vector<Call> done = changes(instrument);
  unsigned code = isSequence ? 0 : 2;
  std::string message = isSequence ? "Format Invalid" : "Format invalid";
  std::size_t count = 0;
  if (expected.valid) {
    code = 0;
    message = isSequence ? "Success!" : "Success";
    unsigned writes = 0;
    unsigned commands = 0;
    for (const Step& step : expected.steps) {
      require(count < done.size() && isSame(done[count], step), "the file is written as it is",
              step.call + " after " + std::to_string(count) + " of " + std::to_string(done.size()) +
                  " calls\n" + run.out);
      ++count;
      if (isRefused(refusal, step, writes, commands) && !step.refusal.empty()) {
        code = static_cast<unsigned>(refusal.status);
        message = step.refusal;
        break;
      }
    }
  }
  require(done.size() == count, "nothing else is sent", run.out);
  require(verdict["ErrorCode"].GetUint() == code && verdict["Msg"] == message.c_str(),
          "the verdict matches", run.out + "expected: " + message);
  return expected.valid;
}
