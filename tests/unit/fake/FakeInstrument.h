// A scripted instrument in place of the three closed libraries: it gives scripted answers and logs
// every call.
#pragma once

#include <InstrumentClient.h>
#include <RemoteObjects.h>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

/// The library functions that return a status.
enum class eFunction {
  eStartupGC,
  eEstablishConnection,
  eReadParamList,
  eWriteParamList,
  eExecuteCommand,
  eReadObject,
  eReadProgramInfo,
  eBreakConnection,
  eShutdownGC,
  eGetTime,
  eCount
};

/// The instrument's answer for one parameter.
struct Answer {
  std::int32_t integer = 0;
  double real = 0.0;
  std::uint32_t serviceStatus = 0;
};

/// The controller's clock, in the order of plxGetTime's results.
struct Clock {
  unsigned int hour = 7;
  unsigned int minute = 4;
  unsigned int second = 9;
  unsigned int day = 5;
  unsigned int month = 3;
  unsigned int year = 2024;
};

/// One call as received: the function with its arguments, and the records of a batch before they
/// were changed. The handle of the connection is logged as the word "handle".
struct Call {
  std::string text;
  std::vector<ParamList> records;
};

/// While one exists, it receives every library call. Owns all objects that it hands out.
class FakeInstrument {
 public:
  /// The handle of the connection: a value that any narrowing would change.
  static constexpr unsigned long cHandle = ~0xABCDUL;
  /// Size of the buffer that getErrorText fills.
  static constexpr std::size_t cErrorTextSize = 128;

  FakeInstrument();
  ~FakeInstrument();
  FakeInstrument(const FakeInstrument&) = delete;
  FakeInstrument& operator=(const FakeInstrument&) = delete;

  /// The existing instrument; null if there is none.
  static FakeInstrument* current();

  // --- scripts; without them every status is 0 ---

  /// The status of each call of a function.
  void setStatus(eFunction aFunction, unsigned long aStatus);
  /// The status of one call, counted from 1; takes precedence over setStatus.
  void setStatusOfCall(eFunction aFunction, unsigned int aCall, unsigned long aStatus);
  /// The answer for a parameter. A parameter without one returns unchanged.
  void setValue(std::uint32_t aChannel, std::uint32_t aId, Answer aAnswer);
  /// The answer for one step of a parameter; takes precedence over the answer for all steps.
  void setStepValue(std::uint32_t aChannel, std::uint32_t aId, std::uint32_t aStep, Answer aAnswer);
  /// A remote object; null, the default, for one that does not arrive.
  void setObject(unsigned long aNumber, std::unique_ptr<RemoteObject> aObject);
  void setTag(unsigned long aNumber, const std::string& aText);
  void setColumns(unsigned long aNumber, const std::array<std::string, 4>& aTexts);
  /// Text of an error code, up to the whole buffer: 128 characters leave no room for the zero.
  void setErrorText(int aCode, const std::string& aText);
  /// The program info of a channel; without it both results stay unchanged.
  void setProgramInfo(unsigned long aChannel, unsigned long aFirst, unsigned long aSecond);

  Clock clock;
  /// Whether the libraries only return a status and write nothing to the caller's data.
  bool silent = false;
  /// Called last with the records of each batch, to corrupt them.
  std::function<void(ParamList*, unsigned long)> tamper;
  /// Called with the text of each call, to inspect the caller's state at that moment.
  std::function<void(const std::string&)> atCall;

  // --- the log ---

  const std::vector<Call>& log() const { return mLog; }
  /// The texts of all calls in order.
  std::vector<std::string> calls() const;
  /// The texts of all calls in order, each batch followed by its records, such as
  /// "ReadParamList(handle, 2): 0:23@1 1:1010@1=5": channel and id, and, if not 0, @step, =integer,
  /// ~real, #method and !service status.
  std::vector<std::string> traffic() const;
  /// The records of batch n, counted from 0 over reads and writes; empty if there is none.
  std::vector<ParamList> batch(std::size_t n) const;

  // --- for the library functions ---

  void record(const std::string& aText);
  unsigned long answerStatus(eFunction aFunction);
  unsigned long transfer(eFunction aFunction, const char* aName, unsigned long aHandle,
                         ParamList* aRecords, unsigned long aCount);
  void registered(const Clone& aPrototype, const char* aClass);
  void destroyed(const Clone& aObject, const char* aClass);
  RemoteObject* object(unsigned long aNumber) const;
  std::string errorText(int aCode) const;
  /// Null if nothing was set.
  const std::pair<unsigned long, unsigned long>* programInfo(unsigned long aChannel) const;

 private:
  using Address = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;

  std::vector<Call> mLog;
  std::map<eFunction, unsigned long> mStatus;
  std::map<std::pair<eFunction, unsigned int>, unsigned long> mStatusOfCall;
  std::map<eFunction, unsigned int> mCallCount;
  std::map<std::pair<std::uint32_t, std::uint32_t>, Answer> mValues;
  std::map<Address, Answer> mStepValues;
  std::map<unsigned long, std::unique_ptr<RemoteObject>> mObjects;
  std::map<int, std::string> mErrorTexts;
  std::map<unsigned long, std::pair<unsigned long, unsigned long>> mProgramInfo;
  const Clone* mPrototype = nullptr;
};
