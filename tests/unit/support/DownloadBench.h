// A download in progress: a section that reads a file and writes it to a scripted instrument.
#pragma once

#include "SectionBench.h"
#include "TemporaryFile.h"

template <class Section>
class DownloadBench : public SectionBench<Section> {
 public:
  /// The result of downloading a file with this content.
  int download(const std::string& aContent) {
    TemporaryFile lFile(aContent);
    parse(lFile.name());
    const int lResult = this->write();
    EXPECT_EQ(this->mOutput.err, "");
    return lResult;
  }
  /// Reads a file that can be opened; prints nothing.
  void parse(char* aName) {
    const Output lOutput = capture([&] { EXPECT_EQ(this->mSection.parseFile(aName), 0); });
    EXPECT_EQ(lOutput.out, "");
    EXPECT_EQ(lOutput.err, "");
  }
};
