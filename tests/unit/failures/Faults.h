// What can go wrong with a library call.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "FakeInstrument.h"

/// What happens to the data that a call should fill in.
enum class eFilled {
  eAll,
  eHalf,       ///< every second record of a batch returns unchanged; otherwise as eAll
  eNothing,    ///< the caller's data stays unchanged
  eAllButOne,  ///< one record of a batch returns unchanged
  eSwapped,    ///< one record of a batch is swapped with its partner
  eValue,      ///< one record of a batch gets another real value
};

/// Which calls a fault can hit.
enum class eHits {
  eStatus,      ///< all that return a status
  eFilling,     ///< all that fill in data
  eBatchRead,   ///< batch reads
  eRecord,      ///< batch reads, each record in turn
  eBatch,       ///< batches of at least two records, reads and writes, each record in turn
  eConnection,  ///< all that go over the connection
};

struct FaultRow {
  const char* name;
  eHits hits;
  unsigned long status;  ///< of the affected call
  eFilled filled;
  unsigned long later;  ///< status of all later calls over the connection; 0: no fault
  double value;         ///< for eValue
};

const std::vector<FaultRow>& faults();

/// A function of the libraries, under its name in the log.
struct FunctionRow {
  const char* name;
  eFunction function;  ///< eCount if it returns no status
  bool overConnection;
  bool fills;
};

/// The row for a call; null if there is none.
const FunctionRow* findFunction(const std::string& aCall);

/// One call that goes wrong: call and record count from 0, as in the log.
struct Injury {
  const FaultRow* fault;
  std::size_t call;
  std::size_t record;
};

/// The record to swap with: the next one with the same id on another channel, or else the next one.
std::size_t partnerOf(const std::vector<ParamList>& aRecords, std::size_t aRecord);

/// The answer that one call gets.
struct AnswerGiven {
  unsigned long status = 0;
  eFilled filled = eFilled::eAll;
};

/// The answer to call `aCall` of a run.
AnswerGiven answerTo(const Injury& aInjury, std::size_t aCall, const FunctionRow& aFunction);

/// All ways in which a fault can hit a run with these calls.
std::vector<Injury> injuries(const FaultRow& aFault, const std::vector<Call>& aLog);

/// Makes the instrument answer the next run with the injury.
void inflict(const Injury& aInjury, FakeInstrument& aInstrument);
