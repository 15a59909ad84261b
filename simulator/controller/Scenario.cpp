// Scenario files: read, parsed, checked against their schema.
#include "Scenario.h"

#include <JsonText.h>
#include <rapidjson/error/en.h>
#include <rapidjson/pointer.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

#include "model/StoredValues.h"

namespace {

constexpr std::size_t cLargestFile = 1024UL * 1024UL;
constexpr char cWholeDocument[] = "(document)";

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
  const rapidjson::ParseResult result = parseJson(text, document, eEncoding::eChecked);
  if (result.IsError()) {
    const std::string before = text.substr(0, result.Offset());
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    fault =
        whole + "line " + std::to_string(line) + ": " + rapidjson::GetParseError_En(result.Code());
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

/// Stops a document that goes too deep: it is walked through by recursion, and the longer the
/// deeper.
class ShallowValidator : public rapidjson::SchemaValidator {
 public:
  using Base = rapidjson::SchemaValidator;
  using Base::Base;

  bool StartObject() { return enter() && Base::StartObject(); }
  bool StartArray() { return enter() && Base::StartArray(); }
  bool EndObject(rapidjson::SizeType aCount) {
    --mDepth;
    return Base::EndObject(aCount);
  }
  bool EndArray(rapidjson::SizeType aCount) {
    --mDepth;
    return Base::EndArray(aCount);
  }
  bool isTooDeep() const { return mDepth > cDeepest; }

 private:
  bool enter() { return ++mDepth <= cDeepest; }

  int mDepth = 0;
};

std::string textOf(const rapidjson::Pointer& aPointer) {
  rapidjson::StringBuffer text;
  aPointer.Stringify(text);
  return text.GetSize() == 0 ? cWholeDocument : text.GetString();
}

/// What is wrong with a parameter that has a step. The validator only knows that it does not fit
/// the pattern of its name.
std::string reasonOfStep(const rapidjson::Pointer& aPointer, const rapidjson::Value& aValue) {
  const auto& token = aPointer.GetTokens()[aPointer.GetTokenCount() - 1];
  const auto slot = model::findName({token.name, token.length});
  if (!slot || !aValue.IsNumber()) {
    return reasonOf("patternProperties");
  }
  const model::ParameterRow& row = *model::slotAt(*slot).row;
  const double value = aValue.GetDouble();
  return reasonOf(value < row.lowest ? "minimum" : value > row.highest ? "maximum" : "type");
}

bool fitsSchema(const rapidjson::Document& aDocument, const rapidjson::Document& aSchema,
                std::string& fault) {
  const rapidjson::SchemaDocument schema(aSchema);
  ShallowValidator validator(schema);
  if (aDocument.Accept(validator)) {
    return true;
  }
  const rapidjson::Pointer pointer = validator.GetInvalidDocumentPointer();
  if (validator.isTooDeep()) {
    // Nothing that is understood has its place below the first two levels.
    const rapidjson::Pointer place(pointer.GetTokens(),
                                   std::min<std::size_t>(pointer.GetTokenCount(), 2));
    fault = textOf(place) + ": more than " + std::to_string(cDeepest) + " levels deep";
    return false;
  }
  const std::string keyword = validator.GetInvalidSchemaKeyword();
  fault = textOf(pointer) + ": " +
          (keyword == "patternProperties" ? reasonOfStep(pointer, *pointer.Get(aDocument))
                                          : reasonOf(keyword));
  if (keyword == "required") {
    fault +=
        missingMember(*pointer.Get(aDocument), *validator.GetInvalidSchemaPointer().Get(aSchema));
  }
  return false;
}

/// What a snapshot exempts from its bounds. As long as this lives, the document has other values in
/// these places, which are within the bounds.
class Exemption {
 public:
  explicit Exemption(rapidjson::Document& document) {
    const auto* list = rapidjson::Pointer("/snapshot/unchecked").Get(document);
    auto* parameters = rapidjson::Pointer("/parameters").Get(document);
    if (list == nullptr || !list->IsArray() || parameters == nullptr || !parameters->IsObject()) {
      return;
    }
    std::set<std::string> names;
    for (const auto& name : list->GetArray()) {
      names.insert(name.IsString() ? name.GetString() : "");
    }
    for (auto& member : parameters->GetObject()) {
      if (names.count(member.name.GetString()) != 0) {
        exempt(member.name.GetString(), member.value);
      }
    }
  }
  ~Exemption() {
    for (Exchanged& one : mExchanged) {
      *one.place = std::move(one.value);
    }
  }
  Exemption(const Exemption&) = delete;
  Exemption& operator=(const Exemption&) = delete;

  /// Whether each name in the list, which has passed the schema, is that of a parameter.
  bool isComplete(const rapidjson::Document& aDocument, std::string& fault) const {
    const auto* list = rapidjson::Pointer("/snapshot/unchecked").Get(aDocument);
    for (rapidjson::SizeType n = 0; list != nullptr && n < list->Size(); ++n) {
      if (mNames.count((*list)[n].GetString()) == 0) {
        fault = "/snapshot/unchecked/" + std::to_string(n) + ": not one of the parameters";
        return false;
      }
    }
    return true;
  }

 private:
  struct Exchanged {
    rapidjson::Value* place;
    rapidjson::Value value;
  };

  void exempt(const std::string& aName, rapidjson::Value& value) {
    const auto slot = model::findName(aName);
    double real = 0.0;
    if (!slot || !readReal(value, real)) {
      return;
    }
    const model::ParameterRow& row = *model::slotAt(*slot).row;
    const bool isInteger = row.type == model::eType::eInteger;
    if (isInteger && !value.IsInt()) {
      return;
    }
    rapidjson::Value within = isInteger ? rapidjson::Value(static_cast<std::int32_t>(row.lowest))
                                        : rapidjson::Value(row.lowest);
    std::swap(value, within);
    mExchanged.push_back({&value, std::move(within)});
    mNames.insert(aName);
  }

  std::vector<Exchanged> mExchanged;
  std::set<std::string> mNames;
};

/// Whether each line, peak and row that the parameters name is in its table.
bool namesWhatIsThere(const rapidjson::Document& aDocument, std::string& fault) {
  const model::StoredValues stored(aDocument);
  for (const auto& member : aDocument["parameters"].GetObject()) {
    const auto slot = model::findName(member.name.GetString());
    if (!slot || !stored.isThere(*slot)) {
      fault =
          std::string("/parameters/") + member.name.GetString() + ": beyond the end of its table";
      return false;
    }
  }
  return true;
}

bool isFit(rapidjson::Document& document, const rapidjson::Document& aSchema, std::string& fault) {
  {
    const Exemption exemption(document);
    if (!fitsSchema(document, aSchema, fault) || !exemption.isComplete(document, fault)) {
      return false;
    }
  }
  return namesWhatIsThere(document, fault);
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
  if (!readJson(path, document, fault) || !isFit(document, schema, fault)) {
    error = path + ": " + fault;
    return false;
  }
  scenario.name = aNameOrPath;
  scenario.document = std::move(document);
  return true;
}
