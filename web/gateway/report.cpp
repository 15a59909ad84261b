// The CGI program for reports.
#include <unistd.h>

#include <csignal>

#include "Answer.h"
#include "ReportAnswer.h"
#include "Version.h"

int main(int argc, char* argv[]) {
  if (gateway::isAskedForVersion(argc, argv)) {
    return gateway::printVersion("report");
  }
  std::signal(SIGPIPE, SIG_IGN);
  cgicc::CgiInput input;
  gateway::send(STDOUT_FILENO, gateway::answerReport(input, gateway::Limits()));
  return 0;
}
