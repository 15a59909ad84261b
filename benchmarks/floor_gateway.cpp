// The smallest CGI program that passes on the tool's output: nothing checked, stored or limited.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

int main() {
  char option[] = "-t";
  char* const arguments[] = {std::getenv("GC_WEB_TOOL"), option, nullptr};
  char* const environment[] = {nullptr};
  const int output = ::memfd_create("output", MFD_CLOEXEC);
  const pid_t tool = ::vfork();
  if (tool == 0) {
    ::dup2(output, STDOUT_FILENO);
    ::execve(arguments[0], arguments, environment);
    ::_exit(127);
  }
  ::waitpid(tool, nullptr, 0);
  char text[16384] = "Content-Type: application/json\r\n\r\n";
  const std::size_t headers = 34;
  const ssize_t count = ::pread(output, text + headers, sizeof text - headers, 0);
  return ::write(STDOUT_FILENO, text, headers + static_cast<std::size_t>(count)) > 0 ? 0 : 1;
}
