// The linker substitutes the functions below for the system's, in the client library only.
#include "ScriptedSocket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

#include "Require.h"

namespace {

ScriptedSocket* sSocket = nullptr;

void putNumber(std::string& octets, std::size_t aPlace, std::uint32_t aNumber) {
  const std::uint32_t number = htonl(aNumber);
  octets.replace(aPlace, sizeof number, reinterpret_cast<const char*>(&number), sizeof number);
}

}  // namespace

ScriptedSocket::ScriptedSocket() {
  sSocket = this;
}

ScriptedSocket::~ScriptedSocket() {
  sSocket = nullptr;
}

ScriptedSocket& ScriptedSocket::current() {
  require(sSocket != nullptr, "there is a socket");
  return *sSocket;
}

bool ScriptedSocket::isClosed() const {
  return mHandle < 0 || ::fcntl(mHandle, F_GETFD) < 0;
}

int ScriptedSocket::open() {
  require(isClosed(), "the library has one socket at a time");
  mHandle = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  return mHandle;
}

eAnswer ScriptedSocket::prepare(Input& input, const std::string& aBody) {
  const std::uint8_t choice = input.octet();
  mSpoil = choice < 0xC0 ? eSpoil::eNothing : static_cast<eSpoil>(choice % 11);
  mBody = aBody;
  mRequest.clear();
  mAnswer.clear();
  mGiven = 0;
  mAsked = false;
  const std::uint8_t manner = input.octet();
  mPart = manner < 0xC0 ? wire::cMaxBody : 1 + manner % 32;
  mHesitant = (manner & 1) != 0;
  switch (mSpoil) {
    case eSpoil::eNothing:
      return eAnswer::eGood;
    case eSpoil::eBody:
      mBody = input.text();
      return eAnswer::eUnclear;
    case eSpoil::eOctets:
      mAnswer = input.text();
      return eAnswer::eUnclear;
    case eSpoil::eShortBody:
      mBody.pop_back();
      return eAnswer::eBroken;
    case eSpoil::eLongBody:
      mBody.push_back('x');
      return eAnswer::eBroken;
    default:
      return eAnswer::eBroken;
  }
}

/// Called with the complete request in mRequest.
void ScriptedSocket::makeAnswer() {
  mAsked = true;
  if (mSpoil == eSpoil::eOctets) {
    return;
  }
  // Magic, type and sequence are those of the request.
  mAnswer = mRequest.substr(0, wire::cHeaderSize);
  putNumber(mAnswer, 12, static_cast<std::uint32_t>(mBody.size()));
  mAnswer += mBody;
  switch (mSpoil) {
    case eSpoil::eMagic:
      mAnswer[0] = 'g';
      break;
    case eSpoil::eType:
      mAnswer[7] = static_cast<char>(mAnswer[7] + 1);
      break;
    case eSpoil::eSequence:
      mAnswer[11] = static_cast<char>(mAnswer[11] + 1);
      break;
    case eSpoil::eLength:
      putNumber(mAnswer, 12, wire::cMaxBody + 1);
      break;
    case eSpoil::eEnd:
    case eSpoil::eHang:
      mAnswer.resize(mAnswer.size() / 2);
      break;
    default:
      break;
  }
}

bool ScriptedSocket::hesitates() {
  mRefused = mHesitant && !mRefused;
  errno = mPart == 1 ? EINTR : EAGAIN;
  return mRefused;
}

long ScriptedSocket::take(const char* aOctets, std::size_t aSize) {
  if (hesitates()) {
    return -1;
  }
  const std::size_t size = std::min(aSize, mPart);
  mRequest.append(aOctets, size);
  wire::Header header{};
  if (mRequest.size() >= wire::cHeaderSize) {
    require(wire::decodeHeader(mRequest.data(), header), "the library sends good frames");
    if (mRequest.size() == wire::cHeaderSize + header.bodyLength) {
      makeAnswer();
    }
  }
  return static_cast<long>(size);
}

long ScriptedSocket::give(char* octets, std::size_t aSize) {
  if (hesitates()) {
    return -1;
  }
  const std::size_t size = std::min({aSize, mPart, mAnswer.size() - mGiven});
  mAnswer.copy(octets, size, mGiven);
  mGiven += size;
  return size == 0 && mSpoil == eSpoil::eHang ? -1 : static_cast<long>(size);
}

bool ScriptedSocket::isReady() const {
  return !mAsked || mGiven < mAnswer.size() || mSpoil != eSpoil::eHang;
}

// NOLINTBEGIN(bugprone-reserved-identifier): the linker requires these names
extern "C" {
int __wrap_socket(int, int, int) {
  return ScriptedSocket::current().open();
}
int __wrap_connect(int, const sockaddr*, socklen_t) {
  return 0;
}
ssize_t __wrap_send(int, const void* aOctets, std::size_t aSize, int) {
  return ScriptedSocket::current().take(static_cast<const char*>(aOctets), aSize);
}
ssize_t __wrap_recv(int, void* octets, std::size_t aSize, int) {
  return ScriptedSocket::current().give(static_cast<char*>(octets), aSize);
}
int __wrap_poll(pollfd* descriptors, nfds_t, int) {
  descriptors->revents = descriptors->events;
  return ScriptedSocket::current().isReady() ? 1 : 0;
}
}
// NOLINTEND(bugprone-reserved-identifier)
