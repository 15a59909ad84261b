// What the web server tells the gateway, and how long the gateway waits.
#pragma once

#include <cgicc/CgiInput.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "Answer.h"

using Clock = std::chrono::steady_clock;

struct Settings {
  std::string tool;
  std::string address;
  std::string state;      ///< a folder in memory
  std::string data;       ///< a folder on the disk
  std::string libraries;  ///< may be empty
  std::string units;      ///< of the instrument's values, as Units.h reads them; may be empty
  std::string log;        ///< this and what follows is for commands only
  std::string schemas;
};

struct Limits {
  std::chrono::milliseconds report{20000};       ///< then it is ended
  std::chrono::milliseconds command{120000};     ///< then it goes on without the browser
  std::chrono::milliseconds hung{3600000};       ///< then the command is ended too: it never will
  std::chrono::milliseconds abort{20000};        ///< then it is ended, for the next one to try
  std::chrono::milliseconds begin{29000};        ///< since the request; then no command begins
  std::chrono::milliseconds otherCommand{5000};  ///< waiting for one to end
  std::chrono::milliseconds otherStatus{25000};  ///< waiting for somebody else's answer
  std::chrono::milliseconds freshStatus{1000};   ///< how long an answer is shared
  std::size_t output = 8UL * 1024UL * 1024UL;    ///< octets on either output that are too many
};

/// Fills the settings that reports need, and those that only commands need. Returns the answer that
/// names the first one missing.
std::optional<Answer> readReportSettings(cgicc::CgiInput& input, Settings& settings);
std::optional<Answer> readCommandSettings(cgicc::CgiInput& input, Settings& settings);
