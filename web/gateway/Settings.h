// The gateway's settings, which come from the web server, and its timeouts.
#pragma once

#include <cgicc/CgiInput.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "Answer.h"

namespace gateway {

using Clock = std::chrono::steady_clock;

struct Settings {
  std::string tool;
  std::string address;
  std::string state;      ///< a folder in memory
  std::string data;       ///< a folder on disk
  std::string libraries;  ///< may be empty
  std::string units;      ///< of the instrument's values, as Units.h reads them; may be empty
  std::string log;        ///< this and the following are for commands only
  std::string schemas;
};

struct Limits {
  std::chrono::milliseconds report{20000};       ///< then the tool is killed
  std::chrono::milliseconds command{120000};     ///< then the reply is sent; the tool goes on
  std::chrono::milliseconds hung{3600000};       ///< then the command is killed: it has hung
  std::chrono::milliseconds abort{20000};        ///< then the tool is killed; another may try
  std::chrono::milliseconds begin{29000};        ///< since the request; later, nothing is started
  std::chrono::milliseconds otherCommand{5000};  ///< waiting for another command to end
  std::chrono::milliseconds otherStatus{25000};  ///< waiting for another process's answer
  std::chrono::milliseconds freshStatus{1000};   ///< how long an answer is shared
  std::size_t output = 8UL * 1024UL * 1024UL;    ///< limit of each output, in octets
};

/// Fills in the settings that reports need, or those that commands need. Returns the answer that
/// names the first missing one.
std::optional<Answer> readReportSettings(cgicc::CgiInput& input, Settings& settings);
std::optional<Answer> readCommandSettings(cgicc::CgiInput& input, Settings& settings);

}  // namespace gateway
