// One connection for one question.
#include "ControlClient.h"

#include <ace/LSOCK_Connector.h>
#include <ace/Time_Value.h>
#include <ace/UNIX_Addr.h>

#include <cerrno>
#include <cstring>

namespace simulator {

namespace {

constexpr time_t cPatienceSeconds = 30;

bool converse(ACE_LSOCK_Stream& stream, const std::string& aRequest, std::string& answer) {
  const ACE_Time_Value patience(cPatienceSeconds);
  const std::string line = aRequest + '\n';
  if (stream.send_n(line.data(), line.size(), &patience) != static_cast<ssize_t>(line.size())) {
    return false;
  }
  char chunk[64 * 1024];
  while (answer.empty() || answer.back() != '\n') {
    const ssize_t length = stream.recv(chunk, sizeof chunk, &patience);
    if (length <= 0) {
      errno = length == 0 ? ECONNRESET : errno;
      return false;
    }
    answer.append(chunk, static_cast<std::size_t>(length));
  }
  answer.pop_back();
  return true;
}

}  // namespace

bool askController(const std::string& aPath, const std::string& aRequest, std::string& answer,
                   std::string& error) {
  ACE_LSOCK_Connector connector;
  ACE_LSOCK_Stream stream;
  const bool answered = connector.connect(stream, ACE_UNIX_Addr(aPath.c_str())) == 0 &&
                        converse(stream, aRequest, answer);
  if (!answered) {
    error = aPath + ": " + std::strerror(errno);
  }
  stream.close();
  return answered;
}

}  // namespace simulator
