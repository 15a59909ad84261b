// What the body of a command asks for.
#include "CommandBody.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "Json.h"

namespace gateway {

namespace {

constexpr char cTooManyMembers[] = "The document has more members than this command takes.";

/// One form of a body that is for the tool.
struct FormRow {
  eCommand command;
  const char* chooser;  ///< member that selects the form by its value; null if there is one form
  const char* word;     ///< that value
  const char* number;   ///< member with the operation's number; null if it has none
  eOperation operation;
};

constexpr FormRow cForms[] = {
    {eCommand::eRun, "type", "single", "stream", eOperation::eSingleRun},
    {eCommand::eRun, "type", "calibration", "stream", eOperation::eCalibrationRun},
    {eCommand::eRun, "type", "automation", nullptr, eOperation::eAutomation},
    {eCommand::eAbort, "when", "now", nullptr, eOperation::eAbortNow},
    {eCommand::eAbort, "when", "after-run", nullptr, eOperation::eAbortAfterRun},
    {eCommand::eStream, nullptr, nullptr, "stream", eOperation::eStream},
    {eCommand::eSolution, nullptr, nullptr, "solution", eOperation::eSolution},
    {eCommand::eAlarmReset, nullptr, nullptr, nullptr, eOperation::eAlarmReset},
    {eCommand::eSequence, nullptr, nullptr, nullptr, eOperation::eSequenceFile},
    {eCommand::eCalibration, nullptr, nullptr, nullptr, eOperation::eCalibrationFile},
};

/// The form of a body that matches its schema; null if the command is not for the tool.
const FormRow* findForm(eCommand aCommand, const rapidjson::Document& aBody) {
  const auto* found = std::find_if(std::begin(cForms), std::end(cForms), [&](const FormRow& row) {
    return row.command == aCommand && (row.chooser == nullptr || aBody[row.chooser] == row.word);
  });
  return found == std::end(cForms) ? nullptr : found;
}

/// The member count finds members that the form does not have, and duplicate members.
std::optional<Answer> readForm(const FormRow& aForm, const rapidjson::Document& aBody,
                               ToolCall& call) {
  call.operation = aForm.operation;
  if (takesFile(aForm.operation)) {
    return std::nullopt;
  }
  if (aForm.number != nullptr) {
    if (!aBody.HasMember(aForm.number)) {
      return problem(422, std::string("/") + aForm.number + " is missing.");
    }
    call.number = aBody[aForm.number].GetInt();
  }
  const int members = (aForm.chooser == nullptr ? 0 : 1) + (aForm.number == nullptr ? 0 : 1);
  if (static_cast<int>(aBody.MemberCount()) != members) {
    return problem(422, cTooManyMembers);
  }
  return std::nullopt;
}

/// Reads a body that matches its schema.
std::optional<Answer> readMembers(eCommand aCommand, const rapidjson::Document& aBody,
                                  Command& command) {
  command.command = aCommand;
  if (const FormRow* form = findForm(aCommand, aBody)) {
    return readForm(*form, aBody, command.call.emplace());
  }
  if (aCommand == eCommand::eSeen) {
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
  return readMembers(aRow.command, body, command);
}

}  // namespace gateway
