// The automation sequence table: its report and its download.
#pragma once

#include "Common.h"
#include "Section.h"

class SecSequenceTbl : public SectionBase {
 public:
  /// Registers nothing: header and lines are separate batches.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Prints the table. Returns 0 after printing, or the status of the failed batch read, with
  /// nothing printed.
  int readGC() override;

  /// Reads the file of a download. Returns -1 when it cannot be opened, else 0; writeGC rejects a
  /// file that is not valid JSON.
  int parseFile(char* file) override;

  /// Replaces the instrument's table by the file's and prints the verdict. Returns 0, -1 for a
  /// malformed file, or the status of the failed step; earlier steps are not undone.
  int writeGC() override;

 private:
  friend class SecSequenceTblAccess;  // lets tests call the functions below

  /// Copies the text of a run type code, zero-terminated, into a buffer of 30 characters.
  static void printRun_Type(int aValue, char* sRun_type);
  /// Run type code of a text, compared exactly; 0 for any other text.
  static int getRunTypeFromString(const ACE_CString& str);

  /// Writes one line from a row of the file; n counts from 1.
  unsigned int writeLine(ParameterMap& aMap, const Value& row, unsigned long n) const;

  AllocatorType mAllocator{1024};
  Document dom4write{&mAllocator};
};
