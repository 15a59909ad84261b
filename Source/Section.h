// The base class of all operations.
#pragma once

#include "Parameter.h"  // IWYU pragma: export

/// One operation of the tool. The front end constructs it, calls init, then setArgument (operations
/// with a number), parseFile (downloads), and last exactly one of readGC (reports) or writeGC (all
/// others); then it deletes it.
class SectionBase {
 public:
  SectionBase();
  virtual ~SectionBase();
  SectionBase(const SectionBase&) = delete;
  SectionBase& operator=(const SectionBase&) = delete;

  /// Keeps the lent map and the connection handle, and registers the operation's parameters.
  virtual void init(ParameterMap* aMap, unsigned long handle) = 0;
  /// Reads from the instrument and prints the report. Returns the instrument's status, 0 for
  /// success; the front end reports any other.
  virtual int readGC();
  /// Writes to the instrument and prints the verdict. Returns as readGC does.
  virtual int writeGC();
  /// Reads the input file of a download. Returns -1 when it cannot be opened, else 0.
  virtual int parseFile(char* file);
  virtual void setArgument(int arg);
  virtual void printJson();

  /// Adds a sub-section, which stays the caller's. Returns false when three are held already.
  bool addSubSection(SectionBase* sec);
  /// Forgets the sub-sections without deleting them.
  void clearSubSection();

 protected:
  ParameterMap* mMap;     ///< lent by the front end
  unsigned long mHandle;  ///< of the open connection
  SectionBase* mSections[3];
  unsigned int mcount;  ///< used entries of mSections
};
