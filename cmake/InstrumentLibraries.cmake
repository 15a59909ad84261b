# The three closed-source libraries: the maker's if all three are named, the stand-ins if none is.
# Either way the tool links to the targets gc::client, gc::platform and gc::errortext.
set(gc_named 0)
foreach(name CLIENT PLATFORM ERRORTEXT)
  if(GC_${name}_LIBRARY)
    math(EXPR gc_named "${gc_named} + 1")
    if(NOT EXISTS "${GC_${name}_LIBRARY}")
      message(FATAL_ERROR "GC_${name}_LIBRARY: no such file: ${GC_${name}_LIBRARY}")
    endif()
  endif()
endforeach()

if(gc_named EQUAL 0)
  set(GC_USE_STAND_INS ON)
elseif(gc_named EQUAL 3)
  set(GC_USE_STAND_INS OFF)
  include(cmake/CheckLibraries.cmake)
  foreach(name CLIENT PLATFORM ERRORTEXT)
    string(TOLOWER ${name} target)
    add_library(gc::${target} UNKNOWN IMPORTED)
    # Libraries that this one needs may be beside it.
    cmake_path(GET GC_${name}_LIBRARY PARENT_PATH folder)
    set_target_properties(gc::${target} PROPERTIES
      IMPORTED_LOCATION "${GC_${name}_LIBRARY}"
      INTERFACE_LINK_OPTIONS "LINKER:-rpath-link,${folder}")
  endforeach()
else()
  message(FATAL_ERROR "Set all of GC_CLIENT_LIBRARY, GC_PLATFORM_LIBRARY and GC_ERRORTEXT_LIBRARY "
                      "for the maker's libraries, or none for the stand-ins.")
endif()
