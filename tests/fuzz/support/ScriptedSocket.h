// The client library's sockets, connected to a controller whose answers come from an input.
#pragma once

#include <Message.h>
#include <ObjectTexts.h>
#include <Status.h>

#include <string>

#include "Input.h"

/// How the library should see an answer: as intended, as certainly invalid, or unknown.
enum class eAnswer { eGood, eBroken, eUnclear };

/// During its lifetime, every socket created belongs to it; the library creates one at a time.
class ScriptedSocket {
 public:
  ScriptedSocket();
  ~ScriptedSocket();
  ScriptedSocket(const ScriptedSocket&) = delete;
  ScriptedSocket& operator=(const ScriptedSocket&) = delete;

  /// Prepares the answer to the next request: this message, or a corruption chosen by the input.
  template <class Message>
  eAnswer answer(Input& input, const Message& aMessage) {
    const wire::Frame frame = wire::encode(wire::eType::eConnect, 0, aMessage);
    return prepare(input, {frame.begin() + wire::cHeaderSize, frame.end()});
  }
  /// Whether a request has arrived since.
  bool wasAsked() const { return mAsked; }

  /// Whether all sockets have been closed again.
  bool isClosed() const;

  // --- for the socket functions ---

  static ScriptedSocket& current();
  int open();
  /// Takes part of a request, or -1 if it would block.
  long take(const char* aOctets, std::size_t aSize);
  /// Returns part of the answer; 0 at its end, -1 if more may follow later.
  long give(char* octets, std::size_t aSize);
  /// Whether there will be data before the timeout.
  bool isReady() const;

 private:
  enum class eSpoil {
    eNothing,
    eBody,       ///< any octets in place of the message
    eOctets,     ///< any octets in place of the frame
    eMagic,      ///< another magic number
    eType,       ///< an answer to another call
    eSequence,   ///< an answer to another request
    eLength,     ///< a length that no body can have
    eShortBody,  ///< one octet too short
    eLongBody,   ///< one octet too long
    eEnd,        ///< the connection ends before the answer does
    eHang,       ///< nothing follows after half of the answer
  };

  eAnswer prepare(Input& input, const std::string& aBody);
  void makeAnswer();
  bool hesitates();

  int mHandle = -1;
  std::string mRequest;
  std::string mBody;
  std::string mAnswer;
  std::size_t mGiven = 0;
  std::size_t mPart = 1;  ///< maximum number of octets moved at once
  eSpoil mSpoil = eSpoil::eNothing;
  bool mHesitant = false;  ///< would block every second time
  bool mRefused = false;
  bool mAsked = false;
};
