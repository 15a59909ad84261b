// The readers of what a fault is described by: one for each field. False for a value of another
// type or range.
#pragma once

#include <rapidjson/document.h>

#include "Fault.h"

namespace simulator {

bool readCall(const rapidjson::Value& aValue, Fault& fault);
bool readNth(const rapidjson::Value& aValue, Fault& fault);
bool readTimes(const rapidjson::Value& aValue, Fault& fault);
bool readWhen(const rapidjson::Value& aValue, Fault& fault);
bool readSeconds(const rapidjson::Value& aValue, Fault& fault);
bool readStatus(const rapidjson::Value& aValue, Fault& fault);
bool readRecords(const rapidjson::Value& aValue, Fault& fault);
bool readFirst(const rapidjson::Value& aValue, Fault& fault);
bool readSecond(const rapidjson::Value& aValue, Fault& fault);
bool readRealValue(const rapidjson::Value& aValue, Fault& fault);
bool readInteger(const rapidjson::Value& aValue, Fault& fault);
bool readPlainText(const rapidjson::Value& aValue, Fault& fault);
bool readHex(const rapidjson::Value& aValue, Fault& fault);
bool readLength(const rapidjson::Value& aValue, Fault& fault);

}  // namespace simulator
