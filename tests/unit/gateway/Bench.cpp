// The gateway's environment for the duration of a test: web server, state folder, tool.
#include "Bench.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace gateway {

size_t FakeInput::read(char* data, size_t length) {
  const std::size_t count = std::min(length, body.size());
  std::copy_n(body.data(), count, data);
  octetsRead += count;
  return count;
}

std::string FakeInput::getenv(const char* varName) {
  const auto variable = variables.find(varName);
  return variable == variables.end() ? "" : variable->second;
}

Received::Received(const std::string& aOutput) {
  const std::size_t end = aOutput.find("\r\n\r\n");
  EXPECT_NE(end, std::string::npos) << aOutput;
  body = aOutput.substr(end + 4);
  std::istringstream lines(aOutput.substr(0, end) + "\r\n");
  for (std::string line; std::getline(lines, line);) {
    const std::size_t colon = line.find(": ");
    const std::string name = line.substr(0, colon);
    EXPECT_EQ(line.back(), '\r');
    EXPECT_TRUE(headers.emplace(name, line.substr(colon + 2, line.size() - colon - 3)).second)
        << name << " appears twice";
  }
  std::istringstream(headers["Status"]) >> status;
  reason = headers["Status"].substr(4);
}

rapidjson::Document Received::document() const {
  rapidjson::Document parsed;
  parsed.Parse(body.data(), body.size());
  EXPECT_FALSE(parsed.HasParseError()) << body;
  return parsed;
}

std::string Received::detail() const {
  EXPECT_EQ(headers.at("Content-Type"), "application/problem+json");
  EXPECT_EQ(headers.at("Cache-Control"), "no-store");
  EXPECT_EQ(headers.count("Link"), 0U);
  const rapidjson::Document problem = document();
  EXPECT_TRUE(problem.IsObject());
  EXPECT_EQ(problem["status"].GetInt(), status);
  EXPECT_EQ(problem["title"].GetString(), reason);
  return problem["detail"].GetString();
}

Bench::Bench() {
  ::prctl(PR_SET_CHILD_SUBREAPER, 1);
  // As a web server starts its programs; a command in this process leaves them ignored.
  for (const int number : {SIGPIPE, SIGTERM, SIGINT, SIGHUP}) {
    std::signal(number, SIG_DFL);
  }
  EXPECT_EQ(::mkdir(path("data").c_str(), 0700), 0);
  input.variables = {{"GC_WEB_TOOL", GC_FAKE_TOOL}, {"GC_WEB_STATE", path("")},
                     {"GC_WEB_LOG", path("log")},   {"GC_WEB_SCHEMAS", GC_SCHEMAS},
                     {"GC_WEB_DATA", path("data")}, {"GC_WEB_ADDRESS", "out {}"},
                     {"REMOTE_USER", "anna"},       {"REMOTE_ADDR", "192.0.2.7"},
                     {"HTTP_X_GC_REQUEST", "1"},    {"CONTENT_TYPE", "application/json"},
                     {"HTTP_HOST", "gc.example"},   {"GC_WEB_PLAIN_HTTP_COMMANDS", "allowed"}};
}

Bench::~Bench() {
  while (::waitpid(-1, nullptr, 0) > 0) {
  }
}

std::string Bench::contentOf(const std::string& aName) const {
  std::ifstream file(path(aName), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void Bench::write(const std::string& aName, const std::string& aContent) const {
  std::ofstream(path(aName), std::ios::binary) << aContent;
}

void Bench::whenItWaits(pid_t aProcess) {
  std::string state;
  while (state.find("locks_lock") == std::string::npos &&
         state.find("flock") == std::string::npos) {
    std::ifstream file("/proc/" + std::to_string(aProcess) + "/wchan");
    std::getline(file, state);
    siginfo_t end = {};
    ::waitid(P_PID, static_cast<id_t>(aProcess), &end, WEXITED | WNOHANG | WNOWAIT);
    ASSERT_EQ(end.si_pid, 0) << "it has ended";
  }
}

std::string Bench::fifo(const std::string& aName) const {
  EXPECT_EQ(::mkfifo(path(aName).c_str(), 0600), 0);
  return path(aName);
}

Descriptor Bench::whenAwaited(const std::string& aFifo) {
  Descriptor end(::open(aFifo.c_str(), O_WRONLY | O_CLOEXEC));
  EXPECT_TRUE(end.isOpen());
  return end;
}

void Bench::letGoOn(const Descriptor& aEnd) {
  EXPECT_EQ(::write(aEnd.get(), "x", 1), 1);
}

Received Bench::report(const std::string& aPath, const std::string& aMethod) {
  input.variables["REQUEST_METHOD"] = aMethod;
  input.variables["SCRIPT_NAME"] = aPath;
  return Received(answerReport(input, limits));
}

Received Bench::ask(const std::string& aPath, const std::string& aMethod) {
  const FakeInput before = input;
  input.variables["PATH_INFO"] = input.variables["CONTENT_LENGTH"] = "";
  Received answer = report(aPath, aMethod);
  input = before;
  return answer;
}

void Bench::setCommand(const std::string& aMethod, const std::string& aPath,
                       const std::string& aBody) {
  input.variables["REQUEST_METHOD"] = aMethod;
  input.variables["SCRIPT_NAME"] = "/api/command";
  input.variables["PATH_INFO"] = aPath;
  input.variables["CONTENT_LENGTH"] = std::to_string(aBody.size());
  input.body = aBody;
}

Received Bench::replyToCommand() {
  std::vector<std::string> replies;
  answerCommand(input, limits, [&](const std::string& aReply) { replies.push_back(aReply); });
  EXPECT_EQ(replies.size(), 1U);
  return Received(replies.at(0));
}

Received Bench::command(const std::string& aMethod, const std::string& aPath,
                        const std::string& aBody) {
  setCommand(aMethod, aPath, aBody);
  return replyToCommand();
}

std::vector<std::string> Bench::linesOf(const std::string& aName) const {
  std::istringstream text(contentOf(aName));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::vector<rapidjson::Document> Bench::logged(const std::string& aEvent) const {
  std::vector<rapidjson::Document> found;
  for (const std::string& text : linesOf("log")) {
    rapidjson::Document line;
    line.Parse(text.c_str());
    EXPECT_FALSE(line.HasParseError()) << text;
    if (!line.HasParseError() && aEvent == line["event"].GetString()) {
      found.push_back(std::move(line));
    }
  }
  return found;
}

std::vector<std::string> Bench::filesIn(const std::string& aName) const {
  std::vector<std::string> names;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(path(aName), none)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

Settings Bench::settings() const {
  FakeInput copy = input;
  Settings result;
  EXPECT_FALSE(readCommandSettings(copy, result));
  return result;
}

}  // namespace gateway
