// tests/failures.json: what the failure matrices of unit and system tests have in common.
#pragma once

#include <rapidjson/document.h>

#include <string>

/// The operations by name: `arguments`, and `file`, the contents of the file that is the last one.
const rapidjson::Value& operationTable();

/// What a report shows at a pointer if the parameter there is unread; JSON null: nothing. Null if
/// the table does not say.
const rapidjson::Value* findUnread(const std::string& aReport, const char* aPointer);
