// Follows a good run call by call, and changes it where the injury and the tables require it.
#include "Expectations.h"

#include <rapidjson/document.h>
#include <rapidjson/pointer.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>
#include <utility>

#include "FailureTable.h"
#include "Rules.h"
#include "SectionBench.h"
#include "ShownValues.h"

namespace {

constexpr std::uint32_t cComponentName = 2021;
constexpr std::uint32_t cFirstOfPeakName = 1176;
constexpr std::uint32_t cLastOfPeakName = 1195;

using Address = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;  // channel, id, step

bool begins(const std::string& aText, const char* aStart) {
  return aText.rfind(aStart, 0) == 0;
}

/// A text from a table, for member `aNumber` of its family.
std::string forMember(const char* aText, unsigned int aNumber) {
  std::string text(aText);
  std::replace(text.begin(), text.end(), '%', static_cast<char>('0' + aNumber));
  std::replace(text.begin(), text.end(), '#', static_cast<char>('0' + aNumber - 1));
  return text;
}

Address addressOf(const ParamList& aRecord) {
  return {aRecord.Channel, aRecord.ParmID, aRecord.Step};
}

Address addressOf(const ShownValue& aRow, unsigned int aNumber) {
  const std::uint32_t offset = aNumber - 1;
  switch (aRow.family) {
    case eFamily::eChannel:
      return {aRow.channel + offset, aRow.id, 0};
    case eFamily::eId:
      return {aRow.channel, aRow.id + offset, 0};
    case eFamily::eStep:
      return {aRow.channel, aRow.id, aNumber};
    case eFamily::eOne:
      break;
  }
  return {aRow.channel, aRow.id, aRow.step};
}

/// A document that is edited member by member.
class Edited {
 public:
  explicit Edited(const std::string& aText) {
    mDocument.Parse<rapidjson::kParseFullPrecisionFlag>(aText.c_str());
  }

  /// Replaces the value at the pointer; JSON null removes it, no value or a pointer to nothing is
  /// an error in the tables.
  void put(const std::string& aPointer, const rapidjson::Value* aValue) {
    const rapidjson::Pointer pointer(aPointer.c_str());
    if (pointer.Get(mDocument) == nullptr || aValue == nullptr) {
      mUndefined += "nothing at " + aPointer + "; ";
    } else if (aValue->IsNull()) {
      pointer.Erase(mDocument);
    } else {
      pointer.Set(mDocument, *aValue);
    }
  }
  /// The same with JSON, or with a pointer to a value of the document.
  void put(const std::string& aPointer, const char* aJson) {
    if (*aJson == '/') {
      put(aPointer, rapidjson::Pointer(aJson).Get(mDocument));
      return;
    }
    rapidjson::Document value;
    value.Parse(aJson);
    put(aPointer, &value);
  }

  std::string text() const {
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    mDocument.Accept(writer);
    return std::string(buffer.GetString()) + "\n";
  }
  const std::string& undefined() const { return mUndefined; }
  /// The text at the pointer; empty if there is none.
  std::string textAt(const std::string& aPointer) const {
    const rapidjson::Value* const text = rapidjson::Pointer(aPointer.c_str()).Get(mDocument);
    return text != nullptr && text->IsString() ? text->GetString() : "";
  }

 private:
  rapidjson::Document mDocument;
  std::string mUndefined;
};

/// What went wrong in a run that still prints a document.
struct Missing {
  std::set<Address> unread;
  std::set<std::string> unfilled;  ///< calls as text
  std::vector<const ShownCall*> shownCalls;
  const ParamList* special = nullptr;  ///< the record with a non-finite value
  double value = 0.0;
  std::pair<std::size_t, std::size_t> letters = {0, 0};  ///< swapped in a component's name

