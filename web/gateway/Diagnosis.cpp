// What the tool and the library said about a failure, for the web server's error log.
#include "Diagnosis.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <ctime>

#include "Answer.h"
#include "Descriptor.h"
#include "Request.h"
#include "UtcTime.h"

namespace gateway {

namespace {

constexpr std::size_t cLongest = 1000;
constexpr double cPause = 60.0;  // s

/// Escapes the text, so that nothing in it can start another log line.
std::string inOneLine(const std::string& aText) {
  std::string line;
  for (const char character : aText.substr(0, aText.find_last_not_of('\n') + 1)) {
    const auto octet = static_cast<unsigned char>(character);
    if (character == '\n') {
      line += " | ";
    } else if (octet < 0x20 || octet >= 0x7F || character == '\\') {
      char escape[5] = "";
      std::snprintf(escape, sizeof escape, "\\x%02x", octet);
      line += escape;
    } else {
      line += character;
    }
  }
  return line;
}

/// Whether the last line about this report is old enough; remembers that there is one now.
bool isDue(const std::string& aStateFolder, eOperation aReport) {
  const std::string path = aStateFolder + '/' + schemaOf(aReport) + ".told";
  struct stat file = {};
  const bool isThere = ::stat(path.c_str(), &file) == 0;
  const double age = std::difftime(std::time(nullptr), file.st_mtime);
  if (isThere && age >= 0 && age < cPause) {
    return false;
  }
  const Descriptor mark(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  ::futimens(mark.get(), nullptr);
  return true;
}

}  // namespace

void diagnose(cgicc::CgiInput& input, const Settings& aSettings, eOperation aOperation, int aStatus,
              const std::string& aErrors) {
  const bool isGood = aStatus >= 200 && aStatus < 300;
  if (isGood || aErrors.empty() || (isReport(aOperation) && !isDue(aSettings.state, aOperation))) {
    return;
  }
  const std::string said = inOneLine(aErrors.substr(0, cLongest));
  const std::string line = utcNow() + ' ' + input.getenv("REQUEST_METHOD") + ' ' + pathOf(input) +
                           ' ' + std::to_string(aStatus) + ": " + said + '\n';
  // In a single write: other processes use the same log.
  send(STDERR_FILENO, line);
}

}  // namespace gateway
