// The configuration report: what the instrument is and what it is made of.
#pragma once

#include "Common.h"
#include "Section.h"

class SecConfig : public SectionBase {
 public:
  /// Registers the 24 parameters of the report; sends nothing.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Prints the report. Returns 0 after printing, or the status of a failed batch read, with
  /// nothing printed.
  int readGC() override;

 private:
  friend class SecConfigAccess;  // calls the functions below one by one, in tests

  // Texts that the instrument keeps as remote objects. Each leaves the string as it was when its
  // object does not arrive.
  void getSiteInfoTag(ACE_CString& aTagName) const;
  void getInstrumentName(ACE_CString& aTagName) const;
  void getBOOTPName(ACE_CString& aTagName) const;
  /// Description of the column of channel 1 to 4; "Unknown" for any other channel.
  void getColumnDescriptions(ACE_CString& aTagName, int channel) const;

  /// Name of a carrier gas code into a buffer of 20 characters; takes every code.
  static void convertGasType(int aGasType, char* aDescription);

  /// Adds the object of channel 1 to 4.
  void AddChannelConfig(const ParameterMap& aMap, int channel, Value& parent,
                        AllocatorType& al) const;
};
