// What can go wrong with one call of the libraries.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "FakeInstrument.h"

/// What becomes of that which a call is to fill in.
enum class eFilled {
  eAll,
  eHalf,       ///< of a batch every second record comes back as it was sent; else as eAll
  eNothing,    ///< what the caller handed over stays as it was
  eAllButOne,  ///< one record of a batch comes back as it was sent
  eSwapped,    ///< one record of a batch changes places with its partner
  eValue,      ///< one record of a batch has another real value
};

/// Which calls a fault can hit.
enum class eHits {
  eStatus,      ///< all that answer with a status
  eFilling,     ///< all that fill something in
  eBatchRead,   ///< batch reads
  eRecord,      ///< batch reads, each record in its turn
  eBatch,       ///< batches of two records or more, both ways, each record in its turn
  eConnection,  ///< all that go over the connection
};

struct FaultRow {
  const char* name;
  eHits hits;
  unsigned long status;  ///< of the call that is hit
  eFilled filled;
  unsigned long later;  ///< status of every later call over the connection; 0: nothing amiss
  double value;         ///< of eValue
};

const std::vector<FaultRow>& faults();

/// A function of the libraries, as the log names it.
struct FunctionRow {
  const char* name;
  eFunction function;  ///< eCount where it answers without a status
  bool overConnection;
  bool fills;
};

/// The row of a call; null when there is none.
const FunctionRow* findFunction(const std::string& aCall);

/// One call that goes wrong: call and record count from 0, as the log has them.
struct Injury {
  const FaultRow* fault;
  std::size_t call;
  std::size_t record;
};

/// The record with which one changes places: the next of the same id, on another channel; where
/// there is none, the next one.
std::size_t partnerOf(const std::vector<ParamList>& aRecords, std::size_t aRecord);

/// What the caller is answered in one call.
struct AnswerGiven {
  unsigned long status = 0;
  eFilled filled = eFilled::eAll;
};

/// What call `aCall` of a run is answered.
AnswerGiven answerTo(const Injury& aInjury, std::size_t aCall, const FunctionRow& aFunction);

/// All ways in which a fault can hit a run that made these calls.
std::vector<Injury> injuries(const FaultRow& aFault, const std::vector<Call>& aLog);

/// Makes the instrument answer the next run with the injury.
void inflict(const Injury& aInjury, FakeInstrument& aInstrument);
