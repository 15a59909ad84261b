// A section at work: on a scripted instrument, with the map that the program lends it.
#pragma once

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "Capture.h"
#include "FakeInstrument.h"
#include "TestMap.h"

/// Statuses that an instrument refuses with, at the ends of the ranges of int and of 32 bits; 28 is
/// one where no batch is read.
constexpr unsigned long cRefusals[] = {1, 5, 28, 0x7FFFFFFFUL, 0x80000000UL, 0xFFFFFFFFUL};

/// Statuses with which a batch read fails everywhere: all but 0 and 28.
constexpr unsigned long cReadFailures[] = {1,           5, 27, 29, 56, 0x7FFFFFFFUL, 0x80000000UL,
                                           0xFFFFFFFFUL};

/// The status as an operation returns it and standard error shows it: its 32 bits, signed.
inline int asInt(unsigned long aStatus) {
  return aStatus > INT_MAX ? -static_cast<int>(0xFFFFFFFFUL - aStatus) - 1
                           : static_cast<int>(aStatus);
}

/// The result object as it is printed.
inline std::string resultObject(unsigned long aCode, const std::string& aText) {
  return "{\n    \"ErrorCode\": " + std::to_string(aCode) + ",\n    \"Msg\": \"" + aText +
         "\"\n}\n";
}

template <class Section>
class SectionBench {
 public:
  SectionBench() { mSection.init(&mMap, FakeInstrument::cHandle); }

  /// The result of the report; what it wrote is in mOutput. Nothing writes to standard error.
  int read() {
    int lResult = -99;
    mOutput = capture([&] { lResult = mSection.readGC(); });
    EXPECT_EQ(mOutput.err, "");
    return lResult;
  }
  /// The document of a report that succeeds.
  std::string document() {
    EXPECT_EQ(read(), 0);
    return mOutput.out;
  }
  /// The result of the command; what it wrote is in mOutput.
  int write() {
    int lResult = -99;
    mOutput = capture([&] { lResult = mSection.writeGC(); });
    return lResult;
  }

 protected:
  FakeInstrument mInstrument;
  TestMap mMap{128};
  Section mSection;
  Output mOutput;
};
