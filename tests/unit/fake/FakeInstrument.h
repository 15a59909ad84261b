// A scripted instrument in the place of the three closed libraries: it answers as told and keeps a
// log of every call.
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

/// The functions of the libraries that answer with a status.
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

/// What the instrument says of one parameter.
struct Answer {
  std::int32_t integer = 0;
  double real = 0.0;
  std::uint32_t serviceStatus = 0;
};

/// The controller's clock, in the order in which it is handed over.
struct Clock {
  unsigned int hour = 7;
  unsigned int minute = 4;
  unsigned int second = 9;
  unsigned int day = 5;
  unsigned int month = 3;
  unsigned int year = 2024;
};

/// One call as it arrived: the function with its arguments, and the records of a batch before
/// anything was written to them. The handle of the connection stands as the word "handle".
struct Call {
  std::string text;
  std::vector<ParamList> records;
};

/// While one exists, every call of the libraries comes to it. Owns all objects that it hands out.
class FakeInstrument {
 public:
  /// The handle of the connection: a value that survives no narrowing.
  static constexpr unsigned long cHandle = ~0xABCDUL;
  /// Size of the buffer that getErrorText writes to.
  static constexpr std::size_t cErrorTextSize = 128;

  FakeInstrument();
  ~FakeInstrument();
  FakeInstrument(const FakeInstrument&) = delete;
  FakeInstrument& operator=(const FakeInstrument&) = delete;

  /// The one instrument that exists; null when there is none.
  static FakeInstrument* current();

  // --- scripts; without one every status is 0 ---

  /// The status of each call of a function.
  void setStatus(eFunction aFunction, unsigned long aStatus);
  /// The status of one call, counted from 1; goes before setStatus.
  void setStatusOfCall(eFunction aFunction, unsigned int aCall, unsigned long aStatus);
  /// The answer for a parameter. One without an answer comes back as it was sent.
  void setValue(std::uint32_t aChannel, std::uint32_t aId, Answer aAnswer);
  /// The answer for one step of a parameter; goes before the answer for all steps.
  void setStepValue(std::uint32_t aChannel, std::uint32_t aId, std::uint32_t aStep, Answer aAnswer);
  /// A remote object; null for one that does not arrive, like all that were never set.
  void setObject(unsigned long aNumber, std::unique_ptr<RemoteObject> aObject);
  void setTag(unsigned long aNumber, const std::string& aText);
  void setColumns(unsigned long aNumber, const std::array<std::string, 4>& aTexts);
  /// Text of an error code, up to the whole buffer: 128 characters leave no room for the zero.
  void setErrorText(int aCode, const std::string& aText);
  /// The program info of a channel; one without leaves both results as they were.
  void setProgramInfo(unsigned long aChannel, unsigned long aFirst, unsigned long aSecond);

  Clock clock;
  /// Whether the libraries answer with a status only and write to nothing that they were given.
  bool silent = false;
  /// Called with the records of each batch last, to spoil them.
  std::function<void(ParamList*, unsigned long)> tamper;
  /// Called with the text of each call, to look at the caller's side at that moment.
  std::function<void(const std::string&)> atCall;

  // --- what happened ---

  const std::vector<Call>& log() const { return mLog; }
  /// The texts of all calls in order.
  std::vector<std::string> calls() const;
  /// The texts of all calls in order, each batch with its records behind it, such as
  /// "ReadParamList(handle, 2): 0:23@1 1:1010@1=5": channel and id, and of what is not 0 the
  /// @step, =integer, ~real, #method and !service status.
  std::vector<std::string> traffic() const;
  /// The records of batch n, counted from 0 over reads and writes; empty if there was none.
  std::vector<ParamList> batch(std::size_t n) const;

  // --- for the functions of the libraries ---

  void record(const std::string& aText);
  unsigned long answerStatus(eFunction aFunction);
  unsigned long transfer(eFunction aFunction, const char* aName, unsigned long aHandle,
                         ParamList* aRecords, unsigned long aCount);
  void registered(const Clone& aPrototype, const char* aClass);
  void destroyed(const Clone& aObject, const char* aClass);
  RemoteObject* object(unsigned long aNumber) const;
  std::string errorText(int aCode) const;
  /// Null when nothing was set.
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
