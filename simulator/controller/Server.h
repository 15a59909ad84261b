// The simulated controller on its network: everything in one thread, under one reactor.
#pragma once

#include <ace/Event_Handler.h>
#include <ace/Event_Handler_Handle_Timeout_Upcall.h>
#include <ace/Monotonic_Time_Policy.h>
#include <ace/Null_Mutex.h>
#include <ace/Reactor.h>
#include <ace/Timer_Heap_T.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "Connection.h"
#include "ControlConnection.h"
#include "ControlSocket.h"
#include "Simulation.h"

namespace simulator {

/// Owns a handle and calls a function whenever it can be read.
class Watch : public ACE_Event_Handler {
 public:
  Watch(ACE_Reactor& aReactor, std::function<void(ACE_HANDLE)> aReadable);
  ~Watch() override;
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  /// False when there is no handle, or the reactor does not take it.
  bool open(ACE_HANDLE aHandle);

  ACE_HANDLE get_handle() const override { return mHandle; }
  int handle_input(ACE_HANDLE aHandle) override;

 private:
  ACE_HANDLE mHandle = ACE_INVALID_HANDLE;
  std::function<void(ACE_HANDLE)> mReadable;
};

class Server {
  /// By a clock that nobody sets.
  using Timers = ACE_Timer_Heap_T<ACE_Event_Handler*, ACE_Event_Handler_Handle_Timeout_Upcall,
                                  ACE_Null_Mutex, ACE_Monotonic_Time_Policy>;

 public:
  explicit Server(Simulation& aSimulation);

  /// Listens on wire::cPort of an IPv4 address, and on the control socket. From here on SIGTERM and
  /// SIGINT do nothing but stop run(), and SIGPIPE does nothing. False, with one line in `error`,
  /// when that is not possible.
  bool open(const std::string& aAddress, const std::string& aControlPath, std::string& error);

  /// Serves until the process is told to stop. False when it ends because the reactor fails.
  bool run();

 private:
  bool openClients(const std::string& aAddress, std::string& error);
  bool openSignals(std::string& error);
  void acceptClient(ACE_HANDLE aListener);
  void acceptControl(ACE_HANDLE aListener);
  void dropSilentClient();

  Simulation& mSimulation;
  Timers mTimers;
  ACE_Reactor mReactor;
  ControlSocket mControlSocket;
  Watch mClientWatch;
  Watch mControlWatch;
  Watch mSignalWatch;
  bool mStopped = false;
  // By the number under which each was accepted, so that the oldest comes first.
  std::map<std::uint64_t, std::unique_ptr<Connection>> mClients;
  std::map<std::uint64_t, std::unique_ptr<ControlConnection>> mControls;
  std::uint64_t mAcceptedClients = 0;
  std::uint64_t mAcceptedControls = 0;
};

}  // namespace simulator
