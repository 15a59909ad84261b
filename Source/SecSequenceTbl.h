// The automation sequence table: its report and its download.
#pragma once

#include "Common.h"
#include "Section.h"

class SecSequenceTbl : public SectionBase {
 public:
  /// Registers nothing: header and lines are batches of their own.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Prints the table. Returns 0 after printing, or the status of the batch read that failed, with
  /// nothing printed.
  int readGC() override;

  /// Reads the file of a download. Returns -1 when it cannot be opened, else 0; a file that is not
  /// valid JSON is refused by writeGC.
  int parseFile(char* file) override;

  /// Replaces the instrument's table by the file's and prints the verdict. Returns 0, -1 for a
  /// malformed file, or the status of the step that failed; what was done before it stays.
  int writeGC() override;

 private:
  friend class SecSequenceTblAccess;  // calls the functions below one by one, in tests

  /// Text of a run type code, zero-terminated, into a buffer of 30 characters.
  static void printRun_Type(int aValue, char* sRun_type);
  /// Run type code of a text, compared exactly; 0 for any text that is none.
  static int getRunTypeFromString(const ACE_CString& str);

  /// Writes one line from a row of the file; n counts from 1.
  unsigned int writeLine(ParameterMap& aMap, const Value& row, unsigned long n) const;

  AllocatorType mAllocator{1024};
  Document dom4write{&mAllocator};
};
