// A kept status, with clocks controlled by the test: its age, and when it is not used. Starts no
// program, so that it can also run under emulation of the controller's processor.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "SharedStatus.h"
#include "TemporaryFolder.h"

namespace gateway {

namespace {

constexpr std::int64_t cSecond = 1000;
constexpr std::int64_t cMinute = cSecond * 60;
constexpr std::int64_t cHour = cMinute * 60;
constexpr std::int64_t cYear = cHour * 24 * 365;
constexpr char cKept[] = "Status: 200 OK\r\n\r\n{\"kept\": 1}";
constexpr std::size_t cLength = sizeof cKept - 1;

/// The parameter is the time since boot.
class KeptStatus : public ::testing::TestWithParam<std::int64_t> {
 protected:
  KeptStatus() { limits.freshStatus = std::chrono::seconds(10); }

  /// Gives the file the current time of the test's clock.
  void write(const std::string& aContent) const {
    std::ofstream(mFile, std::ios::binary) << aContent;
    setDate(now.date);
  }
  void setDate(std::int64_t aDate) const {
    const timespec date = {static_cast<time_t>(aDate / 1000), 0};
    const timespec dates[] = {date, date};
    ASSERT_EQ(::utimensat(AT_FDCWD, mFile.c_str(), dates, 0), 0);
  }
  std::string content() const {
    std::ifstream file(mFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  /// The content kept for an answer received this many milliseconds ago.
  std::string kept(std::int64_t aAge, std::size_t aLength = cLength) const {
    return std::to_string(now.sinceStart - aAge) + ' ' + std::to_string(aLength) + '\n' + cKept;
  }
  std::string share() const {
    return shareStatus(
        mFolder.path(""), limits, [] { return "asked"; }, [this] { return now; });
  }

  Moment now = {GetParam(), 1800000000 * cSecond};
  Limits limits;

 private:
  TemporaryFolder mFolder;
  std::string mFile = mFolder.path("status.answer");
};

INSTANTIATE_TEST_SUITE_P(AfterTheStart, KeptStatus,
                         testing::Values(11 * cSecond, 20 * cSecond, 14 * cMinute, cYear,
                                         20 * cYear, 100 * cYear));

TEST_P(KeptStatus, HasItsAgeInSeconds) {
  write(kept(0));
  EXPECT_EQ(share(), std::string("Age: 0\r\n") + cKept);
  write(kept(2500));
  EXPECT_EQ(share(), std::string("Age: 2\r\n") + cKept);
  write(kept(9999));
  EXPECT_EQ(share(), std::string("Age: 9\r\n") + cKept);
}

TEST_P(KeptStatus, ThatIsTornOrOldOrOfTheFutureIsIgnored) {
  std::string withoutLength = kept(0);
  withoutLength.erase(withoutLength.find(' ') + 1, std::to_string(cLength).size());
  const std::string bad[] = {
      withoutLength,
      "",
      "x",
      "1",
      "1 ",
      "1 1",
      " ",
      "\n",
      "1\n",
      "1 \n",
      std::string(100, '\0'),
      kept(0).substr(0, 5),
      kept(0).substr(0, 30),
      kept(0, cLength - 1),
      kept(0, cLength + 1),
      kept(10 * cSecond),
      kept(-1),
      kept(-5 * cSecond),
      "-" + kept(0),
  };
  for (const std::string& content : bad) {
    write(content);
    EXPECT_EQ(share(), "asked") << content;
  }
}

TEST_P(KeptStatus, OfATimeBeforeTheStartIsIgnored) {
  limits.freshStatus = std::chrono::hours(1000000);
  write(kept(now.sinceStart + 1));
  EXPECT_EQ(share(), "asked");
  write("-" + kept(0));
  EXPECT_EQ(share(), "asked");
}

TEST_P(KeptStatus, OfAnEarlierStartOfTheSystemIsIgnored) {
  for (const std::int64_t date : {-2 * cHour, 2 * cHour}) {
    write(kept(0));
    setDate(now.date + date);
    EXPECT_EQ(share(), "asked");
  }
}

TEST_P(KeptStatus, IsSharedAlsoAfterDatesOf32Bits) {
  for (const std::int64_t date : {2147483647LL, 2147483648LL, 4294967296LL}) {
    now.date = date * cSecond;
    write(kept(1000));
    EXPECT_EQ(share(), std::string("Age: 1\r\n") + cKept) << date;
    setDate(now.date - cHour);
    EXPECT_EQ(share(), "asked") << date;
  }
}

TEST_P(KeptStatus, IsWrittenWithItsTime) {
  EXPECT_EQ(share(), "asked");
  EXPECT_EQ(content(), std::to_string(now.sinceStart) + " 5\nasked");
}

}  // namespace

}  // namespace gateway
