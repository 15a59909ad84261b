# gc_test_after_boot(NAME PROGRAM) runs tests of clocks that start at boot, both soon and long after
# boot. One build is enough.
function(gc_test_after_boot name program)
  if(GC_SANITIZE OR CMAKE_CROSSCOMPILING)
    return()
  endif()
  foreach(seconds 20 600 31536000)
    add_test(NAME ${name}.${seconds}-s-after-boot
      COMMAND ${PROJECT_SOURCE_DIR}/tests/checks/after-boot ${seconds} $<TARGET_FILE:${program}>)
    set_tests_properties(${name}.${seconds}-s-after-boot PROPERTIES
      TIMEOUT 120 SKIP_RETURN_CODE 77)
  endforeach()
endfunction()
