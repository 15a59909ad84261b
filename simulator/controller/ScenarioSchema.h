// A scenario's schema, and what it says of a document.
#pragma once

#include <rapidjson/document.h>
#include <rapidjson/schema.h>

#include <string>

namespace simulator {

/// Stands for a JSON pointer to the whole.
constexpr char cWholeDocument[] = "(document)";

/// Preparing it takes longer than a check.
class ScenarioSchema {
 public:
  explicit ScenarioSchema(rapidjson::Document&& aText);

  /// False, with "JSON-POINTER: reason" in `fault`, when a document does not fit the schema.
  bool fits(const rapidjson::Document& aDocument, std::string& fault) const;

 private:
  rapidjson::Document mText;
  rapidjson::SchemaDocument mSchema;
};

}  // namespace simulator
