// The usage text, and the option that asks for it.
#include <gtest/gtest.h>

#include "Arguments.h"
#include "UsageText.h"

namespace {
std::string usageOf(std::string aApp) {
  const Output lOutput = capture([&] { print_usage(aApp.data()); });
  EXPECT_EQ(lOutput.out, "");
  return lOutput.err;
}

void expectHelp(std::vector<std::string> aOptions) {
  const Parsed parsed = parse(std::move(aOptions));
  EXPECT_FALSE(parsed.accepted);
  EXPECT_EQ(parsed.result, 0);
  EXPECT_EQ(parsed.output.out, "");
  EXPECT_EQ(parsed.output.err, cUsage);
}
}  // namespace

TEST(UsageTest, IsWrittenToStandardError) {
  EXPECT_EQ(usageOf("GC_Web"), cUsage);
}

TEST(UsageTest, NamesTheProgramAsItWasInvoked) {
  const std::string options = std::string(cUsage).substr(std::string("Usage: GC_Web").size());
  EXPECT_EQ(usageOf("/usr/local/bin/GC_Web"), "Usage: /usr/local/bin/GC_Web" + options);
  EXPECT_EQ(usageOf(""), "Usage: " + options);
  EXPECT_EQ(usageOf("%s %n"), "Usage: %s %n" + options);
  const std::string longName(5000, 'g');
  EXPECT_EQ(usageOf(longName), "Usage: " + longName + options);
}

TEST(UsageTest, HelpPrintsItAndSucceeds) {
  expectHelp({"-h"});
}

TEST(UsageTest, HelpEndsTheCommandLine) {
  expectHelp({"-h", "-t"});
  expectHelp({"-h", "-X"});
  expectHelp({"-h", "-V", "47"});
  expectHelp({"-h", "-s", "0.0.0.0"});
  expectHelp({"-h", "extra"});
  expectHelp({"-hX"});
}

TEST(UsageTest, HelpMayComeAfterOtherOptions) {
  expectHelp({"-t", "-h"});
  expectHelp({"-Ph"});
  expectHelp({"-s", "0.0.0.0", "-h"});
  expectHelp({"extra", "-h"});
}

TEST(UsageTest, ComplaintsNameTheProgramAsItWasInvoked) {
  Arguments arguments({"./cgi-bin/gc", "-X"});
  Request request;
  int result = 99;
  const Output output = capture([&] {
    EXPECT_FALSE(parseCommandLine(arguments.count(), arguments.words(), request, result));
  });
  EXPECT_EQ(result, -1);
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "./cgi-bin/gc: invalid option -- 'X'\nUsage: ./cgi-bin/gc" +
                            std::string(cUsage).substr(std::string("Usage: GC_Web").size()));
}
