// Scenario files: read, parsed, checked against their schema.
#include "Scenario.h"

#include <rapidjson/error/en.h>
#include <rapidjson/pointer.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <fstream>
#include <optional>

namespace {

constexpr std::size_t cLargestFile = 1024UL * 1024UL;
constexpr char cWholeDocument[] = "(document)";
// No recursion, so that a file of a million brackets is refused like any other.
constexpr unsigned cParseFlags =
    rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;

struct KeywordReason {
  const char* keyword;
  const char* reason;
};

// What the keywords of the schema mean to the writer of a scenario.
constexpr KeywordReason cReasons[] = {
    {"additionalProperties", "unknown member"},
    {"enum", "none of the allowed values"},
    {"maximum", "too large"},
    {"maxItems", "too many"},
    {"maxLength", "too long"},
    {"minimum", "too small"},
    {"minItems", "too few"},
    {"anyOf", "none of the allowed forms"},
    {"pattern", "not of the required form"},
    {"patternProperties", "none of the allowed forms"},
    {"not", "unknown member"},  // the schema of what no parameter is
    {"required", "missing member"},
    {"type", "wrong type"},
};

std::string reasonOf(const std::string& aKeyword) {
  const auto* found =
      std::find_if(std::begin(cReasons), std::end(cReasons),
                   [&aKeyword](const KeywordReason& row) { return aKeyword == row.keyword; });
  return found == std::end(cReasons) ? aKeyword : found->reason;
}

std::string pathOf(const std::string& aNameOrPath) {
  const std::string suffix = ".json";
  const bool isName =
      aNameOrPath.find('/') == std::string::npos &&
      (aNameOrPath.size() < suffix.size() ||
       aNameOrPath.compare(aNameOrPath.size() - suffix.size(), suffix.size(), suffix) != 0);
  return isName ? std::string(GC_SCENARIO_DIR "/") + aNameOrPath + suffix : aNameOrPath;
}

/// Fills `fault` with the pointer and reason of what is wrong, and returns false.
bool readJson(const std::string& aPath, rapidjson::Document& document, std::string& fault) {
  const std::string whole = std::string(cWholeDocument) + ": ";
  std::string text(cLargestFile + 1, '\0');
  std::ifstream file(aPath, std::ios::binary);
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  if (!file.is_open() || file.bad()) {
    fault = whole + "cannot be read";
    return false;
  }
  if (text.size() > cLargestFile) {
    fault = whole + "larger than 1 MB";
    return false;
  }
  if (document.Parse<cParseFlags>(text.data(), text.size()).HasParseError()) {
    const std::string before = text.substr(0, document.GetErrorOffset());
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    fault = whole + "line " + std::to_string(line) + ": " +
            rapidjson::GetParseError_En(document.GetParseError());
    return false;
  }
  return true;
}

std::string missingMember(const rapidjson::Value& aObject, const rapidjson::Value& aSchema) {
  for (const auto& name : aSchema["required"].GetArray()) {
    if (!aObject.HasMember(name)) {
      return std::string(" ") + name.GetString();
    }
  }
  return {};
}

bool fitsSchema(const rapidjson::Document& aDocument, const rapidjson::Document& aSchema,
                std::string& fault) {
  const rapidjson::SchemaDocument schema(aSchema);
  rapidjson::SchemaValidator validator(schema);
  if (aDocument.Accept(validator)) {
    return true;
  }
  const rapidjson::Pointer pointer = validator.GetInvalidDocumentPointer();
  const std::string keyword = validator.GetInvalidSchemaKeyword();
  rapidjson::StringBuffer text;
  pointer.Stringify(text);
  fault = std::string(text.GetSize() == 0 ? cWholeDocument : text.GetString()) + ": " +
          reasonOf(keyword);
  if (keyword == "required") {
    fault +=
        missingMember(*pointer.Get(aDocument), *validator.GetInvalidSchemaPointer().Get(aSchema));
  }
  return false;
}

}  // namespace

bool loadScenario(const std::string& aNameOrPath, Scenario& scenario, std::string& error) {
  const std::string schemaPath = GC_SCENARIO_DIR "/scenario.schema.json";
  rapidjson::Document schema;
  std::string fault;
  if (!readJson(schemaPath, schema, fault)) {
    error = schemaPath + ": " + fault;
    return false;
  }
  const std::string path = pathOf(aNameOrPath);
  rapidjson::Document document;
  if (!readJson(path, document, fault) || !fitsSchema(document, schema, fault)) {
    error = path + ": " + fault;
    return false;
  }
  scenario.name = aNameOrPath;
  scenario.document = std::move(document);
  return true;
}
