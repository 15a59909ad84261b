# Compiler and linker options for every target of the project: link to gc_options.
add_library(gc_options INTERFACE)
target_compile_options(gc_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  -fvisibility=hidden -fvisibility-inlines-hidden)
# A request takes milliseconds, most of them in the loader: short symbol tables, no lazy binding.
target_link_options(gc_options INTERFACE -Wl,--hash-style=gnu -Wl,-O1 -Wl,--as-needed)

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

# The same as Debian's hardening=+all, including branch protection where the processor has it;
# tests/checks/hardening checks the result.
include(CheckPIESupported)
check_pie_supported()
target_compile_options(gc_options INTERFACE
  -fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security)
target_link_options(gc_options INTERFACE -Wl,-z,relro,-z,now)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|i.86)$")
  target_compile_options(gc_options INTERFACE -fcf-protection)
elseif(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
  target_compile_options(gc_options INTERFACE -mbranch-protection=standard)
endif()
# Only an optimised build can be fortified; the sanitizers check more. When fortified, the C library marks
# results that must be used, and g++ warns in spite of a cast to void; clang++ checks [[nodiscard]].
string(TOUPPER "${CMAKE_BUILD_TYPE}" gc_build_type)
if(NOT GC_SANITIZE AND
    "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${gc_build_type}}" MATCHES "-O[123gs]")
  target_compile_options(gc_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -Wno-unused-result)
endif()

# For programs that start often: they share the C library only (docs/decisions/0018). The sanitizers need a
# shared runtime.
if(GC_SANITIZE)
  set(GC_STATIC_RUNTIME "")
else()
  set(GC_STATIC_RUNTIME -static-libstdc++ -static-libgcc)
endif()

# Compiled once for all clones of the project on this machine: paths are relative to the clone.
option(GC_CACHE_COMPILATIONS "Compile with ccache if it is installed" ON)
find_program(GC_CCACHE ccache)
if(GC_CACHE_COMPILATIONS AND GC_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
    CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_SLOPPINESS=pch_defines,time_macros ${GC_CCACHE})
  add_compile_options(-fdebug-prefix-map=${CMAKE_BINARY_DIR}=.)
endif()

# Library headers take longer to compile than the tests that include them.
option(GC_PRECOMPILE "Precompile headers of libraries for the tests" OFF)
function(gc_precompile target)
  if(GC_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()
