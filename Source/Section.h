// The base class of all operations.
#pragma once

#include "Parameter.h"  // IWYU pragma: export

/// One operation of the tool. The front end constructs it, calls init, then setArgument (operations
/// with a number), parseFile (downloads), and finally exactly one of readGC (reports) or writeGC
/// (all others); then it deletes it.
class SectionBase {
 public:
  SectionBase();
  virtual ~SectionBase();
  SectionBase(const SectionBase&) = delete;
  SectionBase& operator=(const SectionBase&) = delete;

  /// Keeps the borrowed map and the connection handle, and registers the operation's parameters.
  virtual void init(ParameterMap* aMap, unsigned long handle) = 0;
  /// Reads from the instrument and prints the report. Returns the instrument's status, 0 for
  /// success; the front end reports any other status.
  virtual int readGC();
  /// Writes to the instrument and prints the verdict. Returns the same as readGC.
  virtual int writeGC();
  /// Reads the input file of a download. Returns -1 when it cannot be opened, else 0.
  virtual int parseFile(char* file);
  virtual void setArgument(int arg);
  virtual void printJson();

  /// Adds a sub-section, which the caller still owns. Returns false when there are already three.
  bool addSubSection(SectionBase* sec);
  /// Forgets the sub-sections without deleting them.
  void clearSubSection();

 protected:
  ParameterMap* mMap;     ///< owned by the front end
  unsigned long mHandle;  ///< of the open connection
  SectionBase* mSections[3];
  unsigned int mcount;  ///< used entries of mSections
};
