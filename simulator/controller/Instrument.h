// The simulated instrument: its parameters, its texts, and how they move with simulated time.
#pragma once

#include <InstrumentClient.h>
#include <ace/SString.h>
#include <rapidjson/document.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace simulator {

struct Scenario;

/// One instrument, as its controller shows it. Knows nothing of connections, clocks or faults: the
/// caller says what time it is, in simulated seconds since the start, never going backwards. State
/// is computed from that when asked; the same scenario, seed and calls give the same answers.
/// Statuses are those of wire/Status.h.
class Instrument {
 public:
  /// `aSeed` drives the noise of the measured values.
  Instrument(const Scenario& aScenario, std::uint32_t aSeed);
  ~Instrument();
  Instrument(const Instrument&) = delete;
  Instrument& operator=(const Instrument&) = delete;

  /// Answers each record in its place: values, and a service status of 0 or eParameterUnknown with
  /// zero values. Returns eSuccess, or eBatchIncomplete when a record is unknown.
  std::uint32_t read(double aNow, std::vector<ParamList>& records);

  /// Writes all records or, when one is refused, none. Returns the first refusal:
  /// eParameterUnknown, eReadOnly, eStateForbids (settings are not taken while the instrument
  /// initializes, runs, flushes, cleans, works through a sequence, has an unrecoverable error, or
  /// lacks the part), or eOutOfBounds. Only the field of the parameter's type counts. Some writes
  /// act: one to the stream valve moves it, one to a solution slot loads the solution.
  std::uint32_t write(double aNow, const std::vector<ParamList>& records);

  /// Executes an instrument command. Returns eSuccess, eChannelUnknown for a channel other than 0,
  /// eCommandUnknown, or eStateForbids.
  std::uint32_t command(double aNow, std::uint32_t aChannel, std::uint32_t aCommand);

  /// Marshals remote object `aNumber` as its class would. Returns eSuccess or eObjectUnknown.
  std::uint32_t object(std::uint32_t aNumber, ACE_CString& className, std::vector<char>& contents);

  /// Number of calibrated peaks of a channel, 1 to 4, and of calibration levels. Returns eSuccess
  /// or eChannelUnknown.
  std::uint32_t programInfo(std::uint32_t aChannel, std::uint64_t& first, std::uint64_t& second);

  /// Sets a parameter by its name ("mGC_State", "mColumnTemp1", "mRepeat[2]") past access and
  /// bounds, as an operator of the simulation may. A value that the instrument computes is held
  /// until its state next changes by itself or at a client's request; every other one stays. An
  /// integer parameter takes the whole part, as far as 32 bits hold it, and 0 for NaN. False for an
  /// unknown name, and for a step that its table does not have.
  bool set(double aNow, const std::string& aName, double aValue);

  /// Sets remote object text `aNumber`, 2 to 5; any octets, at most wire::cMaxText. False for
  /// another number or a longer text.
  bool setText(std::uint32_t aNumber, const std::string& aText);

  /// A scenario that goes on from here, everything by name: {"parameters": {...}, "texts": {...},
  /// "peaks": [...], "snapshot": {...}}, parameters of lines, rows and peaks that are there with
  /// their steps. What JSON cannot hold shows as "NaN", "Infinity", "-Infinity", and U+FFFD in a
  /// text, of which 1000 characters are shown; "snapshot" knows its octets.
  void snapshot(double aNow, rapidjson::Document& aDocument);

 private:
  struct State;
  std::unique_ptr<State> mState;
};

}  // namespace simulator
