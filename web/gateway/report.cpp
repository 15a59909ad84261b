// The CGI program for reports.
#include <unistd.h>

#include <csignal>

#include "Answer.h"
#include "ReportAnswer.h"

int main() {
  std::signal(SIGPIPE, SIG_IGN);
  cgicc::CgiInput input;
  gateway::send(STDOUT_FILENO, gateway::answerReport(input, gateway::Limits()));
  return 0;
}
