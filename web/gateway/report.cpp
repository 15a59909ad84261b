// The CGI program for reports.
#include <unistd.h>

#include <csignal>

#include "Answer.h"
#include "ReportAnswer.h"

int main() {
  std::signal(SIGPIPE, SIG_IGN);
  cgicc::CgiInput input;
  send(STDOUT_FILENO, answerReport(input, Limits()));
  return 0;
}
