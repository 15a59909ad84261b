// Starting and stopping the library, and opening and closing connections.
#include <unistd.h>

#include <limits>
#include <string>

#include "LibraryFixture.h"
#include "WireSamples.h"

namespace {

/// The four octets, first in the lowest byte, in the form of a 32-bit long.
long addressOf(unsigned a, unsigned b, unsigned c, unsigned d) {
  return static_cast<std::int32_t>(a | b << 8 | c << 16 | d << 24);
}

TEST(Library, IsNotStarted) {
  unsigned long handle = 77;
  EXPECT_EQ(eLibraryNotStarted, EstablishConnection(1, "SimUI", "", &handle));
  EXPECT_EQ(77UL, handle);
  ParamList record{};
  EXPECT_EQ(eLibraryNotStarted, ReadParamList(1, &record, 1));
  EXPECT_EQ(eLibraryNotStarted, WriteParamList(1, &record, 1));
  EXPECT_EQ(eLibraryNotStarted, ExecuteCommand(1, 0, 0));
  RemoteObject* object = nullptr;
  EXPECT_EQ(eLibraryNotStarted, ReadObject(1, 2, object));
  unsigned long first = 0;
  EXPECT_EQ(eLibraryNotStarted, ReadProgramInfo(1, 0, 1, 1, &first, &first));
  EXPECT_EQ(eLibraryNotStarted, BreakConnection(1));
  EXPECT_EQ(eLibraryNotStarted, shutdownGC());
}

TEST(Library, StartsOnceUntilStopped) {
  const long address = addressOf(127, 0, 0, 1);
  EXPECT_EQ(0UL, startupGC(1, address, 0, 0, 1, ""));
  EXPECT_EQ(eLibraryStarted, startupGC(1, address, 0, 0, 1, ""));
  EXPECT_EQ(0UL, shutdownGC());
  EXPECT_EQ(eLibraryNotStarted, shutdownGC());
  EXPECT_EQ(0UL, startupGC(1, address, 0, 0, 1, ""));
  EXPECT_EQ(0UL, shutdownGC());
}

TEST(Library, TakesTheAddressOfAnyOneInstrument) {
  for (const long address : {addressOf(1, 0, 0, 0), addressOf(127, 0, 0, 1),
                             addressOf(223, 255, 255, 255), addressOf(10, 0, 0, 128)}) {
    EXPECT_EQ(0UL, startupGC(1, address, 0, 0, 1, "")) << address;
    shutdownGC();
  }
}

TEST(Library, RefusesWhatIsNoAddressOfAnInstrument) {
  for (const long address : {addressOf(0, 0, 0, 0), addressOf(0, 1, 2, 3), addressOf(224, 0, 0, 1),
                             addressOf(239, 1, 1, 1), addressOf(255, 255, 255, 255)}) {
    EXPECT_EQ(eAddressUnusable, startupGC(1, address, 0, 0, 1, "")) << address;
    EXPECT_EQ(eLibraryNotStarted, shutdownGC());
  }
}

TEST(Library, RefusesAnAddressOfMoreThanFourOctets) {
  if (sizeof(long) == 4) {
    GTEST_SKIP() << "long has 32 bits";
  }
  const auto tooWide = static_cast<long>(0x10100007FULL);
  EXPECT_EQ(eAddressUnusable, startupGC(1, tooWide, 0, 0, 1, ""));
  EXPECT_EQ(eAddressUnusable, startupGC(1, std::numeric_limits<long>::min() + 127, 0, 0, 1, ""));
}

// Both forms of an address, in 32-bit and in 64-bit longs.
TEST(Library, TakesAnAddressWithAndWithoutSign) {
  for (const unsigned long bits : {0x8000007FUL, 0x8000007FUL | ~0xFFFFFFFFUL}) {
    EXPECT_EQ(0UL, startupGC(1, static_cast<long>(bits), 0, 0, 1, ""));
    shutdownGC();
  }
}

TEST(Library, NobodyListens) {
  long address = 0;
  ::close(listenOnFreeAddress(1, address));
  ASSERT_EQ(0UL, startupGC(1, address, 0, 0, 1, ""));
  unsigned long handle = 77;
  EXPECT_EQ(eConnectRefused, EstablishConnection(1, "SimUI", "", &handle));
  EXPECT_EQ(77UL, handle);
  shutdownGC();
}

TEST_F(LibraryTest, ConnectsInItsMode) {
  ASSERT_EQ(0UL, connect(0));
  EXPECT_NE(0UL, mHandle);
  ASSERT_EQ(1U, mController.requests().size());
  const Request request = mController.requests()[0];
  EXPECT_EQ(wire::eType::eConnect, request.header.type);
  EXPECT_EQ(octets("00000000 00000006 53696D5549 00"), request.body);
}

TEST_F(LibraryTest, IsRefusedByTheInstrument) {
  mController.on(wire::eType::eConnect, [](const Request& request) {
    return answer(request, wire::StatusReply{eTooManyConnections});
  });
  EXPECT_EQ(eTooManyConnections, connect());
  EXPECT_EQ(0UL, mHandle);
  EXPECT_EQ(eHandleUnknown, BreakConnection(1));
}

TEST_F(LibraryTest, IsDroppedBeforeTheAnswer) {
  mController.on(wire::eType::eConnect, [](const Request&) {
    return Answer{{}, Answer::eThen::eHangUp};
  });
  EXPECT_EQ(eConnectionLost, connect());
  EXPECT_EQ(0UL, mHandle);
}

TEST_F(LibraryTest, ConnectNeedsItsArguments) {
  EXPECT_EQ(eArgumentInvalid, EstablishConnection(1, nullptr, "", &mHandle));
  EXPECT_EQ(eArgumentInvalid, EstablishConnection(1, "SimUI", "", nullptr));
  const std::string name(4097, 'n');
  EXPECT_EQ(eArgumentInvalid, EstablishConnection(1, name.c_str(), "", &mHandle));
  if (sizeof(long) > 4) {
    const auto tooWide = static_cast<unsigned long>(0x100000001ULL);
    EXPECT_EQ(eArgumentInvalid, EstablishConnection(tooWide, "SimUI", "", &mHandle));
  }
  EXPECT_EQ(0UL, mHandle);
  EXPECT_TRUE(mController.requests().empty());
}

TEST_F(LibraryTest, UnknownHandles) {
  ASSERT_EQ(0UL, connect());
  ParamList record{};
  for (const unsigned long handle : {0UL, mHandle + 1, ~0UL}) {
    EXPECT_EQ(eHandleUnknown, ReadParamList(handle, &record, 1));
    EXPECT_EQ(eHandleUnknown, ExecuteCommand(handle, 0, 0));
    EXPECT_EQ(eHandleUnknown, BreakConnection(handle));
  }
}

TEST_F(LibraryTest, BreakSaysGoodbyeOnce) {
  ASSERT_EQ(0UL, connect());
  EXPECT_EQ(0UL, BreakConnection(mHandle));
  EXPECT_EQ(eHandleUnknown, BreakConnection(mHandle));
  ASSERT_EQ(2U, mController.requests().size());
  EXPECT_EQ(wire::eType::eDisconnect, mController.requests()[1].header.type);
}

TEST_F(LibraryTest, ConnectsAgainUnderANewHandle) {
  ASSERT_EQ(0UL, connect());
  const unsigned long before = mHandle;
  ASSERT_EQ(0UL, BreakConnection(before));
  ASSERT_EQ(0UL, connect());
  EXPECT_NE(before, mHandle);
  EXPECT_EQ(eHandleUnknown, ExecuteCommand(before, 0, 0));
  EXPECT_EQ(0UL, BreakConnection(mHandle));
}

TEST_F(LibraryTest, BreakOfALostConnectionGivesItsHandleBack) {
  ASSERT_EQ(0UL, connect());
  mController.on(wire::eType::eDisconnect, [](const Request&) {
    return Answer{{}, Answer::eThen::eHangUp};
  });
  EXPECT_EQ(eConnectionLost, BreakConnection(mHandle));
  EXPECT_EQ(eHandleUnknown, BreakConnection(mHandle));
}

TEST_F(LibraryTest, StopClosesWhatIsOpen) {
  ASSERT_EQ(0UL, connect());
  EXPECT_EQ(0UL, shutdownGC());
  EXPECT_EQ(eLibraryNotStarted, ExecuteCommand(mHandle, 0, 0));
  // The controller serves one connection at a time: it can only answer once the first is closed.
  ASSERT_EQ(0UL, startupGC(1, mController.address(), 0, 0, 1, ""));
  EXPECT_EQ(0UL, connect());
}

}  // namespace
