// A reactor whose time a test moves, and a connection to something in it.
#pragma once

#include <ace/Dev_Poll_Reactor.h>
#include <ace/Event_Handler_Handle_Timeout_Upcall.h>
#include <ace/Null_Mutex.h>
#include <ace/Reactor.h>
#include <ace/Time_Policy.h>
#include <ace/Timer_Heap_T.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <string>

/// Both ends of a connection; the first belongs to whoever takes it, the second is the test's.
struct SocketPair {
  SocketPair() { EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0); }
  ~SocketPair() { hangUp(); }
  SocketPair(const SocketPair&) = delete;
  SocketPair& operator=(const SocketPair&) = delete;

  void hangUp() {
    if (ends[1] >= 0) {
      ::close(ends[1]);
    }
    ends[1] = -1;
  }

  void send(const std::string& aOctets) const {
    EXPECT_EQ(::send(ends[1], aOctets.data(), aOctets.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(aOctets.size()));
  }

  /// What has come so far.
  std::string received() const {
    std::string octets;
    char chunk[65536];
    ssize_t length = 0;
    while ((length = ::recv(ends[1], chunk, sizeof chunk, 0)) > 0) {
      octets.append(chunk, static_cast<std::size_t>(length));
    }
    return octets;
  }

  /// Has the other end been closed? What it sent before must have been received.
  bool isOver() const {
    char octet = 0;
    return ::recv(ends[1], &octet, 1, 0) == 0;
  }

  int ends[2] = {-1, -1};
};

class ReactorBench : public ::testing::Test {
 protected:
  ReactorBench() {
    sNow = ACE_Time_Value(1000);
    mTimers.gettimeofday(&now);
  }

  /// Serves all that is to be served now; returns how often there was something.
  int serve() {
    int served = 0;
    // Without waiting, the reactor does not look at the timers.
    for (int last = 1; last > 0 && served < cMany; served += last) {
      ACE_Time_Value none;
      last = mTimers.expire();
      last += std::max(mReactor.handle_events(none), 0);
    }
    return served;
  }

  void pass(double aSeconds) {
    ACE_Time_Value seconds;
    seconds.set(aSeconds);
    sNow += seconds;
    serve();
  }

  /// More than any test has to serve at once: something is served again and again.
  static constexpr int cMany = 10000;

  ACE_Timer_Heap_T<ACE_Event_Handler*, ACE_Event_Handler_Handle_Timeout_Upcall, ACE_Null_Mutex,
                   ACE_FPointer_Time_Policy>
      mTimers;
  ACE_Reactor mReactor{new ACE_Dev_Poll_Reactor(1024, true, nullptr, &mTimers), true};

 private:
  static ACE_Time_Value now() { return sNow; }
  static inline ACE_Time_Value sNow;
};
