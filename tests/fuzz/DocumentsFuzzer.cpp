// Every operation of the program, on an instrument whose values, texts, counts and statuses come
// from the input.
#include <cmath>
#include <limits>
#include <map>

#include "Download.h"
#include "Program.h"
#include "Require.h"

namespace {

using rapidjson::Document;
using rapidjson::Value;

constexpr double cReals[] = {0.0,
                             -0.0,
                             0.5,
                             -1.0,
                             1e-5,
                             35791394.2,
                             4e7,
                             1e21,
                             std::numeric_limits<double>::max(),
                             std::numeric_limits<double>::lowest(),
                             std::numeric_limits<double>::denorm_min(),
                             std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()};
constexpr std::int32_t cIntegers[] = {std::numeric_limits<std::int32_t>::min(),
                                      std::numeric_limits<std::int32_t>::max(),
                                      -1,
                                      20,
                                      38,
                                      39};

/// Answers one record, using one octet and what that asks for; when the input ends, records stay
/// unchanged.
void answer(Input& input, ParamList& record) {
  const std::uint8_t choice = input.octet();
  switch (choice % 16) {
    case 0:
      break;
    case 1:
      record.realvalue = input.oneOf(cReals);
      break;
    case 2:
      record.realvalue = input.number<double>();
      break;
    case 3:
      record.intvalue = input.oneOf(cIntegers);
      break;
    case 4:
      record.intvalue = input.number<std::int32_t>();
      break;
    case 5:
      record.Channel = input.octet();  // another parameter's record
      break;
    case 6:
      record.ParmID = input.number<std::uint16_t>();
      break;
    case 7:
      record.ServiceStatus = input.number<std::uint32_t>();
      break;
    case 8:
      record.intvalue = input.octet();
      record.realvalue = input.oneOf(cReals);
      break;
    default:
      record.intvalue = choice / 16;
      record.realvalue = choice;
      break;
  }
}

void scriptObject(Input& input, FakeInstrument& instrument, unsigned long aNumber) {
  switch (input.below(4)) {
    case 0:
      break;  // never arrives
    case 1:
      instrument.setColumns(aNumber, {input.text(), input.text(), input.text(), input.text()});
      break;
    default:
      instrument.setTag(aNumber, input.text());
      break;
  }
}

void script(Input& input, FakeInstrument& instrument) {
  for (const unsigned long number : {2UL, 4UL, 5UL, 6UL}) {
    scriptObject(input, instrument, number);
  }
  for (unsigned long channel = 1; channel <= 4; ++channel) {
    if (input.flag()) {
      const unsigned long peaks = input.flag() ? input.octet() % 3 : input.number<std::uint32_t>();
      instrument.setProgramInfo(channel, peaks, input.octet());
    }
  }
  Clock& clock = instrument.clock;
  for (unsigned* part :
       {&clock.hour, &clock.minute, &clock.second, &clock.day, &clock.month, &clock.year}) {
    *part = input.flag() ? input.octet() : input.number<std::uint32_t>();
  }
  const int code = input.number<std::int32_t>();
  instrument.setErrorText(code, input.text());
  constexpr eFunction cFunctions[] = {eFunction::eReadParamList,   eFunction::eReadObject,
                                      eFunction::eReadProgramInfo, eFunction::eGetTime,
                                      eFunction::eWriteParamList,  eFunction::eExecuteCommand};
  for (std::size_t left = input.below(4); left > 0; --left) {
    const eFunction function = input.oneOf(cFunctions);
    const auto call = 1 + static_cast<unsigned>(input.octet());
    instrument.setStatusOfCall(function, call, takeStatus(input));
  }
  instrument.silent = input.octet() == 0xFF;
}

/// The value of a real as shown in the documents.
bool shows(const Value& aShown, double aValue) {
  return std::isfinite(aValue) ? aShown.IsNumber() && aShown.GetDouble() == aValue
                               : aShown.IsString() && aShown == "-";
}

std::string twoDigits(unsigned aNumber) {
  const int number = static_cast<int>(aNumber);
  return (number >= 0 && number < 10 ? "0" : "") + std::to_string(number);
}

void requireStatus(const FakeInstrument& aInstrument, const Document& aStatus,
                   const std::map<std::uint32_t, ParamList>& aInstrumentWide) {
  const auto valueOf = [&](std::uint32_t aId) {
    const auto found = aInstrumentWide.find(aId);
    return found == aInstrumentWide.end() ? ParamList{} : found->second;
  };
  const Clock clock = aInstrument.silent ? Clock{0, 0, 0, 0, 0, 0} : aInstrument.clock;
  const std::string time = std::to_string(static_cast<int>(clock.day)) + '-' +
                           std::to_string(static_cast<int>(clock.month)) + '-' +
                           std::to_string(static_cast<int>(clock.year)) + ' ' +
                           twoDigits(clock.hour) + ':' + twoDigits(clock.minute) + ':' +
                           twoDigits(clock.second);
  require(aStatus["GC_time"] == time.c_str(), "the time comes from the clock", time);
  require(shows(aStatus["Ambient_press"], valueOf(104).realvalue), "a real is shown, or -");
  require(aStatus["Ambient_temp"] == valueOf(103).intvalue, "an integer is shown");
  require(aStatus["Error_code"] == valueOf(132).intvalue, "the error is shown");
  require(aStatus["Alarm_overall"].GetBool() == (valueOf(2211).intvalue != 0), "a flag is shown");
  constexpr const char* cChannels[] = {"Channel1", "Channel2", "Channel3", "Channel4"};
  for (std::uint32_t n = 0; n < 4; ++n) {
    require(aStatus.HasMember(cChannels[n]) == (valueOf(502 + n).intvalue != 0),
            "the installed channels are shown, and no others", cChannels[n]);
  }
}

/// There are `total` rows, up to a bound.
void requireRows(const Document& aDocument, int aMost) {
  const int total = aDocument["total"].GetInt();
  const std::size_t rows = aDocument.HasMember("rows") ? aDocument["rows"].Size() : 0;
  require(rows == static_cast<std::size_t>(std::max(0, std::min(total, aMost))),
          "the number of rows matches total");
}

struct OperationRow {
  eSections operation;
  std::vector<std::string> words;
};

const OperationRow& takeOperation(Input& input) {
  static const OperationRow cOperations[] = {
      {eStatusRead, {"-t"}},          {eConfigRead, {"-g"}},        {eAlarmRead, {"-a"}},
      {eSequenceRead, {"-q"}},        {eCalibRead, {"-c"}},         {eStreamWrite, {"-V", "5"}},
      {eSingleRun, {"-R", "single"}}, {eAutomationRun, {"-Rauto"}}, {eCalibrationRun, {"-Rcalib"}},
      {eAbortRun, {"-A", "now"}},     {eAbortRun, {"-A", "auto"}},  {eSolutionLoad, {"-M7"}},
      {eAlarmReset, {"-P"}},
  };
  return cOperations[input.below(std::size(cOperations))];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize) {
  Input input(aOctets, aSize);
  const OperationRow& row = takeOperation(input);
  Run run;
  Document document;
  {
    FakeInstrument instrument;
    const eReached reached = scriptConnection(input, instrument);
    script(input, instrument);
    std::map<std::uint32_t, ParamList> instrumentWide;
    // The records are in a hash map's iteration order, which is the same in every run of a program.
    instrument.tamper = [&](ParamList* records, unsigned long count) {
      for (unsigned long i = 0; i < count; ++i) {
        const ParamList asked = records[i];
        answer(input, records[i]);
        const bool isKept =
            records[i].Channel == asked.Channel && records[i].ParmID == asked.ParmID;
        if (asked.Channel == 0) {
          instrumentWide[asked.ParmID] = isKept ? records[i] : asked;
        }
      }
    };
    run = runProgram(row.words);
    document = requireOrderly(instrument, run, row.operation, reached);
    if (!document.IsObject() || reached != eReached::eInstrument) {
      return 0;
    }
    if (row.operation == eStatusRead) {
      requireStatus(instrument, document, instrumentWide);
    }
  }
  if (row.operation == eAlarmRead) {
    requireRows(document, 38);
  } else if (row.operation == eSequenceRead) {
    requireRows(document, 20);
    require(requireDownload(eDownload::eSequence, run.out, input), "a report is a valid file");
  } else if (row.operation == eCalibRead) {
    requireRows(document, 400);
    require(requireDownload(eDownload::eCalibration, run.out, input), "a report is a valid file");
  }
  return 0;
}
