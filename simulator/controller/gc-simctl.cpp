// gc-simctl: the remote control of a simulated controller.
#include <JsonText.h>
#include <rapidjson/prettywriter.h>

#include <CLI/CLI.hpp>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "ControlClient.h"
#include "ControlPath.h"

namespace simulator {

namespace {

constexpr int cFailed = 1;

int fail(const std::string& aReason) {
  std::fprintf(stderr, "gc-simctl: %s\n", aReason.c_str());
  return cFailed;
}

/// The one request, and the arguments that it is made of.
struct Request {
  Request() : writer(buffer) { writer.StartObject(); }

  void add(const char* aKey, const std::string& aText) {
    writer.Key(aKey);
    writeText(writer, aText);
  }
  void add(const char* aKey, double aValue) {
    writer.Key(aKey);
    writeReal(writer, aValue);
  }
  void add(const char* aKey, std::uint32_t aValue) {
    writer.Key(aKey);
    writer.Uint(aValue);
  }
  void add(const char* aKey, bool aValue) {
    writer.Key(aKey);
    writer.Bool(aValue);
  }
  /// In one line, however it came.
  void add(const char* aKey, const rapidjson::Document& aDocument) {
    writer.Key(aKey);
    aDocument.Accept(writer);
  }
  std::string finish() {
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
  }

  rapidjson::StringBuffer buffer;
  JsonWriter writer;

  std::string name;
  std::string text;
  double real = 0.0;
  std::uint32_t number = 0;
  std::uint32_t channel = 0;
  bool isText = false;
  bool clear = false;
  bool list = false;
};

/// A path means the same to the controller, wherever that was started.
std::string absolute(const std::string& aNameOrPath) {
  const std::string suffix = ".json";
  const bool isPath = aNameOrPath.find('/') != std::string::npos ||
                      (aNameOrPath.size() > suffix.size() &&
                       aNameOrPath.substr(aNameOrPath.size() - suffix.size()) == suffix);
  char path[PATH_MAX];
  return isPath && ::realpath(aNameOrPath.c_str(), path) != nullptr ? path : aNameOrPath;
}

void addVerbs(CLI::App& app, Request& request) {
  app.add_subcommand("status", "Simulated time, scenario, connections, calls so far");
  app.add_subcommand("pause", "Let simulated time stand still");
  app.add_subcommand("resume", "Let simulated time go on");
  app.add_subcommand("snapshot", "Every parameter and text by name: a scenario");

  CLI::App* speed = app.add_subcommand("speed", "Change the pace of simulated time");
  speed->add_option("X", request.real, "Simulated seconds a real second")->required();
  speed->callback([&] { request.add("speed", request.real); });

  CLI::App* step = app.add_subcommand("step", "Go forward in simulated time at once");
  step->add_option("SECONDS", request.real)->required();
  step->callback([&] { request.add("seconds", request.real); });

  CLI::App* load = app.add_subcommand("load", "Start again with another scenario");
  load->add_option("NAME", request.name, "Name of a shipped scenario, or a file")->required();
  load->callback([&] { request.add("scenario", absolute(request.name)); });

  CLI::App* journal = app.add_subcommand("journal", "The last calls");
  const CLI::Option* count = journal->add_option("COUNT", request.number, "All that are kept");
  journal->callback([&request, count] {
    if (count->count() > 0) {
      request.add("count", request.number);
    }
  });

  CLI::App* command = app.add_subcommand("command", "Give an instrument command");
  command->add_option("NUMBER", request.number)->required();
  command->add_option("CHANNEL", request.channel);
  command->callback([&] {
    request.add("number", request.number);
    request.add("channel", request.channel);
  });

  CLI::App* set = app.add_subcommand("set", "Set a parameter, or a text");
  set->add_option("NAME", request.name, "mGC_State, or the number of a text")->required();
  set->add_option("VALUE", request.text)->required();
  set->add_flag("--text", request.isText, "The value is the text of a remote object");
  set->callback([&] {
    const auto toNumber = [](const std::string& aText, auto& number) {
      if (!CLI::detail::lexical_cast(aText, number)) {
        throw CLI::ValidationError(aText, "a number expected");
      }
    };
    if (request.isText) {
      toNumber(request.name, request.number);
      request.add("number", request.number);
      request.add("text", request.text);
    } else {
      toNumber(request.text, request.real);
      request.add("name", request.name);
      request.add("value", request.real);
    }
  });

  CLI::App* fault = app.add_subcommand("fault", "Let something go wrong");
  CLI::Option_group* what = fault->add_option_group("what");
  what->add_option("JSON", request.text, R"({"kind": "delay", "call": "Read", "seconds": 2})");
  what->add_flag("--clear", request.clear, "Remove all faults");
  what->add_flag("--list", request.list, "Show the faults that can still act");
  what->require_option(1);
  fault->callback([&] {
    if (request.clear || request.list) {
      request.add(request.clear ? "clear" : "list", true);
      return;
    }
    rapidjson::Document description;
    if (parseJson(request.text, description).IsError()) {
      throw CLI::ValidationError("JSON", "no JSON value");
    }
    if (!isShallow(request.text)) {
      throw CLI::ValidationError("JSON", "more than " + std::to_string(cDeepest) + " levels deep");
    }
    request.add("fault", description);
  });
}

int show(const std::string& aAnswer) {
  rapidjson::Document answer;
  if (parseJson(aAnswer, answer).IsError() || !isShallow(aAnswer) || !answer.IsObject() ||
      !answer.HasMember("ok")) {
    return fail("the controller's answer is not understood");
  }
  if (!answer["ok"].IsTrue()) {
    std::string reason;
    return fail(answer.HasMember("error") && readText(answer["error"], reason) ? reason
                                                                               : "refused");
  }
  rapidjson::StringBuffer buffer;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
  writer.SetIndent(' ', 2);
  answer.Accept(writer);
  std::puts(buffer.GetString());
  return 0;
}

int run(int argc, char* argv[]) {
  std::string address = "127.0.0.1";
  std::string control;
  Request request;
  CLI::App app("The remote control of a simulated controller", "gc-simctl");
  app.set_version_flag("--version", "gc-simctl " GC_WEB_VERSION, "Print the version and exit");
  app.add_option("--listen", address, "Address that the controller listens on");
  app.add_option("--control", control, "Unix socket that it was started with");
  app.require_subcommand(1);
  app.fallthrough();  // the options above may also come after the verb
  addVerbs(app, request);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& failure) {
    return app.exit(failure) == 0 ? 0 : cFailed;
  }
  request.add("verb", app.get_subcommands().front()->get_name());
  if (control.empty()) {
    control = defaultControlPath(address);
  }
  std::string answer;
  std::string error;
  if (!askController(control, request.finish(), answer, error)) {
    return fail(error);
  }
  return show(answer);
}

}  // namespace

}  // namespace simulator

int main(int argc, char* argv[]) {
  try {
    return simulator::run(argc, argv);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "gc-simctl: %s\n", failure.what());
    return simulator::cFailed;
  }
}
