// The alarms: report and reset.
#pragma once

#include "Common.h"
#include "Section.h"

class SecAlarm : public SectionBase {
 public:
  /// Registers nothing: each row is a separate batch.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Prints the alarm table. Returns 0 after printing, or the status of the failed batch read, with
  /// nothing printed.
  int readGC() override;

  /// Resets all alarms. Prints the verdict and returns its status.
  int writeGC() override;

 private:
  friend class SecAlarmAccess;  // lets tests call the functions below

  // Texts of an alarm's numbers; each function accepts any int.
  /// `type`: -2 to 5, one more than the instrument's code.
  static void getSampleTypeString(ACE_CString& str, int type);
  static void getGroupString(ACE_CString& str, int grp);
  /// Leaves the string unchanged for an id that group 7 does not have. Groups 1 and 2 ask the
  /// instrument.
  void getParamString(ACE_CString& str, int grp, int id) const;
  /// Reads a component's name, at most 20 characters; "Unknown" when that fails.
  void getCompNameByNormIdx(ACE_CString& name, int norm_idx) const;

  /// The row object of the alarm in the map.
  Value makeRow(const ParameterMap& aMap, AllocatorType& al) const;
};
