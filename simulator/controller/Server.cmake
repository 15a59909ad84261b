# The network side of the simulated controller, its program, and its remote control.
find_package(CLI11 REQUIRED)

add_library(gc_server STATIC
  Alterations.cpp
  Connection.cpp
  Control.cpp
  ControlClient.cpp
  ControlConnection.cpp
  ControlPath.cpp
  ControlSocket.cpp
  Faults.cpp
  FrameAssembler.cpp
  Journal.cpp
  Server.cpp
  Session.cpp
  SimClock.cpp
  Simulation.cpp
  Stream.cpp)
target_include_directories(gc_server PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(gc_server PUBLIC gc_instrument gc_wire rapidjson ACE::ACE PRIVATE gc_options)

foreach(program gc-sim gc-simctl)
  add_executable(${program} ${program}.cpp)
  target_link_libraries(${program} PRIVATE gc_options gc_server CLI11::CLI11)
endforeach()
