// The reactor tells when the socket can be read or written; what cannot be written yet waits here.
#include "Stream.h"

#include <ace/Reactor.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <utility>

namespace simulator {

namespace {

constexpr std::size_t cChunkSize = 65536;
constexpr double cFinishSeconds = 5.0;

bool mayComeLater() {
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

Stream::Stream(ACE_Reactor& aReactor, ACE_HANDLE aHandle, std::size_t aMaxUnsent,
               std::function<void()> aClosed)
    : ACE_Event_Handler(&aReactor),
      mHandle(aHandle),
      mMaxUnsent(aMaxUnsent),
      mClosed(std::move(aClosed)) {}

Stream::~Stream() {
  stopTimer();
  reactor()->remove_handler(mHandle, ALL_EVENTS_MASK | DONT_CALL);
  ::close(mHandle);
}

bool Stream::open() {
  return reactor()->register_handler(this, READ_MASK) == 0;
}

int Stream::handle_input(ACE_HANDLE /*aHandle*/) {
  char chunk[cChunkSize];
  const ssize_t length = ::recv(mHandle, chunk, sizeof chunk, 0);
  if (length < 0 && mayComeLater()) {
    return 0;
  }
  if (length <= 0) {
    return -1;
  }
  return mFinishing || received(chunk, static_cast<std::size_t>(length)) ? 0 : -1;
}

int Stream::handle_output(ACE_HANDLE /*aHandle*/) {
  if (!flush()) {
    return -1;
  }
  if (!mUnsent.empty()) {
    return 0;
  }
  reactor()->cancel_wakeup(this, WRITE_MASK);
  return mFinishing ? -1 : 0;
}

int Stream::handle_timeout(const ACE_Time_Value& /*aTime*/, const void* /*aArgument*/) {
  if (mFinishing || !timedOut()) {
    handle_close(mHandle, TIMER_MASK);
  }
  return 0;
}

int Stream::handle_close(ACE_HANDLE /*aHandle*/, ACE_Reactor_Mask /*aMask*/) {
  const std::function<void()> closed = std::move(mClosed);
  closed();  // deletes this
  return 0;
}

bool Stream::send(const char* aOctets, std::size_t aLength) {
  const bool waiting = !mUnsent.empty();
  mUnsent.append(aOctets, aLength);
  if (waiting) {
    return mUnsent.size() <= mMaxUnsent;
  }
  if (!flush()) {
    return false;
  }
  return mUnsent.empty() ||
         (mUnsent.size() <= mMaxUnsent && reactor()->schedule_wakeup(this, WRITE_MASK) != -1);
}

bool Stream::finish() {
  mFinishing = true;
  startTimer(cFinishSeconds);
  return !mUnsent.empty();
}

void Stream::startTimer(double aSeconds) {
  stopTimer();
  ACE_Time_Value delay;
  delay.set(aSeconds);
  reactor()->schedule_timer(this, nullptr, delay);
}

void Stream::stopTimer() {
  reactor()->cancel_timer(this);
}

bool Stream::flush() {
  const ssize_t sent = ::send(mHandle, mUnsent.data(), mUnsent.size(), MSG_NOSIGNAL);
  if (sent < 0) {
    return mayComeLater();
  }
  mUnsent.erase(0, static_cast<std::size_t>(sent));
  return true;
}

}  // namespace simulator
