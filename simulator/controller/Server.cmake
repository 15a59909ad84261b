# The network side of the simulated controller, its program, and its remote control.
find_package(CLI11 REQUIRED)

# How the remote control finds the controller, and talks to it.
add_library(gc_remote_control STATIC ControlClient.cpp ControlPath.cpp)
target_include_directories(gc_remote_control PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(gc_remote_control PRIVATE gc_options ACE::ACE)

add_library(gc_server STATIC
  Alterations.cpp
  Connection.cpp
  Control.cpp
  ControlConnection.cpp
  ControlSocket.cpp
  FaultKinds.cpp
  FaultReaders.cpp
  Faults.cpp
  FrameAssembler.cpp
  Journal.cpp
  Server.cpp
  Session.cpp
  SimClock.cpp
  Simulation.cpp
  Stream.cpp)
target_include_directories(gc_server PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(gc_server
  PUBLIC gc_instrument gc_wire gc_json rapidjson ACE::ACE PRIVATE gc_options)

add_executable(gc-sim gc-sim.cpp)
target_link_libraries(gc-sim PRIVATE gc_options gc_server gc_remote_control CLI11::CLI11)

add_executable(gc-simctl gc-simctl.cpp)
target_link_libraries(gc-simctl PRIVATE gc_options gc_remote_control gc_json CLI11::CLI11)

set_property(SOURCE gc-sim.cpp gc-simctl.cpp APPEND PROPERTY
  COMPILE_DEFINITIONS GC_WEB_VERSION="${PROJECT_VERSION}")

install(TARGETS gc-sim gc-simctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT demo)
