// The status report: what the instrument and its channels are doing now.
#pragma once

#include "Common.h"
#include "Section.h"

class SecStatus : public SectionBase {
 public:
  /// Registers the 71 parameters of the report; sends nothing.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Prints one snapshot of the instrument. Returns 0 after printing, or the status of a failed
  /// batch read, with nothing printed.
  int readGC() override;

 private:
  friend class SecStatusAccess;  // lets tests call the functions below

  /// The longest run time setpoint of all four channels, installed or not; 0 if none is positive.
  static int GetMaxRunTime(const ParameterMap& aMap);

  /// Sets the string to the instrument's application text; leaves it unchanged if there is none.
  void GetInstrumentApplication(ACE_CString& aTagName) const;

  /// Adds a copy of `name`: {"Setpoint": value of set_key, "Actual": value of act_key}.
  static void AddSetpointAndActual(const ParameterMap& aMap, const char* name, const char* set_key,
                                   const char* act_key, Value& parent, AllocatorType& al);
  /// The same pair for a part that the instrument does not have: "-" for both.
  static void AddEmptySetpointAndActual(const char* name, Value& parent, AllocatorType& al);

  /// Adds the object of channel 1 to 4, or nothing if the channel is not installed.
  static void AddChannel(const ParameterMap& aMap, int channel, Value& parent, AllocatorType& al);

  // Texts of state codes, zero-terminated, into a buffer of at least 128 characters. Each accepts
  // any code; codes without a text of their own share one.
  static void printGC_State(int aValue, char* mGC_State, const ParameterMap& aMap);
  static void printAutoState(int aValue, char* mAutoState, const ParameterMap& aMap);
  static void printRun_Type(int aValue, char* sRun_type, const ParameterMap& aMap);
};
