// Sends sanitizer reports to the terminal even while a test captures standard error.
#if defined(__SANITIZE_ADDRESS__)
#define GC_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define GC_SANITIZED
#endif
#endif

#ifdef GC_SANITIZED
#include <sanitizer/common_interface_defs.h>
#include <unistd.h>

#include <cstdint>

namespace {
bool reportToTerminal() {
  const std::intptr_t lDescriptor = dup(STDERR_FILENO);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the interface takes a descriptor in a pointer
  __sanitizer_set_report_fd(reinterpret_cast<void*>(lDescriptor));
  return true;
}

const bool sReportsToTerminal = reportToTerminal();
}  // namespace
#endif
