// A controller with scripted answers, on a loopback address of its own.
#pragma once

#include <Message.h>
#include <Status.h>

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

/// A request as received.
struct Request {
  wire::Header header;
  wire::Frame body;
};

struct Answer {
  enum class eThen { eStay, eHangUp };

  wire::Frame octets;
  eThen then = eThen::eStay;
  std::size_t singlyFrom = cNever;     ///< from this octet on, octets are sent one at a time
  std::chrono::milliseconds pause{0};  ///< before each of those

  static constexpr std::size_t cNever = static_cast<std::size_t>(-1);
};

/// Serves one connection at a time in its own thread. Answers Connect and Disconnect with success
/// unless told otherwise; a request without a scripted answer gets none.
class ScriptedController {
 public:
  using Script = std::function<Answer(const Request&)>;

  ScriptedController();
  ~ScriptedController();
  ScriptedController(const ScriptedController&) = delete;
  ScriptedController& operator=(const ScriptedController&) = delete;

  /// In the form for startupGC.
  long address() const { return mAddress; }

  void on(wire::eType aType, Script aScript);

  /// Every request so far, Connect and Disconnect included.
  std::vector<Request> requests() const;

 private:
  void serve();
  void serveConnection(int aSocket);
  Answer answerTo(const Request& aRequest);

  long mAddress = 0;
  int mListener = -1;
  int mStop[2] = {-1, -1};  ///< closing the second end wakes the thread from any wait
  mutable std::mutex mMutex;
  std::map<wire::eType, Script> mScripts;
  std::vector<Request> mRequests;
  std::thread mThread;
};

/// A listener on a free loopback address at the controllers' port; `address` in the form for
/// startupGC.
int listenOnFreeAddress(int aBacklog, long& address);

/// The frame with a message that answers a request.
template <class Message>
Answer answer(const Request& aRequest, const Message& aMessage) {
  return {wire::encode(aRequest.header.type, aRequest.header.sequence, aMessage)};
}
