// What can go wrong with a library call, and how the scripted instrument does it.
#include "Faults.h"

#include <limits>
#include <utility>

namespace {

constexpr unsigned long cTimedOut = 107;
constexpr unsigned long cLost = 108;

bool isBatchRead(const FunctionRow& aFunction) {
  return aFunction.function == eFunction::eReadParamList;
}

/// How often a fault can hit a call; a fault of a record, once for each record.
std::size_t countHits(const FaultRow& aFault, const FunctionRow& aFunction, const Call& aCall) {
  switch (aFault.hits) {
    case eHits::eStatus:
      return aFunction.function != eFunction::eCount ? 1 : 0;
    case eHits::eFilling:
      return aFunction.fills ? 1 : 0;
    case eHits::eBatchRead:
      return isBatchRead(aFunction) ? 1 : 0;
    case eHits::eRecord:
      return isBatchRead(aFunction) ? aCall.records.size() : 0;
    case eHits::eBatch:
      return aCall.records.size() > 1 ? aCall.records.size() : 0;
    case eHits::eConnection:
      return aFunction.overConnection ? 1 : 0;
  }
  return 0;
}

/// Corrupts the answer to a batch, using the records sent, which are in the log.
void spoil(const Injury& aInjury, const FakeInstrument& aInstrument, ParamList* records,
           unsigned long count) {
  const std::vector<ParamList>& sent = aInstrument.log().back().records;
  switch (aInjury.fault->filled) {
    case eFilled::eHalf:
      for (std::size_t i = 1; i < count; i += 2) {
        records[i] = sent[i];
      }
      break;
    case eFilled::eAllButOne:
      records[aInjury.record] = sent[aInjury.record];
      break;
    case eFilled::eSwapped:
      std::swap(records[aInjury.record], records[partnerOf(sent, aInjury.record)]);
      break;
    case eFilled::eValue:
      records[aInjury.record].realvalue = aInjury.fault->value;
      break;
    case eFilled::eAll:
    case eFilled::eNothing:
      break;
  }
}

}  // namespace

const std::vector<FaultRow>& faults() {
  constexpr double cInfinity = std::numeric_limits<double>::infinity();
  constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();
  static const std::vector<FaultRow> cFaults = {
      {"5", eHits::eStatus, 5, eFilled::eNothing, 0, 0.0},
      {"0xFFFFFF37", eHits::eStatus, 0xFFFFFF37UL, eFilled::eNothing, 0, 0.0},
      {"28", eHits::eStatus, 28, eFilled::eHalf, 0, 0.0},
      {"swapped", eHits::eBatch, 0, eFilled::eSwapped, 0, 0.0},
      {"none", eHits::eBatchRead, 28, eFilled::eNothing, 0, 0.0},
      {"unanswered", eHits::eRecord, 28, eFilled::eAllButOne, 0, 0.0},
      {"NaN", eHits::eRecord, 0, eFilled::eValue, 0, cNaN},
      {"+inf", eHits::eRecord, 0, eFilled::eValue, 0, cInfinity},
      {"-inf", eHits::eRecord, 0, eFilled::eValue, 0, -cInfinity},
      {"before", eHits::eConnection, cLost, eFilled::eNothing, cLost, 0.0},
      {"during", eHits::eConnection, cLost, eFilled::eHalf, cLost, 0.0},
      {"after", eHits::eConnection, 0, eFilled::eAll, cLost, 0.0},
      {"silent", eHits::eConnection, cTimedOut, eFilled::eNothing, cLost, 0.0},
      {"empty", eHits::eFilling, 0, eFilled::eNothing, 0, 0.0},
  };
  return cFaults;
}

const FunctionRow* findFunction(const std::string& aCall) {
  static const FunctionRow cFunctions[] = {
      {"initializeACE", eFunction::eCount, false, false},
      {"startupGC", eFunction::eStartupGC, false, false},
      {"EstablishConnection", eFunction::eEstablishConnection, true, true},
      {"ReadParamList", eFunction::eReadParamList, true, true},
      {"WriteParamList", eFunction::eWriteParamList, true, false},
      {"ExecuteCommand", eFunction::eExecuteCommand, true, false},
      {"ReadObject", eFunction::eReadObject, true, true},
      {"ReadProgramInfo", eFunction::eReadProgramInfo, true, true},
      {"plxGetTime", eFunction::eGetTime, false, true},
      {"getErrorText", eFunction::eCount, false, true},
      {"registerObject", eFunction::eCount, false, false},
      {"~SiteInfoTag", eFunction::eCount, false, false},
      {"~ColumnDescriptions", eFunction::eCount, false, false},
      {"BreakConnection", eFunction::eBreakConnection, true, false},
      {"shutdownGC", eFunction::eShutdownGC, false, false},
      {"finishACE", eFunction::eCount, false, false},
  };
  for (const FunctionRow& row : cFunctions) {
    if (aCall.substr(0, aCall.find('(')) == row.name) {
      return &row;
    }
  }
  return nullptr;
}

std::size_t partnerOf(const std::vector<ParamList>& aRecords, std::size_t aRecord) {
  for (std::size_t i = aRecord + 1; i < aRecords.size(); ++i) {
    if (aRecords[i].ParmID == aRecords[aRecord].ParmID) {
      return i;
    }
  }
  return (aRecord + 1) % aRecords.size();
}

AnswerGiven answerTo(const Injury& aInjury, std::size_t aCall, const FunctionRow& aFunction) {
  AnswerGiven answer;
  if (aCall == aInjury.call) {
    answer = {aInjury.fault->status, aInjury.fault->filled};
  } else if (aCall > aInjury.call && aInjury.fault->later != 0 && aFunction.overConnection) {
    answer = {aInjury.fault->later, eFilled::eNothing};
  }
  return answer;
}

std::vector<Injury> injuries(const FaultRow& aFault, const std::vector<Call>& aLog) {
  std::vector<Injury> all;
  for (std::size_t call = 0; call < aLog.size(); ++call) {
    const FunctionRow* function = findFunction(aLog[call].text);
    const std::size_t count = function == nullptr ? 0 : countHits(aFault, *function, aLog[call]);
    for (std::size_t record = 0; record < count; ++record) {
      all.push_back({&aFault, call, record});
    }
  }
  return all;
}

void inflict(const Injury& aInjury, FakeInstrument& aInstrument) {
  aInstrument.atCall = [aInjury, &aInstrument](const std::string& text) {
    const std::size_t call = aInstrument.log().size() - 1;
    const FunctionRow* function = findFunction(text);
    if (function == nullptr) {
      return;  // the expectations say so
    }
    const AnswerGiven answer = answerTo(aInjury, call, *function);
    aInstrument.setStatus(function->function, answer.status);
    aInstrument.silent = answer.filled == eFilled::eNothing;
    aInstrument.tamper = nullptr;
    if (call == aInjury.call) {
      aInstrument.tamper = [aInjury, &aInstrument](ParamList* records, unsigned long count) {
        spoil(aInjury, aInstrument, records, count);
      };
    }
  };
}
