// The gateway's environment for the duration of a test: web server, state folder, tool.
#pragma once

#include <cgicc/CgiInput.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "CommandAnswer.h"
#include "Descriptor.h"
#include "ReportAnswer.h"
#include "Settings.h"
#include "TemporaryFolder.h"

namespace gateway {

/// What a web server would pass on. Tests change the public members.
class FakeInput : public cgicc::CgiInput {
 public:
  size_t read(char* data, size_t length) override;
  std::string getenv(const char* varName) override;

  std::map<std::string, std::string> variables;
  std::string body;
  std::size_t octetsRead = 0;
};

/// The parsed output of a CGI program.
struct Received {
  explicit Received(const std::string& aOutput);

  int status = 0;
  std::string reason;
  std::map<std::string, std::string> headers;
  std::string body;

  rapidjson::Document document() const;
  /// The detail of a problem document, after checking its other members and headers.
  std::string detail() const;
};

class Bench : public ::testing::Test {
 public:
  /// Waits for tools whose gateways the test has killed.
  ~Bench() override;

 protected:
  Bench();

  /// What the tool does: lines for the fake tool. A request for a table, as before a download, is
  /// answered with `aTable`; if that is empty, with the same lines.
  void toolDoes(const std::string& aLines, const std::string& aTable = R"({"total": 0})") {
    input.variables["GC_WEB_ADDRESS"] = (aTable.empty() ? "" : "table " + aTable + '\n') + aLines;
  }
  std::string path(const std::string& aName) const { return mFolder.path(aName); }
  std::string contentOf(const std::string& aName) const;
  void write(const std::string& aName, const std::string& aContent) const;
  /// Creates a FIFO and returns its path.
  std::string fifo(const std::string& aName) const;
  /// Returns once a tool has opened the FIFO, with the end from which it awaits an octet.
  static Descriptor whenAwaited(const std::string& aFifo);
  static void letGoOn(const Descriptor& aEnd);
  /// Returns once a child process waits for a lock, so its request has arrived.
  static void whenItWaits(pid_t aProcess);

  Received report(const std::string& aPath, const std::string& aMethod = "GET");
  /// A report between commands; their input stays unchanged.
  Received ask(const std::string& aPath, const std::string& aMethod = "GET");
  Received command(const std::string& aMethod, const std::string& aPath, const std::string& aBody);
  void setCommand(const std::string& aMethod, const std::string& aPath, const std::string& aBody);
  /// The only reply to the command in `input`.
  Received replyToCommand();
  std::vector<std::string> linesOf(const std::string& aName) const;
  /// Lines of the command log with one kind of event: "begun", "ended", "seen".
  std::vector<rapidjson::Document> logged(const std::string& aEvent) const;
  /// Sorted names of the files in a folder; none if it does not exist.
  std::vector<std::string> filesIn(const std::string& aName) const;

  Settings settings() const;

  FakeInput input;
  Limits limits;

 private:
  TemporaryFolder mFolder;
};

constexpr char cAccepted[] = R"({"ErrorCode": 0, "Msg": "Accepted"})";

}  // namespace gateway
