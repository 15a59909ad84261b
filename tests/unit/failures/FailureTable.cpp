// Reads the table once.
#include "FailureTable.h"

#include <rapidjson/istreamwrapper.h>

#include <fstream>

namespace {

const rapidjson::Value& part(const char* aName) {
  static const rapidjson::Document cTable = [] {
    std::ifstream file(GC_FAILURE_TABLE);
    rapidjson::IStreamWrapper stream(file);
    rapidjson::Document table;
    table.ParseStream(stream);
    return table;
  }();
  return cTable[aName];
}

}  // namespace

const rapidjson::Value& operationTable() {
  return part("operations");
}

const rapidjson::Value* findUnread(const std::string& aReport, const char* aPointer) {
  const rapidjson::Value& reports = part("unread");
  const auto report = reports.FindMember(aReport.c_str());
  if (report == reports.MemberEnd()) {
    return nullptr;
  }
  const auto value = report->value.FindMember(aPointer);
  return value == report->value.MemberEnd() ? nullptr : &value->value;
}
