// Schemas are read once. rapidjson's validator is reliable for the keywords used here: no
// patternProperties, and enum only together with type.
#include "Schemas.h"

#include <rapidjson/error/en.h>
#include <rapidjson/pointer.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>

#include "Require.h"

namespace {

using rapidjson::Document;
using rapidjson::SchemaDocument;
using rapidjson::Value;

std::unique_ptr<SchemaDocument> readSchema(const std::string& aName) {
  std::ifstream file(GC_SCHEMA_DIR "/" + aName + ".schema.json");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  Document schema;
  require(!schema.Parse(text.data(), text.size()).HasParseError(), "a schema is JSON", aName);
  if (Value* clock = rapidjson::Pointer("/properties/GC_time").Get(schema)) {
    require(clock->RemoveMember("pattern"), "the time of day has a pattern", aName);
  }
  return std::make_unique<SchemaDocument>(schema);
}

const SchemaDocument& schemaOf(const std::string& aName) {
  static std::map<std::string, std::unique_ptr<SchemaDocument>> schemas;
  std::unique_ptr<SchemaDocument>& schema = schemas[aName];
  if (schema == nullptr) {
    schema = readSchema(aName);
  }
  return *schema;
}

void requireKeysOnce(const Value& aValue, const std::string& aText) {
  if (aValue.IsArray()) {
    for (const Value& element : aValue.GetArray()) {
      requireKeysOnce(element, aText);
    }
  } else if (aValue.IsObject()) {
    std::set<std::string> keys;
    for (const auto& member : aValue.GetObject()) {
      require(keys.insert(member.name.GetString()).second, "a key stands once", aText);
      requireKeysOnce(member.value, aText);
    }
  }
}

}  // namespace

Document requireJson(const std::string& aText) {
  // With full precision: the default parser rejects the largest reals.
  constexpr unsigned cFlags =
      rapidjson::kParseValidateEncodingFlag | rapidjson::kParseFullPrecisionFlag;
  Document document;
  document.Parse<cFlags>(aText.data(), aText.size());
  require(!document.HasParseError(), "the output is one JSON value", aText);
  require(aText.find('\0') == std::string::npos, "the output has no zero octet", aText);
  require(aText.size() > 2 && aText.substr(aText.size() - 2) == "}\n",
          "the output is an object and a newline", aText);
  requireKeysOnce(document, aText);
  return document;
}

Document requireDocument(const std::string& aText, const std::string& aSchema) {
  Document document = requireJson(aText);
  rapidjson::SchemaValidator validator(schemaOf(aSchema));
  if (!document.Accept(validator)) {
    rapidjson::StringBuffer place;
    validator.GetInvalidDocumentPointer().Stringify(place);
    require(false, "the document matches its schema",
            aText + "at " + place.GetString() + ": " + validator.GetInvalidSchemaKeyword());
  }
  return document;
}
