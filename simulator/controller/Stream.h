// One accepted socket in the reactor: read when there is something, written without ever blocking.
#pragma once

#include <ace/Event_Handler.h>

#include <cstddef>
#include <functional>
#include <string>

namespace simulator {

class Stream : public ACE_Event_Handler {
 public:
  /// Takes over a non-blocking socket. `aMaxUnsent` bounds the octets that wait for a peer that
  /// does not read. `aClosed` is called once, when the connection is over, and deletes the stream.
  Stream(ACE_Reactor& aReactor, ACE_HANDLE aHandle, std::size_t aMaxUnsent,
         std::function<void()> aClosed);
  ~Stream() override;
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  /// False when the reactor does not take it.
  bool open();

  ACE_HANDLE get_handle() const override { return mHandle; }
  int handle_input(ACE_HANDLE aHandle) override;
  int handle_output(ACE_HANDLE aHandle) override;
  int handle_timeout(const ACE_Time_Value& aTime, const void* aArgument) override;
  int handle_close(ACE_HANDLE aHandle, ACE_Reactor_Mask aMask) override;

 protected:
  // All of these return false when the connection is over.

  /// Takes what has come.
  virtual bool received(const char* aOctets, std::size_t aLength) = 0;
  /// The time of startTimer is over.
  virtual bool timedOut() { return false; }
  bool send(const char* aOctets, std::size_t aLength);
  /// Lets what has been sent reach the peer, some seconds at most, and hears nothing more.
  bool finish();
  bool isFinishing() const { return mFinishing; }

  /// Starts the stream's one timer, in place of one that runs; real seconds.
  void startTimer(double aSeconds);
  void stopTimer();

 private:
  bool flush();

  ACE_HANDLE mHandle;
  std::size_t mMaxUnsent;
  std::function<void()> mClosed;
  std::string mUnsent;
  bool mFinishing = false;
};

}  // namespace simulator
