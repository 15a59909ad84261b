// The configuration report: what the instrument is and how it is equipped.
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
  friend class SecConfigAccess;  // lets tests call the functions below

  // Texts that the instrument stores as remote objects. Each function leaves the string unchanged
  // when its object does not arrive.
  void getSiteInfoTag(ACE_CString& aTagName) const;
  void getInstrumentName(ACE_CString& aTagName) const;
  void getBOOTPName(ACE_CString& aTagName) const;
  /// Description of the column of channel 1 to 4; "Unknown" for any other channel.
  void getColumnDescriptions(ACE_CString& aTagName, int channel) const;

  /// Copies the name of a carrier gas code into a buffer of 20 characters; accepts any code.
  static void convertGasType(int aGasType, char* aDescription);

  /// Adds the object of channel 1 to 4.
  void AddChannelConfig(const ParameterMap& aMap, int channel, Value& parent,
                        AllocatorType& al) const;
};
