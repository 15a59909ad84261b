// Untrusted JSON: parsing, checks against schemas, texts of any octets.
#pragma once

#include <rapidjson/document.h>

#include <optional>
#include <string>

namespace gateway {

// Iterative: the sender decides how deep the nesting is, and the stack is limited.
constexpr unsigned cParseFlags =
    rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;

/// False if the text is not exactly one JSON document in UTF-8. The document may be of any depth:
/// do not traverse it recursively, as Accept does.
bool parseJson(const std::string& aText, rapidjson::Document& document);

/// Whether no value of a JSON text is nested more than a hundred levels deep. Validation takes time
/// proportional to the square of the depth.
bool isShallow(const std::string& aText);

/// Location and keyword of the first schema violation, as a sentence; none if the text is valid.
std::optional<std::string> findSchemaFault(const std::string& aText,
                                           const rapidjson::Document& aSchema);

/// The text with each octet that is not part of a UTF-8 sequence replaced by U+FFFD.
std::string repairUtf8(const std::string& aText);

}  // namespace gateway
