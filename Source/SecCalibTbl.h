// The calibration table: its report, and the download of level amounts.
#pragma once

#include "Common.h"
#include "Section.h"

class SecCalibTbl : public SectionBase {
 public:
  /// Keeps only the handle: this section never uses the map it is given.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Prints every calibrated peak. Returns 0 after printing, or the status of the failed batch
  /// read, with nothing printed.
  int readGC() override;

  /// Reads the file of a download. Returns -1 when it cannot be opened, else 0; writeGC rejects a
  /// file that is not valid JSON.
  int parseFile(char* file) override;

  /// Clears the instrument's table, writes the file's level amounts and prints the verdict. Returns
  /// 0, -1 for a malformed file, or the status of the failed write; earlier writes are not undone.
  int writeGC() override;

 private:
  /// Writes one level amount in a separate batch.
  unsigned int writeLevel(int chn, int pkid, double amt) const;

  AllocatorType mAllocator{1024};
  Document dom4write{&mAllocator};
  unsigned int peakcount[4] = {0, 0, 0, 0};  ///< peaks reported per channel
};
