// Each verb is a row: its name, and the function that does it.
#include "Control.h"

#include <Status.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace simulator {

using rapidjson::Value;

namespace {

/// Does the verb and writes the members of its answer; or returns why not, with nothing written.
using Verb = std::string (*)(Simulation&, const Value& aRequest, JsonWriter& writer);

constexpr char cDone[] = "";

const Value* findMember(const Value& aObject, const char* aName) {
  const auto member = aObject.FindMember(aName);
  return member == aObject.MemberEnd() ? nullptr : &member->value;
}

/// Reads a member with one of the readers of JsonText.h; false when it is missing, too.
template <class Type>
bool readMember(const Value& aObject, const char* aName, bool (*aReader)(const Value&, Type&),
                Type& value) {
  const Value* member = findMember(aObject, aName);
  return member != nullptr && aReader(*member, value);
}

bool isSet(const Value& aObject, const char* aName) {
  const Value* member = findMember(aObject, aName);
  return member != nullptr && member->IsTrue();
}

void writeTime(const Simulation& aSimulation, JsonWriter& writer) {
  writer.Key("time");
  writeReal(writer, aSimulation.clock.now());
  writer.Key("speed");
  writeReal(writer, aSimulation.clock.speed());
  writer.Key("paused");
  writer.Bool(aSimulation.clock.isPaused());
}

std::string showStatus(Simulation& simulation, const Value& /*aRequest*/, JsonWriter& writer) {
  writeTime(simulation, writer);
  writer.Key("scenario");
  writeText(writer, simulation.scenario.name);
  writer.Key("seed");
  writer.Uint(simulation.seed);
  writer.Key("connections");
  writer.Uint(simulation.clients);
  writer.Key("calls");
  writer.Uint64(simulation.calls);
  return cDone;
}

std::string setText(Simulation& simulation, const Value& aRequest) {
  std::uint32_t number = 0;
  std::string text;
  if (!readMember(aRequest, "number", &readUnsigned, number) ||
      !readMember(aRequest, "text", &readText, text)) {
    return "the number of a text, and the text, expected";
  }
  if (text.size() > wire::cMaxText) {
    return "the text is too long";
  }
  return simulation.instrument->setText(number, text) ? cDone : "there is no such text";
}

std::string set(Simulation& simulation, const Value& aRequest, JsonWriter& /*writer*/) {
  if (findMember(aRequest, "text") != nullptr) {
    return setText(simulation, aRequest);
  }
  std::string name;
  double value = 0.0;
  if (!readMember(aRequest, "name", &readText, name) ||
      !readMember(aRequest, "value", &readReal, value)) {
    return "the name of a parameter, and a number, expected";
  }
  return simulation.instrument->set(simulation.clock.now(), name, value)
             ? cDone
             : "there is no parameter " + name;
}

std::string command(Simulation& simulation, const Value& aRequest, JsonWriter& /*writer*/) {
  std::uint32_t number = 0;
  std::uint32_t channel = 0;
  if (!readMember(aRequest, "number", &readUnsigned, number) ||
      (findMember(aRequest, "channel") != nullptr &&
       !readMember(aRequest, "channel", &readUnsigned, channel))) {
    return "the number of a command, and of a channel when there is one, expected";
  }
  const std::uint32_t status =
      simulation.instrument->command(simulation.clock.now(), channel, number);
  return status == eSuccess ? cDone
                            : "the instrument refuses with status " + std::to_string(status);
}

std::string fault(Simulation& simulation, const Value& aRequest, JsonWriter& writer) {
  if (isSet(aRequest, "clear")) {
    simulation.faults.clear();
  } else if (isSet(aRequest, "list")) {
    writer.Key("faults");
    simulation.faults.describe(writer);
  } else {
    const Value* description = findMember(aRequest, "fault");
    std::string error;
    if (description == nullptr) {
      return "a fault expected";
    }
    if (!simulation.faults.add(*description, error)) {
      return "fault" + error;
    }
  }
  return cDone;
}

std::string changeSpeed(Simulation& simulation, const Value& aRequest, JsonWriter& writer) {
  double speed = 0.0;
  if (!readMember(aRequest, "speed", &readReal, speed) || !simulation.clock.setSpeed(speed)) {
    return "a speed over 0, at most 1000000, expected";
  }
  writeTime(simulation, writer);
  return cDone;
}

std::string pause(Simulation& simulation, const Value& /*aRequest*/, JsonWriter& writer) {
  simulation.clock.pause();
  writeTime(simulation, writer);
  return cDone;
}

std::string resume(Simulation& simulation, const Value& /*aRequest*/, JsonWriter& writer) {
  simulation.clock.resume();
  writeTime(simulation, writer);
  return cDone;
}

std::string step(Simulation& simulation, const Value& aRequest, JsonWriter& writer) {
  double seconds = 0.0;
  if (!readMember(aRequest, "seconds", &readReal, seconds) || !simulation.clock.step(seconds)) {
    return "seconds from 0 to 31622400 expected";
  }
  writeTime(simulation, writer);
  return cDone;
}

std::string load(Simulation& simulation, const Value& aRequest, JsonWriter& writer) {
  std::string scenario;
  std::string error;
  if (!readMember(aRequest, "scenario", &readText, scenario)) {
    return "the name or the file of a scenario expected";
  }
  if (!simulation.load(scenario, error)) {
    return error;
  }
  return showStatus(simulation, aRequest, writer);
}

std::string snapshot(Simulation& simulation, const Value& /*aRequest*/, JsonWriter& writer) {
  rapidjson::Document document;
  const double now = simulation.clock.now();
  simulation.instrument->snapshot(now, document);
  writer.Key("time");
  writeReal(writer, now);
  for (const auto& member : document.GetObject()) {
    member.name.Accept(writer);
    member.value.Accept(writer);
  }
  return cDone;
}

std::string showJournal(Simulation& simulation, const Value& aRequest, JsonWriter& writer) {
  std::uint32_t count = Journal::cMaxLines;
  if (findMember(aRequest, "count") != nullptr &&
      !readMember(aRequest, "count", &readUnsigned, count)) {
    return "a number of lines expected";
  }
  const auto& lines = simulation.journal.lines();
  const auto shown = std::min<std::size_t>(count, lines.size());
  writer.Key("lines");
  writer.StartArray();
  for (auto line = lines.end() - static_cast<std::ptrdiff_t>(shown); line != lines.end(); ++line) {
    writer.RawValue(line->data(), line->size(), rapidjson::kObjectType);
  }
  writer.EndArray();
  return cDone;
}

struct VerbRow {
  const char* name;
  Verb verb;
};

constexpr VerbRow cVerbs[] = {
    {"status", &showStatus}, {"set", &set},           {"command", &command},     {"fault", &fault},
    {"speed", &changeSpeed}, {"pause", &pause},       {"resume", &resume},       {"step", &step},
    {"load", &load},         {"snapshot", &snapshot}, {"journal", &showJournal},
};

Verb findVerb(const Value& aRequest) {
  const Value* name = aRequest.IsObject() ? findMember(aRequest, "verb") : nullptr;
  const auto* row = std::find_if(std::begin(cVerbs), std::end(cVerbs), [name](const VerbRow& aRow) {
    return name != nullptr && *name == aRow.name;
  });
  return row == std::end(cVerbs) ? nullptr : row->verb;
}

}  // namespace

std::string answerControl(Simulation& simulation, const std::string& aRequest) {
  rapidjson::Document request;
  if (parseJson(aRequest, request).IsError()) {
    return refuseControl("a JSON object in one line expected");
  }
  if (!isShallow(aRequest)) {
    return refuseControl("the request is more than " + std::to_string(cDeepest) + " levels deep");
  }
  const Verb verb = findVerb(request);
  if (verb == nullptr) {
    return refuseControl("a verb expected");
  }
  rapidjson::StringBuffer buffer;
  JsonWriter writer(buffer);
  writer.StartObject();
  writer.Key("ok");
  writer.Bool(true);
  const std::string refusal = verb(simulation, request, writer);
  if (!refusal.empty()) {
    return refuseControl(refusal);
  }
  writer.EndObject();
  return toUtf8(std::string(buffer.GetString(), buffer.GetSize()));
}

std::string refuseControl(const std::string& aReason) {
  rapidjson::StringBuffer buffer;
  JsonWriter writer(buffer);
  writer.StartObject();
  writer.Key("ok");
  writer.Bool(false);
  writer.Key("error");
  writeText(writer, aReason);
  writer.EndObject();
  return toUtf8(std::string(buffer.GetString(), buffer.GetSize()));
}

}  // namespace simulator
