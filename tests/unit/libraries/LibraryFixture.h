// Common setup for tests of the client library: a scripted controller, and a library bound to it.
#pragma once

#include <InstrumentClient.h>
#include <gtest/gtest.h>

#include "ScriptedController.h"

class LibraryTest : public testing::Test {
 public:
  ~LibraryTest() override { shutdownGC(); }

 protected:
  LibraryTest() { EXPECT_EQ(0UL, startupGC(1, mController.address(), 0, 0, 1, "")); }

  /// Opens a connection and stores its handle in mHandle.
  unsigned long connect(unsigned long mode = 1) {
    return EstablishConnection(mode, "SimUI", "", &mHandle);
  }

  ScriptedController mController;
  unsigned long mHandle = 0;
};

/// With an open connection.
class ConnectedTest : public LibraryTest {
 protected:
  ConnectedTest() { EXPECT_EQ(0UL, connect()); }
};
