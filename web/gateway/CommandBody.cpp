// What a command's path and body ask for.
#include "CommandBody.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "Json.h"

namespace {

constexpr CommandRow cCommands[] = {
    {"/api/command/run", "POST", ePurpose::eTool, eBody::eRun, "command-run"},
    {"/api/command/abort", "POST", ePurpose::eTool, eBody::eAbort, "command-abort"},
    {"/api/command/stream", "PUT", ePurpose::eTool, eBody::eStream, "command-stream"},
    {"/api/command/solution", "PUT", ePurpose::eTool, eBody::eSolution, "command-solution"},
    {"/api/command/alarm-reset", "POST", ePurpose::eTool, eBody::eAlarmReset, "command-nothing"},
    {"/api/command/login", "POST", ePurpose::eLogin, eBody::eLogin, "command-nothing"},
    {"/api/command/logout", "POST", ePurpose::eLogout, eBody::eLogout, "command-nothing"},
    {"/api/command/seen", "POST", ePurpose::eSeen, eBody::eSeen, "command-seen"},
    {"/api/command/sequence", "PUT", ePurpose::eTool, eBody::eSequence, "sequence-file"},
    {"/api/command/calibration", "PUT", ePurpose::eTool, eBody::eCalibration, "calibration-file"},
};

/// One form of a body: a member whose value selects the operation, and a member with its number;
/// null if there is none.
struct FormRow {
  eBody body;
  const char* chooser;
  const char* word;
  const char* number;
  eOperation operation;
};

constexpr FormRow cForms[] = {
    {eBody::eRun, "type", "single", "stream", eOperation::eSingleRun},
    {eBody::eRun, "type", "calibration", "stream", eOperation::eCalibrationRun},
    {eBody::eRun, "type", "automation", nullptr, eOperation::eAutomation},
    {eBody::eAbort, "when", "now", nullptr, eOperation::eAbortNow},
    {eBody::eAbort, "when", "after-run", nullptr, eOperation::eAbortAfterRun},
    {eBody::eStream, nullptr, nullptr, "stream", eOperation::eStream},
    {eBody::eSolution, nullptr, nullptr, "solution", eOperation::eSolution},
    {eBody::eAlarmReset, nullptr, nullptr, nullptr, eOperation::eAlarmReset},
    {eBody::eSequence, nullptr, nullptr, nullptr, eOperation::eSequenceFile},
    {eBody::eCalibration, nullptr, nullptr, nullptr, eOperation::eCalibrationFile},
};

/// The form of a body that matches its schema.
const FormRow& formOf(eBody aKind, const rapidjson::Document& aBody) {
  return *std::find_if(std::begin(cForms), std::end(cForms), [&](const FormRow& row) {
    return row.body == aKind && (row.word == nullptr || aBody[row.chooser] == row.word);
  });
}

constexpr char cTooManyMembers[] = "The document has more members than this command takes.";

/// The count finds members that the form does not have, and duplicate members.
std::optional<Answer> readForm(eBody aKind, const rapidjson::Document& aBody, ToolCall& call) {
  const FormRow& form = formOf(aKind, aBody);
  call.operation = form.operation;
  if (takesFile(form.operation)) {
    return std::nullopt;
  }
  if (form.number != nullptr) {
    if (!aBody.HasMember(form.number)) {
      return problem(422, std::string("/") + form.number + " is missing.");
    }
    call.number = aBody[form.number].GetInt();
  }
  const int members = (form.word == nullptr ? 0 : 1) + (form.number == nullptr ? 0 : 1);
  if (static_cast<int>(aBody.MemberCount()) != members) {
    return problem(422, cTooManyMembers);
  }
  return std::nullopt;
}

/// Reads a body that matches its schema.
std::optional<Answer> readMembers(const CommandRow& aRow, const rapidjson::Document& aBody,
                                  Command& command) {
  command.purpose = aRow.purpose;
  if (aRow.purpose == ePurpose::eTool) {
    return readForm(aRow.body, aBody, command.call);
  }
  if (aRow.purpose == ePurpose::eSeen) {
    if (aBody.MemberCount() != 1) {
      return problem(422, cTooManyMembers);
    }
    command.id = aBody["id"].GetString();
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
                                  const Settings& aSettings, Command& command) {
  rapidjson::Document body;
  if (!parseJson(aBody, body)) {
    return problem(400, "The body is not a single JSON document in UTF-8.");
  }
  if (!isShallow(aBody)) {
    return problem(422, "The document is nested more than 100 levels deep.");
  }
  rapidjson::Document schema;
  if (!parseSchemaFile(aSettings.schemas + '/' + aRow.schema + ".schema.json", schema)) {
    return problem(500, std::string("GC_WEB_SCHEMAS has no schema ") + aRow.schema + '.');
  }
  if (const std::optional<std::string> fault = findSchemaFault(aBody, schema)) {
    return problem(422, *fault);
  }
  return readMembers(aRow, body, command);
}
