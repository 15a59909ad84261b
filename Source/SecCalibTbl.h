// The calibration table: its report, and the download of level amounts.
#pragma once

#include "Common.h"
#include "Section.h"

class SecCalibTbl : public SectionBase {
 public:
  /// Keeps the handle only: this section never touches the lent map.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Prints every calibrated peak. Returns 0 after printing, or the status of the batch read that
  /// failed, with nothing printed.
  int readGC() override;

  /// Reads the file of a download. Returns -1 when it cannot be opened, else 0; a file that is not
  /// valid JSON is refused by writeGC.
  int parseFile(char* file) override;

  /// Clears the instrument's table, writes the file's level amounts and prints the verdict. Returns
  /// 0, -1 for a malformed file, or the status of the write that failed; what was done before it
  /// stays.
  int writeGC() override;

 private:
  /// Writes one level amount in a batch of its own.
  unsigned int writeLevel(int chn, int pkid, double amt) const;

  AllocatorType mAllocator{1024};
  Document dom4write{&mAllocator};
  unsigned int peakcount[4] = {0, 0, 0, 0};  ///< peaks reported of each channel
};
