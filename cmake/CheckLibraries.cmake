# Refuses maker's libraries with which the linker makes a program that cannot run, or runs with two versions of ACE.

# What readelf says of a library: gc_read_library(FILE VARIABLE OPTIONS...)
function(gc_read_library file variable)
  execute_process(COMMAND ${CMAKE_READELF} -W ${ARGN} ${file}
    OUTPUT_VARIABLE text ERROR_QUIET)
  # Square brackets would join the elements of a list.
  string(REGEX REPLACE "\\[([^]\n]*)\\]" "<\\1>" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# Names with a tag in the dynamic section: gc_names_in(FILE TAG VARIABLE)
function(gc_names_in file tag variable)
  gc_read_library(${file} text --dynamic)
  string(REGEX MATCHALL "\\(${tag}\\)[^\n]*<[^>\n]*>" lines "${text}")
  list(TRANSFORM lines REPLACE ".*<(.*)>" "\\1")
  set(${variable} "${lines}" PARENT_SCOPE)
endfunction()

# Class and processor: gc_machine_of(FILE VARIABLE)
function(gc_machine_of file variable)
  gc_read_library(${file} text --file-header)
  string(REGEX MATCHALL "(Class|Machine): +[^\n]+" lines "${text}")
  list(TRANSFORM lines REPLACE ".*: +" "")
  string(REPLACE ";" ", " lines "${lines}")
  set(${variable} "${lines}" PARENT_SCOPE)
endfunction()

gc_machine_of(${ACE_LIBRARY} gc_machine)
gc_names_in(${ACE_LIBRARY} SONAME gc_ace)
set(gc_known ${gc_ace})
foreach(name CLIENT PLATFORM ERRORTEXT)
  set(file "${GC_${name}_LIBRARY}")
  gc_machine_of(${file} machine)
  if(NOT machine STREQUAL gc_machine)
    message(FATAL_ERROR "GC_${name}_LIBRARY: ${file} is no library for this processor: it is for \"${machine}\", "
                        "${ACE_LIBRARY} for \"${gc_machine}\".")
  endif()
  gc_names_in(${file} SONAME soname)
  if(NOT soname)
    message(FATAL_ERROR "GC_${name}_LIBRARY: ${file} has no soname: a tool linked to it would look for it in this "
                        "folder only. Give a copy of it one: patchelf --set-soname NAME FILE")
  endif()
  list(APPEND gc_known ${soname})
endforeach()

foreach(name CLIENT PLATFORM ERRORTEXT)
  set(file "${GC_${name}_LIBRARY}")
  cmake_path(GET file PARENT_PATH folder)
  gc_names_in(${file} NEEDED needed)
  foreach(library IN LISTS needed)
    if(library IN_LIST gc_known)
      continue()
    endif()
    # libACE-6.5.8.so or libACE.so.6.5.8, but not libACE_SSL.
    if(library MATCHES "^libACE(-|[.]so)")
      message(FATAL_ERROR
        "GC_${name}_LIBRARY: ${file} needs ${library}, but this build links ${gc_ace} (${ACE_LIBRARY}). Two versions "
        "of ACE in one process do not work. Build with the maker's: -DACE_LIBRARY=/path/to/${library} "
        "-DACE_INCLUDE_DIR=/path/to/its/headers")
    endif()
    # Found by the compiler, the answer is a path.
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
      OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${found}" AND NOT EXISTS "${folder}/${library}")
      message(FATAL_ERROR "GC_${name}_LIBRARY: ${file} also needs ${library}, which is neither in its folder nor on "
                          "this system. Copy it there.")
    endif()
  endforeach()
endforeach()
