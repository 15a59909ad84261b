// A gateway's surroundings as long as a test: web server, folder of state, tool.
#pragma once

#include <cgicc/CgiInput.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <map>
#include <string>
#include <vector>

#include "CommandAnswer.h"
#include "Descriptor.h"
#include "ReportAnswer.h"
#include "Settings.h"
#include "TemporaryFolder.h"

/// What a web server would hand over. Tests change the public members.
class FakeInput : public cgicc::CgiInput {
 public:
  size_t read(char* data, size_t length) override;
  std::string getenv(const char* varName) override;

  std::map<std::string, std::string> variables;
  std::string body;
  std::size_t octetsRead = 0;
};

/// The output of a CGI program, taken apart.
struct Received {
  explicit Received(const std::string& aOutput);

  int status = 0;
  std::string reason;
  std::map<std::string, std::string> headers;
  std::string body;

  rapidjson::Document document() const;
  /// Of a problem document, after checking its other members and headers.
  std::string detail() const;
};

class Bench : public ::testing::Test {
 public:
  /// Waits for the tools of gateways that the test has killed.
  ~Bench() override;

 protected:
  Bench();

  /// What the tool does: lines for the fake one.
  void toolDoes(const std::string& aLines) { input.variables["GC_WEB_ADDRESS"] = aLines; }
  std::string path(const std::string& aName) const { return mFolder.path(aName); }
  std::string contentOf(const std::string& aName) const;
  void write(const std::string& aName, const std::string& aContent) const;
  /// Makes a FIFO and returns its path.
  std::string fifo(const std::string& aName) const;
  /// Returns when a tool awaits the FIFO, with the end of which it waits for an octet.
  static Descriptor whenAwaited(const std::string& aFifo);
  static void letGoOn(const Descriptor& aEnd);

  Received report(const std::string& aPath, const std::string& aMethod = "GET");
  Received command(const std::string& aMethod, const std::string& aPath, const std::string& aBody);
  void setCommand(const std::string& aMethod, const std::string& aPath, const std::string& aBody);
  /// The only reply to the command that the input holds.
  Received replyToCommand();
  /// Lines of the log of commands.
  std::vector<std::string> log() const;

  Settings settings() const;

  FakeInput input;
  Limits limits;

 private:
  TemporaryFolder mFolder;
};

constexpr char cAccepted[] = R"({"ErrorCode": 0, "Msg": "Accepted"})";
