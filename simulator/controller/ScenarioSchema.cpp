// The schema's keywords in words.
#include "ScenarioSchema.h"

#include <JsonText.h>
#include <rapidjson/pointer.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "model/Parameters.h"

namespace simulator {

namespace {

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

}  // namespace

ScenarioSchema::ScenarioSchema(rapidjson::Document&& aText)
    : mText(std::move(aText)), mSchema(mText) {}

bool ScenarioSchema::fits(const rapidjson::Document& aDocument, std::string& fault) const {
  ShallowValidator validator(mSchema);
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
        missingMember(*pointer.Get(aDocument), *validator.GetInvalidSchemaPointer().Get(mText));
  }
  return false;
}

}  // namespace simulator
