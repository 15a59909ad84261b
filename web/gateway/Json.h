// JSON from outside: parsing, checks against schemas, texts of any octets.
#pragma once

#include <rapidjson/document.h>

#include <optional>
#include <string>

// Iterative: the depth of the nesting is the sender's choice, the size of the stack is not.
constexpr unsigned cParseFlags =
    rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;

/// False when the text is not exactly one JSON document in UTF-8. The document may be of any depth:
/// do not walk through it by recursion, as Accept does.
bool parseJson(const std::string& aText, rapidjson::Document& document);

/// Whether no value of a JSON text lies deeper than a hundred levels. Checking against a schema
/// takes time with the square of the depth.
bool isShallow(const std::string& aText);

/// Place and keyword of the first fault of a JSON text, in words; none when it is of the schema.
std::optional<std::string> findSchemaFault(const std::string& aText,
                                           const rapidjson::Document& aSchema);

/// The text with U+FFFD for each octet that belongs to no UTF-8 sequence.
std::string repairUtf8(const std::string& aText);
