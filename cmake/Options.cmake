# What every target of the project is compiled and linked with: link to gc_options.
add_library(gc_options INTERFACE)
target_compile_options(gc_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  -fvisibility=hidden -fvisibility-inlines-hidden)
# A request lives for milliseconds, most of them in the loader: short symbol tables, no lazy
# binding machinery, and read-only relocations as hardening that costs nothing more.
define_property(TARGET PROPERTY GC_HARDENED INHERITED BRIEF_DOCS "Whether relocations end read-only")
set_property(DIRECTORY PROPERTY GC_HARDENED ON)
target_link_options(gc_options INTERFACE
  -Wl,--hash-style=gnu -Wl,-O1 -Wl,--as-needed
  $<$<BOOL:$<TARGET_PROPERTY:GC_HARDENED>>:-Wl,-z,relro,-z,now>)

set(GC_SANITIZE "" CACHE STRING "Sanitizers, as in -fsanitize=")
if(GC_SANITIZE)
  target_compile_options(gc_options INTERFACE
    -fsanitize=${GC_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(gc_options INTERFACE
      -fsanitize-ignorelist=${CMAKE_SOURCE_DIR}/cmake/sanitizer-ignore.txt)
  endif()
  target_compile_definitions(gc_options INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(gc_options INTERFACE -fsanitize=${GC_SANITIZE})
endif()

# For programs without shared libraries. The sanitizers' are shared; not every processor's C library
# can put a static program at an address of chance.
include(CheckLinkerFlag)
check_linker_flag(CXX -static-pie GC_CAN_STATIC_PIE)
if(GC_SANITIZE)
  set(GC_STATIC "")
elseif(GC_CAN_STATIC_PIE)
  set(GC_STATIC -static-pie)
else()
  set(GC_STATIC -static)
endif()
