// Frames out of the octets of a connection, however these come in.
#pragma once

#include <Message.h>

#include <cstddef>
#include <vector>

namespace simulator {

class FrameAssembler {
 public:
  /// Room for one frame of the largest size and as much again behind it: a client waits for its
  /// answers, so there is never more in good faith.
  static constexpr std::size_t cMaxOctets = 2 * (wire::cHeaderSize + wire::cMaxBody);

  enum class eNext { eNone, eFrame, eInvalid };

  /// False, and nothing taken, when more than cMaxOctets would wait.
  bool append(const char* aOctets, std::size_t aLength);

  /// Takes the next whole frame. `body` stands until the next call of either function. After
  /// eInvalid, a header that cannot be believed, the connection has nothing more to say.
  eNext next(wire::Header& header, const char*& body);

 private:
  std::vector<char> mOctets;
  std::size_t mTaken = 0;  ///< octets at the start of mOctets that are done with
};

}  // namespace simulator
