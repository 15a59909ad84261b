// File names of downloads on the command line, of every length.
#include <gtest/gtest.h>

#include "Arguments.h"

namespace {
/// A name of the given length without repetitions near the limit.
std::string name(std::size_t aLength) {
  std::string lName;
  while (lName.size() < aLength) {
    lName += static_cast<char>('a' + lName.size() % 26);
  }
  return lName;
}

class FileNameTest : public testing::TestWithParam<const char*> {
 protected:
  std::string parsedName(const std::string& aName) {
    const Parsed lParsed = parse({GetParam(), aName});
    EXPECT_TRUE(lParsed.accepted);
    EXPECT_EQ(lParsed.output.err, "");
    return lParsed.request.filename.data();
  }
};
}  // namespace

TEST_P(FileNameTest, IsKeptWholeUpTo256Characters) {
  for (const std::size_t length : {1U, 2U, 100U, 255U, 256U}) {
    EXPECT_EQ(parsedName(name(length)), name(length));
  }
}

TEST_P(FileNameTest, IsCutBeyond256Characters) {
  EXPECT_EQ(parsedName(name(257)), name(256));
  EXPECT_EQ(parsedName(name(5000)), name(256));
}

TEST_P(FileNameTest, IsTakenAsItIs) {
  for (const char* const text : {"/tmp/a b.json", "-", " ", "%s", "\xFF\xFE", "../x\n"}) {
    EXPECT_EQ(parsedName(text), text);
  }
}

TEST_P(FileNameTest, LaterNameReplacesALongerOneWhole) {
  const Parsed parsed = parse({"-Q", name(5000), GetParam(), "short"});
  EXPECT_TRUE(parsed.accepted);
  EXPECT_STREQ(parsed.request.filename.data(), "short");
}

INSTANTIATE_TEST_SUITE_P(Options, FileNameTest, testing::Values("-Q", "-C"));
