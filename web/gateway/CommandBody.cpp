// What a command's path and body ask the tool to do.
#include "CommandBody.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "Json.h"

namespace {

// The ranges are those of the tool's command line.
constexpr char cRunSchema[] = R"({"type": "object", "required": ["type"], "properties": {
  "type": {"type": "string", "enum": ["single", "calibration", "automation"]},
  "stream": {"type": "integer", "minimum": 0, "maximum": 46}}, "additionalProperties": false})";
constexpr char cAbortSchema[] = R"({"type": "object", "required": ["when"], "properties": {
  "when": {"type": "string", "enum": ["now", "after-run"]}}, "additionalProperties": false})";
constexpr char cStreamSchema[] = R"({"type": "object", "required": ["stream"], "properties": {
  "stream": {"type": "integer", "minimum": 0, "maximum": 46}}, "additionalProperties": false})";
constexpr char cSolutionSchema[] = R"({"type": "object", "required": ["solution"], "properties": {
  "solution": {"type": "integer", "minimum": 0, "maximum": 10}}, "additionalProperties": false})";
constexpr char cNothingSchema[] = R"({"type": "object", "additionalProperties": false})";
constexpr char cLoginSchema[] = R"({"type": "object", "additionalProperties": false})";

constexpr CommandRow cCommands[] = {
    {"/api/command/run", "POST", cRunSchema, eOperation::eCount},
    {"/api/command/abort", "POST", cAbortSchema, eOperation::eCount},
    {"/api/command/stream", "PUT", cStreamSchema, eOperation::eCount},
    {"/api/command/solution", "PUT", cSolutionSchema, eOperation::eCount},
    {"/api/command/alarm-reset", "POST", cNothingSchema, eOperation::eCount},
    {"/api/command/login", "POST", cLoginSchema, eOperation::eCount},
    {"/api/command/sequence", "PUT", "sequence-file", eOperation::eSequenceFile},
    {"/api/command/calibration", "PUT", "calibration-file", eOperation::eCalibrationFile},
};

/// One form of a body that is no file: a member whose word chooses the operation, a member with its
/// number; null where there is none.
struct FormRow {
  const char* schema;
  const char* chooser;
  const char* word;
  const char* number;
  eOperation operation;
};

constexpr FormRow cForms[] = {
    {cRunSchema, "type", "single", "stream", eOperation::eSingleRun},
    {cRunSchema, "type", "calibration", "stream", eOperation::eCalibrationRun},
    {cRunSchema, "type", "automation", nullptr, eOperation::eAutomation},
    {cAbortSchema, "when", "now", nullptr, eOperation::eAbortNow},
    {cAbortSchema, "when", "after-run", nullptr, eOperation::eAbortAfterRun},
    {cStreamSchema, nullptr, nullptr, "stream", eOperation::eStream},
    {cSolutionSchema, nullptr, nullptr, "solution", eOperation::eSolution},
    {cNothingSchema, nullptr, nullptr, nullptr, eOperation::eAlarmReset},
    {cLoginSchema, nullptr, nullptr, nullptr, eOperation::eCount},
};

/// The form that a body of this schema has.
const FormRow& formOf(const char* aSchema, const rapidjson::Document& aBody) {
  return *std::find_if(std::begin(cForms), std::end(cForms), [&](const FormRow& row) {
    return row.schema == aSchema && (row.word == nullptr || aBody[row.chooser] == row.word);
  });
}

/// Members that the form does not have, and members told twice, are more than it has.
std::optional<Answer> readForm(const char* aSchema, const rapidjson::Document& aBody,
                               ToolCall& call) {
  const FormRow& form = formOf(aSchema, aBody);
  call.operation = form.operation;
  if (form.number != nullptr) {
    if (!aBody.HasMember(form.number)) {
      return problem(422, std::string("/") + form.number + " is missing.");
    }
    call.number = aBody[form.number].GetInt();
  }
  const int members = (form.word == nullptr ? 0 : 1) + (form.number == nullptr ? 0 : 1);
  if (static_cast<int>(aBody.MemberCount()) != members) {
    return problem(422, "The document has more members than this command takes.");
  }
  return std::nullopt;
}

bool parseSchemaFile(const std::string& aPath, rapidjson::Document& schema) {
  std::ifstream input(aPath, std::ios::binary);
  return parseJson({std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()},
                   schema) &&
         schema.IsObject();
}

}  // namespace

const CommandRow* findCommand(const std::string& aPath) {
  const auto* row = std::find_if(std::begin(cCommands), std::end(cCommands),
                                 [&](const CommandRow& command) { return aPath == command.path; });
  return row == std::end(cCommands) ? nullptr : row;
}

std::optional<Answer> readCommand(const CommandRow& aRow, const std::string& aBody,
                                  const Settings& aSettings, ToolCall& call) {
  rapidjson::Document body;
  if (!parseJson(aBody, body)) {
    return problem(400, "The body is not one JSON document in UTF-8.");
  }
  if (!isShallow(aBody)) {
    return problem(422, "The document is nested more than 100 levels deep.");
  }
  const bool isFile = aRow.file != eOperation::eCount;
  rapidjson::Document schema;
  if (!isFile) {
    schema.Parse(aRow.schema);
  } else if (!parseSchemaFile(aSettings.schemas + '/' + aRow.schema + ".schema.json", schema)) {
    return problem(500, std::string("GC_WEB_SCHEMAS has no schema ") + aRow.schema + '.');
  }
  if (const std::optional<std::string> fault = findSchemaFault(aBody, schema)) {
    return problem(422, *fault);
  }
  if (!isFile) {
    return readForm(aRow.schema, body, call);
  }
  call.operation = aRow.file;
  return std::nullopt;
}
