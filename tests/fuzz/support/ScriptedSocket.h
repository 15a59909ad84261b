// The sockets of the client library, with a controller behind them that answers out of an input.
#pragma once

#include <Message.h>
#include <ObjectTexts.h>
#include <Status.h>

#include <string>

#include "Input.h"

/// What an answer is to the library: as it was meant, surely no answer, or not known.
enum class eAnswer { eGood, eBroken, eUnclear };

/// While it lives, every socket that is made is its own; the library makes one at a time.
class ScriptedSocket {
 public:
  ScriptedSocket();
  ~ScriptedSocket();
  ScriptedSocket(const ScriptedSocket&) = delete;
  ScriptedSocket& operator=(const ScriptedSocket&) = delete;

  /// Prepares the answer to the next request: this message, or the input's idea of how to spoil it.
  template <class Message>
  eAnswer answer(Input& input, const Message& aMessage) {
    const wire::Frame frame = wire::encode(wire::eType::eConnect, 0, aMessage);
    return prepare(input, {frame.begin() + wire::cHeaderSize, frame.end()});
  }
  /// Has there been a request since?
  bool wasAsked() const { return mAsked; }

  /// Have all sockets been closed again?
  bool isClosed() const;

  // --- for the functions of sockets ---

  static ScriptedSocket& current();
  int open();
  /// Takes a part of a request, or refuses for now: -1.
  long take(const char* aOctets, std::size_t aSize);
  /// Gives a part of the answer; 0 at its end, -1 when more may come later.
  long give(char* octets, std::size_t aSize);
  /// Whether there will be something before the time is over.
  bool isReady() const;

 private:
  enum class eSpoil {
    eNothing,
    eBody,       ///< any octets in place of the message
    eOctets,     ///< any octets in place of the frame
    eMagic,      ///< another magic
    eType,       ///< an answer to another call
    eSequence,   ///< an answer to another request
    eLength,     ///< a length that no body can have
    eShortBody,  ///< one octet less than the message needs
    eLongBody,   ///< one more
    eEnd,        ///< the connection ends before the answer does
    eHang,       ///< nothing comes after half of the answer
  };

  eAnswer prepare(Input& input, const std::string& aBody);
  void makeAnswer();
  bool hesitates();

  int mHandle = -1;
  std::string mRequest;
  std::string mBody;
  std::string mAnswer;
  std::size_t mGiven = 0;
  std::size_t mPart = 1;  ///< most octets that move at once
  eSpoil mSpoil = eSpoil::eNothing;
  bool mHesitant = false;  ///< refuses every second time
  bool mRefused = false;
  bool mAsked = false;
};
