// The alarms: their report and their reset.
#pragma once

#include "Common.h"
#include "Section.h"

class SecAlarm : public SectionBase {
 public:
  /// Registers nothing: every row is a batch of its own.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Prints the alarm table. Returns 0 after printing, or the status of the batch read that failed,
  /// with nothing printed.
  int readGC() override;

  /// Resets all alarms. Prints the verdict and returns its status.
  int writeGC() override;

 private:
  friend class SecAlarmAccess;  // calls the functions below one by one, in tests

  // Texts of an alarm's numbers; each takes every int.
  /// `type`: -2 to 5, one more than the instrument's code.
  static void getSampleTypeString(ACE_CString& str, int type);
  static void getGroupString(ACE_CString& str, int grp);
  /// Leaves the string as it was for group 7 and an id that it does not have. Groups 1 and 2 ask
  /// the instrument.
  void getParamString(ACE_CString& str, int grp, int id) const;
  /// Reads a component's name, at most 20 characters; "Unknown" when that fails.
  void getCompNameByNormIdx(ACE_CString& name, int norm_idx) const;

  /// The row object of the alarm that the map holds.
  Value makeRow(const ParameterMap& aMap, AllocatorType& al) const;
};
