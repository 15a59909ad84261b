// Who gets the version: a person at a command line, never a web server.
#include "Version.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

namespace gateway {

namespace {

class Version : public ::testing::Test {
 protected:
  void TearDown() override { ::unsetenv("GATEWAY_INTERFACE"); }

  static bool isAsked(const char* aFirst, int argc) {
    const std::array<const char*, 4> words{"report", aFirst, "--version", nullptr};
    return isAskedForVersion(argc, words.data());
  }
};

TEST_F(Version, IsPrintedForAPerson) {
  EXPECT_TRUE(isAsked("--version", 2));
}

TEST_F(Version, IsTheOnlyArgument) {
  EXPECT_FALSE(isAsked("--version", 1));
  EXPECT_FALSE(isAsked("--version", 3));
  EXPECT_FALSE(isAsked("-version", 2));
}

TEST_F(Version, IsNotPrintedForAWebServer) {
  ::setenv("GATEWAY_INTERFACE", "CGI/1.1", 1);
  EXPECT_FALSE(isAsked("--version", 2));
}

TEST_F(Version, IsThatOfTheProject) {
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(printVersion("report"), 0);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "report " GC_VERSION "\n");
}

}  // namespace

}  // namespace gateway
