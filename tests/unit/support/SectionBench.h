// A section in use: on a scripted instrument, with the map that the program passes to it.
#pragma once

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "Capture.h"
#include "FakeInstrument.h"
#include "TestMap.h"

/// Statuses of a refusal, at the limits of int and of 32 bits; 28 is a refusal except in a batch
/// read.
constexpr unsigned long cRefusals[] = {1, 5, 28, 0x7FFFFFFFUL, 0x80000000UL, 0xFFFFFFFFUL};

/// Statuses that make a batch read fail everywhere: any but 0 and 28.
constexpr unsigned long cReadFailures[] = {1,           5, 27, 29, 56, 0x7FFFFFFFUL, 0x80000000UL,
                                           0xFFFFFFFFUL};

/// The status as returned by an operation and shown on standard error: its 32 bits, signed.
inline int asInt(unsigned long aStatus) {
  return aStatus > INT_MAX ? -static_cast<int>(0xFFFFFFFFUL - aStatus) - 1
                           : static_cast<int>(aStatus);
}

/// The result object as printed.
inline std::string resultObject(unsigned long aCode, const std::string& aText) {
  return "{\n    \"ErrorCode\": " + std::to_string(aCode) + ",\n    \"Msg\": \"" + aText +
         "\"\n}\n";
}

template <class Section>
class SectionBench {
 public:
  SectionBench() { mSection.init(&mMap, FakeInstrument::cHandle); }

  /// The status returned by the report; its output is in mOutput. Nothing goes to standard error.
  int read() {
    int lResult = -99;
    mOutput = capture([&] { lResult = mSection.readGC(); });
    EXPECT_EQ(mOutput.err, "");
    return lResult;
  }
  /// The document of a successful report.
  std::string document() {
    EXPECT_EQ(read(), 0);
    return mOutput.out;
  }
  /// The status returned by the command; its output is in mOutput.
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
