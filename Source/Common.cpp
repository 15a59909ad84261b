// Batch transfers, look-ups, JSON in and out, the result object.
#include "Common.h"

#include <InstrumentClient.h>
#include <rapidjson/filereadstream.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

/// The records of a whole map, in the map's own iteration order. Here and below done() ends the
/// loop: begin() of a closed map differs from its end().
std::unique_ptr<ParamList[]> makeRecords(const ParameterMap& aMap) {
  std::unique_ptr<ParamList[]> pList(new ParamList[aMap.current_size()]);
  ParamList* record = pList.get();
  for (ParameterMapConstIter it(aMap); !it.done(); it.advance()) {
    (*it).item()->fill(*record++);
  }
  return pList;
}

bool isAscii(const char* text, std::size_t length) {
  for (std::size_t i = 0; i < length; ++i) {
    if (static_cast<unsigned char>(text[i]) >= 0x80) {
      return false;
    }
  }
  return true;
}

/// Copies the text, replacing each byte that is not part of a UTF-8 sequence by U+FFFD.
void repairUtf8(const char* text, std::size_t length, rapidjson::StringBuffer& repaired) {
  std::size_t position = 0;
  while (position < length) {
    rapidjson::MemoryStream rest(text + position, length - position);
    unsigned codepoint = 0;
    if (rapidjson::UTF8<>::Decode(rest, &codepoint)) {
      rapidjson::UTF8<>::Encode(repaired, codepoint);
      position += rest.Tell();
    } else {
      rapidjson::UTF8<>::Encode(repaired, 0xFFFD);
      ++position;
    }
  }
}

}  // namespace

unsigned int readParams(const ParameterMap& aMap, unsigned long aHandle) {
  const std::unique_ptr<ParamList[]> pList = makeRecords(aMap);
  const unsigned long ulResult = ReadParamList(aHandle, pList.get(), aMap.current_size());
  // Also after a failure: a read that ended early has still delivered some values.
  const ParamList* record = pList.get();
  for (ParameterMapConstIter it(aMap); !it.done(); it.advance()) {
    (*it).item()->update(*record++);
  }
  return static_cast<unsigned int>(ulResult);
}

unsigned int writeParams(const ParameterMap& aMap, unsigned long aHandle) {
  const std::unique_ptr<ParamList[]> pList = makeRecords(aMap);
  return static_cast<unsigned int>(WriteParamList(aHandle, pList.get(), aMap.current_size()));
}

void clearParamMap(const ParameterMap& aMap, bool bclose) {
  for (ParameterMapConstIter it(aMap); !it.done(); it.advance()) {
    delete (*it).item();
  }
  // Anyone with a map may clear it; the reference is const only to say that no value changes.
  auto& map = const_cast<ParameterMap&>(aMap);
  map.unbind_all();
  if (bclose) {
    map.close();
  }
}

Parameter* findParameter(const ParameterMap& aMap, const char* name) {
  // The key borrows the name: a look-up allocates nothing.
  Parameter* parameter = nullptr;
  return aMap.find(ACE_CString(name, nullptr, false), parameter) == 0 ? parameter : nullptr;
}

int getIntValue(const ParameterMap& aMap, const char* name, const int def_val) {
  const Parameter* parameter = findParameter(aMap, name);
  return parameter == nullptr ? def_val : static_cast<int>(parameter->getIntValue());
}

double getRealValue(const ParameterMap& aMap, const char* name, const double def_val) {
  const Parameter* parameter = findParameter(aMap, name);
  return parameter == nullptr ? def_val : parameter->getRealValue();
}

bool isSet(const ParameterMap& aMap, const char* name) {
  return getIntValue(aMap, name, 0) != 0;
}

const Value* findJsonMember(const Value& parent, const char* name) {
  if (!parent.IsObject()) {
    return nullptr;
  }
  const auto member = parent.FindMember(name);
  return member == parent.MemberEnd() ? nullptr : &member->value;
}

int getIntJsonMember(const Value& parent, const char* name, const int def_val) {
  const Value* member = findJsonMember(parent, name);
  return member != nullptr && member->IsInt() ? member->GetInt() : def_val;
}

double getRealJsonMember(const Value& parent, const char* name, const double def_val) {
  const Value* member = findJsonMember(parent, name);
  return member != nullptr && member->IsNumber() ? member->GetDouble() : def_val;
}

bool getBooleanJsonMember(const Value& parent, const char* name, const bool def_val) {
  const Value* member = findJsonMember(parent, name);
  return member != nullptr && member->IsBool() ? member->GetBool() : def_val;
}

ACE_CString getStringJsonMember(const Value& parent, const char* name, const char* def_str) {
  const Value* member = findJsonMember(parent, name);
  return {member != nullptr && member->IsString() ? member->GetString() : def_str};
}

int parseJsonFile(const char* file, Document& aDocument) {
  std::FILE* input = std::fopen(file, "rb");
  if (input == nullptr) {
    return -1;
  }
  char buffer[65536];
  rapidjson::FileReadStream stream(input, buffer, sizeof buffer);
  // Iterative: the file decides how deep the nesting is, and the stack is limited.
  aDocument.ParseStream<rapidjson::kParseIterativeFlag>(stream);
  // The parser takes a zero octet for the end of the file; the stream stops only at the true end.
  const std::size_t end = stream.Tell();
  stream.Take();
  if (stream.Tell() != end) {
    aDocument.SetNull();
  }
  std::fclose(input);
  return 0;
}

void addText(Value& parent, const Value::StringRefType& key, const char* text, AllocatorType& al) {
  const std::size_t length = std::strlen(text);
  Value copy;
  if (isAscii(text, length)) {
    copy.SetString(text, static_cast<rapidjson::SizeType>(length), al);
  } else {
    rapidjson::StringBuffer repaired;
    repairUtf8(text, length, repaired);
    copy.SetString(repaired.GetString(), static_cast<rapidjson::SizeType>(repaired.GetSize()), al);
  }
  parent.AddMember(key, copy, al);
}

void addReal(Value& parent, const Value::StringRefType& key, double value, AllocatorType& al) {
  if (std::isfinite(value)) {
    parent.AddMember(key, value, al);
  } else {
    parent.AddMember(key, "-", al);
  }
}

void printDocument(const Document& aDocument) {
  rapidjson::StringBuffer buffer;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
  aDocument.Accept(writer);
  std::puts(buffer.GetString());
}

void printErroMsg(unsigned int err_code, const char* msg) {
  Document document;
  document.SetObject();
  AllocatorType& al = document.GetAllocator();
  document.AddMember("ErrorCode", err_code, al);
  addText(document, "Msg", msg, al);
  printDocument(document);
}

int printResult(unsigned long ulResult, const char* msg) {
  printErroMsg(static_cast<unsigned int>(ulResult), msg);
  return static_cast<int>(ulResult);
}

int printVerdict(unsigned long ulResult) {
  return printResult(ulResult, ulResult != 0 ? "Refused" : "Accepted");
}
