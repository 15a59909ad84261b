// What every operation uses: batch transfers, look-ups, JSON in and out, the result object.
#pragma once

#include <rapidjson/document.h>  // IWYU pragma: export

#include <cstddef>

#include "Parameter.h"  // IWYU pragma: export

using Document = rapidjson::Document;
using Value = rapidjson::Value;
using AllocatorType = Document::AllocatorType;

/// What a batch read answers when some of its parameters could not be read. Most reports take it
/// for a success and print what arrived.
constexpr unsigned int cBatchIncomplete = 28;

/// The instrument keeps a name as so many parameters, one character each.
constexpr std::size_t cNameLength = 20;

/// A character of a name: the low 8 bits of its parameter.
constexpr char toCharacter(int aValue) {
  return static_cast<char>(aValue & 0xFF);
}

// --- batches: one library call for a whole map, whatever its size, an empty one included ---

/// Reads every parameter of the map. Returns the library's status (0: success). A record that comes
/// back for another parameter than it was sent for leaves that parameter as it was.
unsigned int readParams(const ParameterMap& aMap, unsigned long aHandle);

/// Writes every parameter of the map. Returns the library's status (0: success).
unsigned int writeParams(const ParameterMap& aMap, unsigned long aHandle);

/// Deletes every parameter of the map and unbinds all names; closes the map when `bclose` is true,
/// after which nothing can be bound into it.
void clearParamMap(const ParameterMap& aMap, bool bclose);

/// Whether a batch read brought something to report: all of it, or what could be read.
constexpr bool hasArrived(unsigned int ulResult) {
  return ulResult == 0 || ulResult == cBatchIncomplete;
}

// --- look-ups: the value of a parameter by name, or the default when the name is not bound ---

int getIntValue(const ParameterMap& aMap, const char* name, const int def_val);
double getRealValue(const ParameterMap& aMap, const char* name, const double def_val);

/// Whether the flag is set; not when the name is not bound.
bool isSet(const ParameterMap& aMap, const char* name);

/// The parameter under a name, or null.
Parameter* findParameter(const ParameterMap& aMap, const char* name);

// --- JSON in: a member of an object, or the default when it is missing or of another type, or when
// --- the parent is no object. An integer counts as a real, a real never as an integer.

int getIntJsonMember(const Value& parent, const char* name, const int def_val);
double getRealJsonMember(const Value& parent, const char* name, const double def_val);
bool getBooleanJsonMember(const Value& parent, const char* name, const bool def_val);
ACE_CString getStringJsonMember(const Value& parent, const char* name, const char* def_str);

/// The member, or null when there is none or the parent is no object.
const Value* findJsonMember(const Value& parent, const char* name);

/// Parses a whole file into a new document. Returns -1 when it cannot be opened, else 0; a file
/// that is not exactly one valid JSON value leaves the document as it is, null.
int parseJsonFile(const char* file, Document& aDocument);

// --- JSON out ---

/// Adds a copy of a text. What is not UTF-8 in a text of the instrument becomes U+FFFD, so that the
/// document is valid JSON whatever was stored there.
void addText(Value& parent, const Value::StringRefType& key, const char* text, AllocatorType& al);

/// Adds a real number; one that is not finite has no JSON form and stands as the text "-".
void addReal(Value& parent, const Value::StringRefType& key, double value, AllocatorType& al);

/// Prints a document on standard output, pretty, with a newline behind it. No operation prints in
/// another way.
void printDocument(const Document& aDocument);

/// Prints the result object: {"ErrorCode": err_code, "Msg": msg}. Serves for failures and for the
/// verdicts of commands alike.
void printErroMsg(unsigned int err_code, const char* msg);

/// Prints the result object of a status, and returns the status as the front end takes it.
int printResult(unsigned long ulResult, const char* msg);

/// The same with the usual words: "Accepted" for status 0, "Refused" for any other.
int printVerdict(unsigned long ulResult);
