// Untrusted JSON: parsing, checks against schemas, texts of any octets.
#include "Json.h"

#include <rapidjson/memorystream.h>
#include <rapidjson/pointer.h>
#include <rapidjson/reader.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

#include <cstddef>

namespace gateway {

namespace {

std::string textOf(const rapidjson::Pointer& aPointer) {
  rapidjson::StringBuffer text;
  aPointer.Stringify(text);
  return text.GetString();
}

/// Stops a reader at nesting that is too deep.
class DepthGuard : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, DepthGuard> {
 public:
  bool StartObject() { return ++mDepth <= cDeepest; }
  bool StartArray() { return ++mDepth <= cDeepest; }
  bool EndObject(rapidjson::SizeType) { return --mDepth >= 0; }
  bool EndArray(rapidjson::SizeType) { return --mDepth >= 0; }

 private:
  static constexpr int cDeepest = 100;
  int mDepth = 0;
};

/// The first required member that the invalid object lacks.
std::string missingMember(const rapidjson::Value& aObject, const rapidjson::Value& aRequired) {
  for (const auto& name : aRequired.GetArray()) {
    if (!aObject.HasMember(name)) {
      return std::string(" ") + name.GetString();
    }
  }
  return {};
}

}  // namespace

bool parseJson(const std::string& aText, rapidjson::Document& document) {
  // The parser would take a zero octet for the end of the text.
  rapidjson::MemoryStream stream(aText.data(), aText.size());
  return aText.find('\0') == std::string::npos &&
         !document.ParseStream<cParseFlags>(stream).HasParseError();
}

bool isShallow(const std::string& aText) {
  DepthGuard guard;
  rapidjson::Reader reader;
  rapidjson::MemoryStream stream(aText.data(), aText.size());
  return !reader.Parse<cParseFlags>(stream, guard).IsError();
}

std::optional<std::string> findSchemaFault(const std::string& aText,
                                           const rapidjson::Document& aSchema) {
  const rapidjson::SchemaDocument schema(aSchema);
  rapidjson::SchemaValidator validator(schema);
  // Straight from the reader: traversing a document would use recursion.
  rapidjson::Reader reader;
  rapidjson::MemoryStream stream(aText.data(), aText.size());
  reader.Parse<cParseFlags>(stream, validator);
  if (validator.IsValid()) {
    return std::nullopt;
  }
  const rapidjson::Pointer pointer = validator.GetInvalidDocumentPointer();
  const std::string keyword = validator.GetInvalidSchemaKeyword();
  const std::string place = textOf(pointer);
  std::string missing;
  rapidjson::Document document;
  if (keyword == "required" && parseJson(aText, document)) {
    missing = missingMember(*pointer.Get(document),
                            (*validator.GetInvalidSchemaPointer().Get(aSchema))["required"]);
  }
  return (place.empty() ? "The document" : place) + " does not match its schema: " + keyword +
         missing + '.';
}

std::string repairUtf8(const std::string& aText) {
  std::string repaired;
  std::size_t position = 0;
  while (position < aText.size()) {
    rapidjson::MemoryStream rest(aText.data() + position, aText.size() - position);
    unsigned codepoint = 0;
    if (rapidjson::UTF8<>::Decode(rest, &codepoint)) {
      repaired.append(aText, position, rest.Tell());
      position += rest.Tell();
    } else {
      repaired += "\xEF\xBF\xBD";
      ++position;
    }
  }
  return repaired;
}

}  // namespace gateway
