// What every operation uses: batch transfers, look-ups, JSON in and out, the result object.
#pragma once

#include <rapidjson/document.h>  // IWYU pragma: export

#include <cstddef>

#include "Parameter.h"  // IWYU pragma: export

using Document = rapidjson::Document;
using Value = rapidjson::Value;
using AllocatorType = Document::AllocatorType;

/// Status of a batch read when some of its parameters could not be read. Most reports treat it as
/// success and print what arrived.
constexpr unsigned int cBatchIncomplete = 28;

/// The instrument stores a name as this many parameters, one character each.
constexpr std::size_t cNameLength = 20;

/// A character of a name: the low 8 bits of its parameter.
constexpr char toCharacter(int aValue) {
  return static_cast<char>(aValue & 0xFF);
}

// --- batches: one library call for a whole map of any size, even an empty one ---

/// Reads every parameter of the map. Returns the library's status (0: success). A record that comes
/// back for a parameter other than the one requested leaves that parameter unchanged.
unsigned int readParams(const ParameterMap& aMap, unsigned long aHandle);

/// Writes every parameter of the map. Returns the library's status (0: success).
unsigned int writeParams(const ParameterMap& aMap, unsigned long aHandle);

/// Deletes every parameter of the map and unbinds all names; closes the map when `bclose` is true,
/// after which nothing can be bound into it.
void clearParamMap(const ParameterMap& aMap, bool bclose);

/// Whether a batch read returned something to report: everything, or what could be read.
constexpr bool hasArrived(unsigned int ulResult) {
  return ulResult == 0 || ulResult == cBatchIncomplete;
}

// --- look-ups: the value of a parameter by name, or the default when the name is not bound ---

int getIntValue(const ParameterMap& aMap, const char* name, const int def_val);
double getRealValue(const ParameterMap& aMap, const char* name, const double def_val);

/// Whether the flag is set; false when the name is not bound.
bool isSet(const ParameterMap& aMap, const char* name);

/// The parameter under a name, or null.
Parameter* findParameter(const ParameterMap& aMap, const char* name);

// --- JSON in: a member of an object, or the default when it is missing or of another type, or when
// --- the parent is not an object. An integer is accepted as a real, a real never as an integer.

int getIntJsonMember(const Value& parent, const char* name, const int def_val);
double getRealJsonMember(const Value& parent, const char* name, const double def_val);
bool getBooleanJsonMember(const Value& parent, const char* name, const bool def_val);
ACE_CString getStringJsonMember(const Value& parent, const char* name, const char* def_str);

/// The member, or null when there is none or the parent is not an object.
const Value* findJsonMember(const Value& parent, const char* name);

/// Parses a whole file into a new document. Returns -1 when it cannot be opened, else 0; a file
/// that is not exactly one valid JSON value leaves the document null.
int parseJsonFile(const char* file, Document& aDocument);

// --- JSON out ---

/// Adds a copy of a text. Octets of the instrument's text that are not UTF-8 become U+FFFD, so that
/// the document is always valid JSON.
void addText(Value& parent, const Value::StringRefType& key, const char* text, AllocatorType& al);

/// Adds a real number; a non-finite one, which JSON cannot express, becomes the text "-".
void addReal(Value& parent, const Value::StringRefType& key, double value, AllocatorType& al);

/// Prints a document on standard output, indented, followed by a newline. All operations print
/// through this function.
void printDocument(const Document& aDocument);

/// Prints the result object: {"ErrorCode": err_code, "Msg": msg}. Used for failures and for the
/// verdicts of commands.
void printErroMsg(unsigned int err_code, const char* msg);

/// Prints the result object for a status, and returns the status as the front end expects it.
int printResult(unsigned long ulResult, const char* msg);

/// The same with the usual texts: "Accepted" for status 0, "Refused" for any other.
int printVerdict(unsigned long ulResult);
