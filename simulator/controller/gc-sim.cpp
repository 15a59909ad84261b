// gc-sim: a simulated controller at one loopback address.
#include <arpa/inet.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <string>

#include "ControlPath.h"
#include "Server.h"
#include "Simulation.h"

namespace simulator {

namespace {

constexpr int cBadOption = 1;
constexpr int cBadScenario = 2;
constexpr int cCannotListen = 3;

int fail(int aCode, const std::string& aReason) {
  std::fprintf(stderr, "gc-sim: %s\n", aReason.c_str());
  return aCode;
}

/// Nobody but this machine shall find a simulated instrument.
std::string checkLoopback(const std::string& aAddress) {
  constexpr std::uint32_t cLoopbackNet = 127;
  in_addr address = {};
  const bool loopback = ::inet_pton(AF_INET, aAddress.c_str(), &address) == 1 &&
                        ntohl(address.s_addr) >> 24 == cLoopbackNet;
  return loopback ? std::string() : aAddress + " is no address in 127.0.0.0/8";
}

int run(int argc, char* argv[]) {
  std::string address = "127.0.0.1";
  std::string scenario = "everyday";
  std::string journal;
  std::string control;
  double speed = 1.0;
  bool paused = false;
  Simulation simulation;

  CLI::App app("A simulated gas chromatograph controller", "gc-sim");
  app.set_version_flag("--version", "gc-sim " GC_WEB_VERSION, "Print the version and exit");
  app.add_option("--listen", address, "Loopback address to listen on")->check(checkLoopback);
  app.add_option("--scenario", scenario, "Name of a shipped scenario, or a file");
  app.add_option("--seed", simulation.seed, "Seed of the noise in the measured values");
  app.add_option("--speed", speed, "Simulated seconds a real second");
  app.add_flag("--paused", paused, "Simulated time stands still until stepped or resumed");
  app.add_option("--journal", journal, "File to append a line of JSON to for every call");
  app.add_option("--control", control, "Unix socket of the remote control");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& failure) {
    return app.exit(failure) == 0 ? 0 : cBadOption;
  }

  std::string error;
  if (!simulation.clock.setSpeed(speed)) {
    return fail(cBadOption, "--speed: over 0 and at most 1000000 expected");
  }
  if (paused) {
    simulation.clock.pause();
  }
  if (!journal.empty() && !simulation.journal.open(journal, error)) {
    return fail(cBadOption, error);
  }
  if (!simulation.load(scenario, error)) {
    return fail(cBadScenario, error);
  }
  if (control.empty()) {
    control = defaultControlPath(address);
  }
  Server server(simulation);
  if (!prepareControlFolder(control, error) || !server.open(address, control, error)) {
    return fail(cCannotListen, error);
  }
  std::puts("ready");
  std::fflush(stdout);
  return server.run() ? 0 : fail(cCannotListen, "the reactor fails");
}

}  // namespace

}  // namespace simulator

int main(int argc, char* argv[]) {
  try {
    return simulator::run(argc, argv);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "gc-sim: %s\n", failure.what());
    return simulator::cBadOption;
  }
}
