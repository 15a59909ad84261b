// Timeouts of a connection, shortened so that tests do not wait for the real ones.
#include <client/Connection.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <list>
#include <vector>

#include "ScriptedController.h"

namespace {

using client::Connection;
using client::Limits;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds cShort{50};
/// Longer than a test may take, shorter than the real timeouts: a call that returns earlier has not
/// waited for those.
constexpr milliseconds cPatience{2000};

std::uint32_t addressOf(const ScriptedController& aController) {
  return static_cast<std::uint32_t>(aController.address());
}

eStatus command(Connection& connection, wire::StatusReply& reply) {
  return connection.call(wire::eType::eCommand, wire::CommandRequest(), reply);
}

TEST(LibraryLimits, AreThoseOfTheInstrument) {
  EXPECT_EQ(milliseconds(3000), Limits().connect);
  EXPECT_EQ(milliseconds(10000), Limits().answer);
}

TEST(LibraryLimits, ConnectEndsInTime) {
  long address = 0;
  const int listener = listenOnFreeAddress(0, address);
  const auto start = steady_clock::now();
  // Nobody accepts: once the queue is full, the system stops answering.
  std::list<Connection> connections;
  eStatus status = eSuccess;
  while (status == eSuccess && connections.size() < 8) {
    status =
        connections.emplace_back(Limits{cShort, cShort}).open(static_cast<std::uint32_t>(address));
  }
  EXPECT_EQ(eConnectTimeout, status);
  EXPECT_LT(steady_clock::now() - start, cPatience);
  ::close(listener);
}

TEST(LibraryLimits, AnswerThatNeverComes) {
  ScriptedController controller;
  Connection connection(Limits{cShort, cShort});
  ASSERT_EQ(eSuccess, connection.open(addressOf(controller)));
  const auto start = steady_clock::now();
  wire::StatusReply reply;
  EXPECT_EQ(eAnswerTimeout, command(connection, reply));
  EXPECT_GE(steady_clock::now() - start, cShort);
  EXPECT_LT(steady_clock::now() - start, cPatience);
  EXPECT_EQ(eConnectionLost, command(connection, reply));
}

TEST(LibraryLimits, AnswerThatStopsHalfWay) {
  for (const std::size_t size : {1U, 15U, 16U, 19U}) {
    SCOPED_TRACE(size);
    ScriptedController controller;
    controller.on(wire::eType::eCommand, [size](const Request& request) {
      Answer half = answer(request, wire::StatusReply());
      half.octets.resize(size);
      return half;
    });
    Connection connection(Limits{cShort, cShort});
    ASSERT_EQ(eSuccess, connection.open(addressOf(controller)));
    wire::StatusReply reply;
    EXPECT_EQ(eAnswerTimeout, command(connection, reply));
    EXPECT_EQ(eConnectionLost, command(connection, reply));
  }
}

// The timeout applies to the whole answer: one that trickles in cannot hold up the caller for ever.
TEST(LibraryLimits, AnswerThatTrickles) {
  for (const std::size_t from : {0U, 16U}) {
    SCOPED_TRACE(from);
    ScriptedController controller;
    controller.on(wire::eType::eObject, [from](const Request& request) {
      Answer slow = answer(request, wire::ObjectReply{0, "", std::vector<char>(200000, 'x')});
      slow.singlyFrom = from;
      slow.pause = milliseconds(5);
      return slow;
    });
    Connection connection(Limits{cShort, cShort});
    ASSERT_EQ(eSuccess, connection.open(addressOf(controller)));
    const auto start = steady_clock::now();
    wire::ObjectReply reply;
    EXPECT_EQ(eAnswerTimeout, connection.call(wire::eType::eObject, wire::ObjectRequest{2}, reply));
    EXPECT_LT(steady_clock::now() - start, cPatience);
  }
}

// A request that the controller does not even read is subject to the same timeout.
TEST(LibraryLimits, RequestThatIsNotTaken) {
  long address = 0;
  const int listener = listenOnFreeAddress(1, address);
  Connection connection(Limits{cShort, cShort});
  ASSERT_EQ(eSuccess, connection.open(static_cast<std::uint32_t>(address)));
  wire::Batch batch;
  batch.records.resize(4096);
  const auto start = steady_clock::now();
  EXPECT_EQ(eAnswerTimeout, connection.call(wire::eType::eRead, batch, batch));
  EXPECT_LT(steady_clock::now() - start, cPatience);
  ::close(listener);
}

// After an orderly close followed by a reset, sending raises SIGPIPE by default, which would end
// the program.
TEST(LibraryLimits, RequestIntoAResetConnection) {
  long address = 0;
  const int listener = listenOnFreeAddress(1, address);
  Connection connection;
  ASSERT_EQ(eSuccess, connection.open(static_cast<std::uint32_t>(address)));
  const int accepted = ::accept(listener, nullptr, nullptr);
  const linger reset{1, 0};
  ::shutdown(accepted, SHUT_WR);
  ::setsockopt(accepted, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
  ::close(accepted);
  wire::StatusReply reply;
  EXPECT_EQ(eConnectionLost, command(connection, reply));
  ::close(listener);
}

TEST(LibraryLimits, RequestOverItsBoundsClosesNothing) {
  ScriptedController controller;
  controller.on(wire::eType::eCommand,
                [](const Request& request) { return answer(request, wire::StatusReply{201}); });
  Connection connection;
  ASSERT_EQ(eSuccess, connection.open(addressOf(controller)));
  wire::Batch batch;
  batch.records.resize(4097);
  EXPECT_EQ(eArgumentInvalid, connection.call(wire::eType::eRead, batch, batch));
  wire::StatusReply reply;
  EXPECT_EQ(eSuccess, command(connection, reply));
  EXPECT_EQ(201U, reply.status);
}

}  // namespace
