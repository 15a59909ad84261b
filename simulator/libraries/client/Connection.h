// One connection to the controller: a request out, its answer back, each within its time.
#pragma once

#include <Message.h>
#include <Status.h>

#include <chrono>
#include <cstdint>
#include <vector>

namespace client {

struct Limits {
  std::chrono::milliseconds connect{3000};
  std::chrono::milliseconds answer{10000};  ///< from the request's first octet to the answer's last
};

class Connection {
 public:
  explicit Connection(const Limits& aLimits = Limits()) : mLimits(aLimits) {}
  ~Connection() { close(); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Connects to an IPv4 address, first octet in the lowest byte, at wire::cPort.
  eStatus open(std::uint32_t aAddress);
  void close();

  /// Sends the request and decodes its answer. Whatever goes wrong on the way closes the
  /// connection, since nobody can tell any more which answer would belong to the next request; a
  /// request that breaks a bound is not sent and closes nothing. The status in the answer is the
  /// caller's to look at.
  template <class Request, class Reply>
  eStatus call(wire::eType aType, const Request& aRequest, Reply& reply) {
    const wire::Frame frame = wire::encode(aType, ++mSequence, aRequest);
    if (frame.empty()) {
      return eArgumentInvalid;
    }
    std::vector<char> body;
    eStatus status = exchange(aType, frame, body);
    if (status == eSuccess && !wire::decode(body.data(), body.size(), reply)) {
      status = eAnswerInvalid;
    }
    if (status != eSuccess) {
      close();
    }
    return status;
  }

 private:
  using Deadline = std::chrono::steady_clock::time_point;

  eStatus exchange(wire::eType aType, const wire::Frame& aFrame, std::vector<char>& body);
  eStatus send(const wire::Frame& aFrame, Deadline aDeadline);
  /// Fills the whole buffer.
  eStatus receive(std::vector<char>& octets, Deadline aDeadline);
  bool wait(short aEvents, Deadline aDeadline) const;

  Limits mLimits;
  int mSocket = -1;
  std::uint32_t mSequence = 0;
};

}  // namespace client
