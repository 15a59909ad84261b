// The documents of the tool, held against their schemas in docs/schemas.
#pragma once

#include <rapidjson/document.h>

#include <string>

/// Requires exactly one JSON value, in UTF-8, and a newline behind it; no key twice. Returns it.
rapidjson::Document requireJson(const std::string& aText);

/// The same, of a document that fits its schema ("status"; the name of the file without
/// ".schema.json"). GC_time is only required to be a text: what it holds is the clock's word.
rapidjson::Document requireDocument(const std::string& aText, const std::string& aSchema);
