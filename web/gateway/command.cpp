// The CGI program for commands.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "Answer.h"
#include "CommandAnswer.h"
#include "Version.h"

namespace {

/// The web server waits for the end of the output, which this process may have to outlive.
void sendAndClose(const std::string& aRendered) {
  gateway::send(STDOUT_FILENO, aRendered);
  const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::dup2(null, STDOUT_FILENO);
}

}  // namespace

int main(int argc, char* argv[]) {
  if (gateway::isAskedForVersion(argc, argv)) {
    return gateway::printVersion("command");
  }
  std::signal(SIGPIPE, SIG_IGN);
  cgicc::CgiInput input;
  gateway::answerCommand(input, gateway::Limits(), sendAndClose);
  return 0;
}
