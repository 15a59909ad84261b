// The command line has no option for the version: `strings GC_Web | grep GC_Web` shows it.

namespace {

[[gnu::used]] constexpr char cVersion[] = "GC_Web " GC_WEB_VERSION;

}  // namespace