  bool has(std::uint32_t aId, std::uint32_t aStep) const {
    return std::any_of(unread.begin(), unread.end(), [&](const Address& address) {
      return std::get<1>(address) == aId && std::get<2>(address) == aStep;
    });
  }
};

bool isSkipped(const Operation& aOperation, const Missing& aMissing, const std::string& aTraffic) {
  return std::any_of(
      std::begin(cSkippedCalls), std::end(cSkippedCalls), [&](const SkippedCall& row) {
        if (row.operation != aOperation.code || !begins(aTraffic, row.call)) {
          return false;
        }
        if (row.cause != nullptr) {
          return std::any_of(aMissing.unfilled.begin(), aMissing.unfilled.end(),
                             [&](const std::string& call) { return begins(call, row.cause); });
        }
        return aMissing.has(row.id, row.step) &&
               (row.unless == 0 || !aMissing.has(row.unless, row.step));
      });
}

/// Notes what went wrong with a call that has an effect of its own on the document.
void noteCall(const Operation& aOperation, const GoodRun& aGood, std::size_t aCall,
              const AnswerGiven& aAnswer, Missing& missing) {
  const std::string& text = aGood.log[aCall].text;
  const auto same = [&](const Call& call) { return call.text == text; };
  const auto until = aGood.log.begin() + static_cast<std::ptrdiff_t>(aCall) + 1;
  const auto nth = static_cast<unsigned int>(std::count_if(aGood.log.begin(), until, same));
  if (aAnswer.filled == eFilled::eNothing) {
    missing.unfilled.insert(text);
  }
  for (const ShownCall& row : cShownCalls) {
    const bool wrong = (row.wrong == eWrong::eUnfilled && aAnswer.filled == eFilled::eNothing) ||
                       (row.wrong == eWrong::eFailed && aAnswer.status != 0);
    if (row.operation == aOperation.code && begins(text, row.call) && row.nth == nth && wrong) {
      missing.shownCalls.push_back(&row);
    }
  }
}

/// Notes which records of a batch read do not reach the parameters that requested them.
void noteRecords(const std::vector<ParamList>& aRecords, const Injury& aInjury,
                 const AnswerGiven& aAnswer, Missing& missing) {
  for (std::size_t i = 0; i < aRecords.size(); ++i) {
    const bool isSwapped = i == aInjury.record || i == partnerOf(aRecords, aInjury.record);
    if (aAnswer.filled == eFilled::eNothing || (aAnswer.filled == eFilled::eHalf && i % 2 == 1) ||
        (aAnswer.filled == eFilled::eAllButOne && i == aInjury.record) ||
        (aAnswer.filled == eFilled::eSwapped && isSwapped)) {
      missing.unread.insert(addressOf(aRecords[i]));
    }
  }
  if (aAnswer.filled == eFilled::eSwapped && aRecords[0].ParmID == cComponentName) {
    missing.letters = {aInjury.record, partnerOf(aRecords, aInjury.record)};
  }
  if (aAnswer.filled == eFilled::eValue) {
    missing.special = &aRecords[aInjury.record];
    missing.value = aInjury.fault->value;
  }
}

void editValues(const Operation& aOperation, const Missing& aMissing, Edited& document) {
  for (const ShownValue& row : cShownValues) {
    for (unsigned int n = 1; row.operation == aOperation.code && n <= row.members; ++n) {
      const Address address = addressOf(row, n);
      const bool overridden = row.unless != 0 && aMissing.has(row.unless, std::get<2>(address));
      if (aMissing.unread.count(address) != 0 && !overridden) {
        const std::string pointer = forMember(row.pointer, n);
        if (row.unread != nullptr) {
          document.put(pointer, row.unread);
        } else {
          document.put(pointer, findUnread(aOperation.name, row.pointer));
        }
      } else if (row.real && aMissing.special != nullptr &&
                 addressOf(*aMissing.special) == address) {
        document.put(forMember(row.pointer, n), R"("-")");
      }
    }
  }
  for (const SpecialReal& row : cSpecialReals) {
    if (row.operation == aOperation.code && aMissing.special != nullptr &&
        addressOf(*aMissing.special) == Address(row.channel, row.id, 0)) {
      const char* infinite = aMissing.value > 0.0 ? row.positive : row.negative;
      document.put(row.pointer, std::isnan(aMissing.value) ? row.notANumber : infinite);
    }
  }
}

/// A name ends at its first missing character.
void cutNames(const Missing& aMissing, Edited& document) {
  for (const Address& address : aMissing.unread) {
    const auto [channel, id, step] = address;
    if (id < cFirstOfPeakName || id > cLastOfPeakName) {
      continue;
    }
    const std::string pointer = forMember("/rows/#/PkName", step);
    const std::string name = document.textAt(pointer).substr(0, id - cFirstOfPeakName);
    document.put(pointer, ('"' + name + '"').c_str());
  }
}

/// The tool uses a component's letters in the order of arrival, without checking their addresses.
void swapLetters(const Missing& aMissing, Edited& document) {
  constexpr std::size_t cNumber = 3;  // characters before the name
  const char* const pointer = "/rows/1/ParamStr";
  std::string text = document.textAt(pointer);
  std::swap(text.at(cNumber + aMissing.letters.first), text.at(cNumber + aMissing.letters.second));
  document.put(pointer, ('"' + text + '"').c_str());
}

const Rule* findRule(const Operation& aOperation, const std::string& aTraffic) {
  const auto* rule = std::find_if(std::begin(cRules), std::end(cRules), [&](const Rule& row) {
    return (row.operation == cAnyOperation || row.operation == aOperation.code) &&
           begins(aTraffic, row.call);
  });
  return rule == std::end(cRules) ? nullptr : rule;
}

const ConnectionRule* findConnectionRule(const std::string& aCall) {
  const auto* rule =
      std::find_if(std::begin(cConnectionRules), std::end(cConnectionRules),
                   [&](const ConnectionRule& row) { return begins(aCall, row.call); });
  return rule == std::end(cConnectionRules) ? nullptr : rule;
}

bool ends(eEnds aEnds, unsigned long aStatus) {
  return aEnds != eEnds::eNever && aStatus != 0 && (aEnds == eEnds::eNotZero || aStatus != 28);
}

std::string document(const Operation& aOperation, const GoodRun& aGood, const Missing& aMissing,
                     std::string& undefined) {
  Edited edited(aGood.output.out);
  for (const ShownCall* row : aMissing.shownCalls) {
    edited.put(row->pointer, row->shown);
  }
  editValues(aOperation, aMissing, edited);
  if (aOperation.code == eCalibRead) {
    cutNames(aMissing, edited);
  }
  if (aMissing.letters.first != aMissing.letters.second) {
    swapLetters(aMissing, edited);
  }
  undefined += edited.undefined();
  return edited.text();
}

/// The call as made if the connection returned no handle.
std::string withoutHandle(std::string text) {
  const std::string handle = "(handle";
  const std::size_t place = text.find(handle);
  return place == std::string::npos ? text : text.replace(place, handle.size(), "(0");
}

}  // namespace

