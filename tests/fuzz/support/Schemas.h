// Checks the tool's documents against their schemas in docs/schemas.
#pragma once

#include <rapidjson/document.h>

#include <string>

/// Requires exactly one JSON value in UTF-8, followed by a newline, without duplicate keys. Returns
/// it.
rapidjson::Document requireJson(const std::string& aText);

/// The same for a document that must match its schema ("status": the file name without
/// ".schema.json"). GC_time only has to be a text: its content comes from the clock.
rapidjson::Document requireDocument(const std::string& aText, const std::string& aSchema);
