// A scenario's schema, and what it says of a document.
#pragma once

#include <rapidjson/document.h>

#include <string>

namespace simulator {

/// Stands for a JSON pointer to the whole.
constexpr char cWholeDocument[] = "(document)";

/// False, with "JSON-POINTER: reason" in `fault`, when a document does not fit the schema.
bool fitsSchema(const rapidjson::Document& aDocument, const rapidjson::Document& aSchema,
                std::string& fault);

}  // namespace simulator