std::string plainCall(const std::string& aCall) {
  return begins(aCall, "getErrorText(") ? "getErrorText" : aCall;
}

Expectation expectation(const Operation& aOperation, const GoodRun& aGood, const Injury& aInjury) {
  Expectation expected;
  Missing missing;
  bool hasHandle = true;
  const auto call = [&](const std::string& text) {
    expected.calls.push_back(plainCall(hasHandle ? text : withoutHandle(text)));
  };
  for (std::size_t i = 0; i < aGood.log.size(); ++i) {
    const std::string& text = aGood.log[i].text;
    const FunctionRow* const function = findFunction(text);
    if (function == nullptr) {
      expected.undefined = "no function for " + text;
      return expected;
    }
    if (isSkipped(aOperation, missing, aGood.traffic[i])) {
      continue;
    }
    call(text);
    const AnswerGiven answer = answerTo(aInjury, i, *function);
    if (const ConnectionRule* const rule = findConnectionRule(text)) {
      if (answer.status != 0) {
        expected.output = {resultObject(rule->code, rule->message), rule->error};
        call("finishACE()");
        return expected;
      }
      hasHandle = answer.filled != eFilled::eNothing || !function->fills;
      continue;
    }
    const Rule* const rule = findRule(aOperation, aGood.traffic[i]);
    if (rule == nullptr) {
      expected.undefined = "no rule for " + aGood.traffic[i];
      return expected;
    }
    const std::string status = std::to_string(asInt(answer.status));
    expected.output.err += rule->announced ? "writeParam. return " + status + ".\n" : "";
    if (ends(rule->ends, answer.status)) {
      expected.output.out =
          rule->message != nullptr ? resultObject(answer.status, rule->message) : "";
      expected.output.err += "Execute failed " + status + ".\n";
      for (const char* closing : {"BreakConnection(handle)", "shutdownGC()", "finishACE()"}) {
        call(closing);
      }
      return expected;
    }
    noteCall(aOperation, aGood, i, answer, missing);
    if (function->function == eFunction::eReadParamList) {
      noteRecords(aGood.log[i].records, aInjury, answer, missing);
    }
  }
  expected.output.out =
      aGood.output.out.empty() ? "" : document(aOperation, aGood, missing, expected.undefined);
  return expected;
}
