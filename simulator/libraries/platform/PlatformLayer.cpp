// Stand-in of the platform layer: ACE's start and end, and this machine's local time.
#include <PlatformLayer.h>
#include <ace/Init_ACE.h>

#include <ctime>

namespace {

// A controller outlives the dates that 32 bits hold.
static_assert(sizeof(std::time_t) >= 8);

template <class Number>
void store(Number* place, Number value) {
  if (place != nullptr) {
    *place = value;
  }
}

}  // namespace

void initializeACE() {
  ACE::init();
}

void finishACE() {
  ACE::fini();
}

// The maker does not say what the seventh is; here it is the seconds that local time is ahead of
// UTC.
unsigned long plxGetTime(unsigned int* hour, unsigned int* minute, unsigned int* second,
                         unsigned int* day, unsigned int* month, unsigned int* year,
                         long* utcOffset) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr) {
    return 1;
  }
  store(hour, static_cast<unsigned int>(local.tm_hour));
  store(minute, static_cast<unsigned int>(local.tm_min));
  // A leap second shows as the second before it: the interface promises 0 to 59.
  store(second, static_cast<unsigned int>(local.tm_sec > 59 ? 59 : local.tm_sec));
  store(day, static_cast<unsigned int>(local.tm_mday));
  store(month, static_cast<unsigned int>(local.tm_mon + 1));
  store(year, static_cast<unsigned int>(local.tm_year + 1900));
  store(utcOffset, static_cast<long>(local.tm_gmtoff));
  return 0;
}
