# ACE and rapidjson, as imported targets. We cannot fix their headers: SYSTEM restricts warnings to our
# own code.
find_library(ACE_LIBRARY ACE REQUIRED)
find_path(ACE_INCLUDE_DIR ace/ACE.h REQUIRED)
find_path(RAPIDJSON_INCLUDE_DIR rapidjson/rapidjson.h REQUIRED)

add_library(ACE::ACE UNKNOWN IMPORTED)
set_target_properties(ACE::ACE PROPERTIES
  IMPORTED_LOCATION ${ACE_LIBRARY}
  INTERFACE_INCLUDE_DIRECTORIES ${ACE_INCLUDE_DIR})

add_library(rapidjson INTERFACE IMPORTED)
set_target_properties(rapidjson PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES ${RAPIDJSON_INCLUDE_DIR})
