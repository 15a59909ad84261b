# The simulated instrument, without network, clock or faults.
add_library(gc_instrument STATIC
  Instrument.cpp
  Scenario.cpp
  ScenarioSchema.cpp
  model/Alarms.cpp
  model/Behaviour.cpp
  model/Calibration.cpp
  model/Commands.cpp
  model/Holds.cpp
  model/MeasuredValues.cpp
  model/Measurement.cpp
  model/Parameters.cpp
  model/PeakNames.cpp
  model/Phases.cpp
  model/Plan.cpp
  model/Planning.cpp
  model/RemoteTexts.cpp
  model/Runs.cpp
  model/ScenarioTables.cpp
  model/StartUp.cpp
  model/StoredValues.cpp
  model/Tables.cpp)
target_include_directories(gc_instrument PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
# The programs find the scenarios at the same place in a build as in an installation.
set(scenarios share/gc-web-demo/scenarios)
target_compile_definitions(gc_instrument PRIVATE GC_SCENARIO_DIR="${scenarios}")
cmake_path(GET scenarios PARENT_PATH parent)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/${parent})
file(CREATE_LINK ${PROJECT_SOURCE_DIR}/simulator/scenarios ${CMAKE_BINARY_DIR}/${scenarios} SYMBOLIC)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/simulator/scenarios/ DESTINATION ${scenarios}
  COMPONENT demo FILES_MATCHING PATTERN *.json)
target_link_libraries(gc_instrument PUBLIC gc_wire gc_json rapidjson ACE::ACE PRIVATE gc_options)
