// A frame is believed only after its header has been: no length reserves memory before its octets
// are there.
#include "FrameAssembler.h"

namespace simulator {

bool FrameAssembler::append(const char* aOctets, std::size_t aLength) {
  mOctets.erase(mOctets.begin(), mOctets.begin() + static_cast<std::ptrdiff_t>(mTaken));
  mTaken = 0;
  if (aLength > cMaxOctets - mOctets.size()) {
    return false;
  }
  mOctets.insert(mOctets.end(), aOctets, aOctets + aLength);
  return true;
}

FrameAssembler::eNext FrameAssembler::next(wire::Header& header, const char*& body) {
  const std::size_t waiting = mOctets.size() - mTaken;
  if (waiting < wire::cHeaderSize) {
    return eNext::eNone;
  }
  const char* start = mOctets.data() + mTaken;
  if (!wire::decodeHeader(start, header)) {
    return eNext::eInvalid;
  }
  const std::size_t frameSize = wire::cHeaderSize + header.bodyLength;
  if (waiting < frameSize) {
    return eNext::eNone;
  }
  body = start + wire::cHeaderSize;
  mTaken += frameSize;
  return eNext::eFrame;
}

}  // namespace simulator
