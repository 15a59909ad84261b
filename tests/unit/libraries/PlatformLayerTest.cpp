// The controller's clock, in time zones set by the tests.
#include <PlatformLayer.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

/// Sets the time zone for the duration of a test.
class TimeZone {
 public:
  explicit TimeZone(const char* aZone) {
    const char* before = std::getenv("TZ");
    mHadOne = before != nullptr;
    mBefore = mHadOne ? before : "";
    ::setenv("TZ", aZone, 1);
    ::tzset();
  }
  ~TimeZone() {
    mHadOne ? ::setenv("TZ", mBefore.c_str(), 1) : ::unsetenv("TZ");
    ::tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  bool mHadOne;
  std::string mBefore;
};

struct Clock {
  unsigned int hour = UINT_MAX;
  unsigned int minute = UINT_MAX;
  unsigned int second = UINT_MAX;
  unsigned int day = UINT_MAX;
  unsigned int month = UINT_MAX;
  unsigned int year = UINT_MAX;
  long ahead = LONG_MIN;
};

unsigned long read(Clock& clock) {
  return plxGetTime(&clock.hour, &clock.minute, &clock.second, &clock.day, &clock.month,
                    &clock.year, &clock.ahead);
}

/// The clock's time in seconds since 1970.
std::time_t shown(const Clock& aClock) {
  std::tm fields{};
  fields.tm_hour = static_cast<int>(aClock.hour);
  fields.tm_min = static_cast<int>(aClock.minute);
  fields.tm_sec = static_cast<int>(aClock.second);
  fields.tm_mday = static_cast<int>(aClock.day);
  fields.tm_mon = static_cast<int>(aClock.month) - 1;
  fields.tm_year = static_cast<int>(aClock.year) - 1900;
  return ::timegm(&fields) - aClock.ahead;
}

void expectNow() {
  Clock clock;
  const std::time_t before = std::time(nullptr);
  ASSERT_EQ(0UL, read(clock));
  const std::time_t after = std::time(nullptr);
  EXPECT_LE(before, shown(clock));
  EXPECT_GE(after, shown(clock));
  EXPECT_LE(clock.hour, 23U);
  EXPECT_LE(clock.minute, 59U);
  EXPECT_LE(clock.second, 59U);
}

TEST(PlatformLayer, ClockShowsNow) {
  expectNow();
}

TEST(PlatformLayer, ClockIsLocal) {
  for (const char* zone : {"UTC0", "EAST-14", "WEST12", "HALF-5:30"}) {
    SCOPED_TRACE(zone);
    const TimeZone here(zone);
    expectNow();
  }
}

TEST(PlatformLayer, SeventhIsSecondsAheadOfUtc) {
  const TimeZone here("HALF-5:30");
  Clock clock;
  read(clock);
  EXPECT_EQ(19800, clock.ahead);
}

TEST(PlatformLayer, AnyPointerMayBeNull) {
  EXPECT_EQ(0UL, plxGetTime(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
  Clock clock;
  EXPECT_EQ(0UL, plxGetTime(nullptr, nullptr, nullptr, nullptr, nullptr, &clock.year, nullptr));
  EXPECT_GE(clock.year, 2024U);
}

// In a separate process: the last finishACE destroys the object manager.
TEST(PlatformLayer, AceStartsAndEnds) {
  const auto run = [] {
    initializeACE();
    finishACE();
    std::exit(0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "^$");
}

}  // namespace
