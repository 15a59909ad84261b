// Scenario files: read, parsed, checked against their schema.
#include "Scenario.h"

#include <JsonText.h>
#include <rapidjson/error/en.h>
#include <rapidjson/pointer.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include "ScenarioSchema.h"
#include "model/StoredValues.h"

namespace simulator {

namespace {

constexpr std::size_t cLargestFile = 1024UL * 1024UL;

/// Path of a shipped file. Programs are in bin/ beside it, in the build folder and wherever they
/// are installed.
std::string shipped(const std::string& aFile) {
  std::error_code none;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", none);
  return program.parent_path().parent_path() / GC_SCENARIO_DIR / aFile;
}

std::string pathOf(const std::string& aNameOrPath) {
  const std::string suffix = ".json";
  const bool isName =
      aNameOrPath.find('/') == std::string::npos &&
      (aNameOrPath.size() < suffix.size() ||
       aNameOrPath.compare(aNameOrPath.size() - suffix.size(), suffix.size(), suffix) != 0);
  return isName ? shipped(aNameOrPath + suffix) : aNameOrPath;
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

/// The shipped schema, which is read once. Null, with the reason, if it cannot be read.
const ScenarioSchema* schemaOfScenarios(std::string& error) {
  static std::unique_ptr<const ScenarioSchema> sSchema;
  if (!sSchema) {
    const std::string path = shipped("scenario.schema.json");
    rapidjson::Document text;
    if (!readJson(path, text, error)) {
      error = path + ": " + error;
      return nullptr;
    }
    sSchema = std::make_unique<ScenarioSchema>(std::move(text));
  }
  return sSchema.get();
}

bool isFit(rapidjson::Document& document, const ScenarioSchema& aSchema, std::string& fault) {
  {
    const Exemption exemption(document);
    if (!aSchema.fits(document, fault) || !exemption.isComplete(document, fault)) {
      return false;
    }
  }
  return namesWhatIsThere(document, fault);
}

}  // namespace

bool loadScenario(const std::string& aNameOrPath, Scenario& scenario, std::string& error) {
  const ScenarioSchema* schema = schemaOfScenarios(error);
  if (schema == nullptr) {
    return false;
  }
  std::string fault;
  const std::string path = pathOf(aNameOrPath);
  rapidjson::Document document;
  if (!readJson(path, document, fault) || !isFit(document, *schema, fault)) {
    error = path + ": " + fault;
    return false;
  }
  scenario.name = aNameOrPath;
  scenario.document = std::move(document);
  return true;
}

}  // namespace simulator
