// The kinds of fault: which calls each hits, and the fields that it is described by.
#pragma once

#include <rapidjson/document.h>

#include <string>

#include "Fault.h"

namespace simulator {

struct FaultKind;

/// The kind of the fault that an object describes. Null, with JSON pointer and reason in `error`,
/// when it describes none.
const FaultKind* findKind(const rapidjson::Value& aFault, std::string& error);

/// Makes a fault of a kind from the object that describes it. False, with JSON pointer and reason
/// in `error`, when the fields are not those of the kind.
bool readFault(const FaultKind& aKind, const rapidjson::Value& aFault, Fault& fault,
               std::string& error);

}  // namespace simulator
