// One client's connection: frames in, answers out, and how long it may take.
#include "Connection.h"

#include <Status.h>

#include <memory>
#include <vector>

#include "ReactorBench.h"

namespace simulator {

namespace {

class ConnectionTest : public ReactorBench {
 protected:
  ConnectionTest() {
    std::string error;
    mSimulation.clock.pause();
    EXPECT_TRUE(mSimulation.load("everyday", error)) << error;
  }

  bool start() {
    mConnection = std::make_unique<Connection>(
        mReactor, mPair.ends[0], [this] { mConnection.reset(); }, mSimulation, "127.0.0.1:5", 3);
    return mConnection->start();
  }

  void startConnected() {
    ASSERT_TRUE(start());
    mPair.send(connectFrame());
    serve();
    ASSERT_EQ(statuses(), std::vector<std::uint32_t>{eSuccess});
    ASSERT_TRUE(mConnection->isConnected());
  }

  template <class Message>
  static std::string frame(wire::eType aType, const Message& aMessage) {
    const wire::Frame octets = wire::encode(aType, 1, aMessage);
    return std::string(octets.data(), octets.size());
  }

  static std::string connectFrame() {
    wire::ConnectRequest request;
    request.mode = 1;
    request.clientName = "test";
    return frame(wire::eType::eConnect, request);
  }

  static std::string readFrame() { return frame(wire::eType::eRead, wire::Batch()); }
  static std::string disconnectFrame() {
    return frame(wire::eType::eDisconnect, wire::StatusReply());
  }

  void addFault(const char* aJson) {
    rapidjson::Document document;
    document.Parse(aJson);
    std::string error;
    ASSERT_TRUE(mSimulation.faults.add(document, error)) << error;
  }

  /// The statuses of the answers that have come; each body begins with it.
  std::vector<std::uint32_t> statuses() const {
    const std::string octets = mPair.received();
    std::vector<std::uint32_t> found;
    std::size_t start = 0;
    while (start < octets.size()) {
      wire::Header header{};
      EXPECT_TRUE(wire::decodeHeader(octets.data() + start, header));
      wire::StatusReply status;
      EXPECT_TRUE(wire::decode(octets.data() + start + wire::cHeaderSize, 4, status));
      found.push_back(status.status);
      start += wire::cHeaderSize + header.bodyLength;
    }
    return found;
  }

  Simulation mSimulation;
  SocketPair mPair;
  std::unique_ptr<Connection> mConnection;
};

using Statuses = std::vector<std::uint32_t>;

TEST_F(ConnectionTest, AnswersEveryFrame) {
  startConnected();
  mPair.send(readFrame());
  serve();
  EXPECT_EQ(statuses(), Statuses{eSuccess});
  mPair.send(readFrame() + readFrame() + readFrame().substr(0, 5));
  serve();
  EXPECT_EQ(statuses(), (Statuses{eSuccess, eSuccess}));
  mPair.send(readFrame().substr(5));
  serve();
  EXPECT_EQ(statuses(), Statuses{eSuccess});
}

TEST_F(ConnectionTest, EndsWithDisconnect) {
  startConnected();
  mPair.send(disconnectFrame() + readFrame());
  serve();
  EXPECT_EQ(statuses(), Statuses{eSuccess});
  EXPECT_TRUE(mPair.isOver());
  EXPECT_FALSE(mConnection);
}

TEST_F(ConnectionTest, EndsWithWhatIsNoFrame) {
  startConnected();
  mPair.send(std::string(wire::cHeaderSize, 'x'));
  serve();
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ConnectionTest, EndsWhenTheFirstFrameIsNoConnect) {
  ASSERT_TRUE(start());
  mPair.send(readFrame());
  serve();
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ConnectionTest, HasFiveSecondsForTheGreeting) {
  ASSERT_TRUE(start());
  EXPECT_FALSE(mConnection->isConnected());
  mPair.send(connectFrame().substr(0, 20));
  pass(4.75);
  EXPECT_FALSE(mPair.isOver());
  ASSERT_TRUE(mConnection);
  pass(0.25);
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ConnectionTest, HasAllTheTimeOnceItIsConnected) {
  startConnected();
  pass(1e6);
  mPair.send(readFrame());
  serve();
  EXPECT_EQ(statuses(), Statuses{eSuccess});
}

TEST_F(ConnectionTest, HasFiveSecondsToTryAgain) {
  wire::ConnectRequest request;
  request.mode = 9;
  ASSERT_TRUE(start());
  mPair.send(frame(wire::eType::eConnect, request));
  serve();
  pass(4.0);
  EXPECT_EQ(statuses(), Statuses{eModeUnknown});
  EXPECT_FALSE(mConnection->isConnected());
  mPair.send(frame(wire::eType::eConnect, request));
  serve();
  pass(1.0);
  statuses();
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ConnectionTest, IsRefusedByAFault) {
  addFault(R"({"kind": "refuse"})");
  EXPECT_FALSE(start());
  mConnection.reset();
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ConnectionTest, NeedsASocket) {
  Connection connection(
      mReactor, -1, [] {}, mSimulation, "127.0.0.1:5", 3);
  EXPECT_FALSE(connection.start());
}

TEST_F(ConnectionTest, HoldsADelayedAnswerAndAllBehindIt) {
  startConnected();
  addFault(R"({"kind": "delay", "seconds": 8})");
  mPair.send(readFrame() + readFrame());
  serve();
  mPair.send(readFrame());
  pass(7.75);
  EXPECT_EQ(statuses(), Statuses{});
  EXPECT_EQ(mSimulation.calls, 2U);
  pass(0.25);
  EXPECT_EQ(statuses(), (Statuses{eSuccess, eSuccess, eSuccess}));
  pass(1e6);
  mPair.send(readFrame());
  serve();
  EXPECT_EQ(statuses(), Statuses{eSuccess});
}

TEST_F(ConnectionTest, HoldsSeveralAnswersOneAfterTheOther) {
  startConnected();
  addFault(R"({"kind": "delay", "seconds": 2, "times": 2})");
  mPair.send(readFrame() + readFrame());
  serve();
  pass(2.0);
  EXPECT_EQ(statuses(), Statuses{eSuccess});
  pass(1.75);
  EXPECT_EQ(statuses(), Statuses{});
  pass(0.25);
  EXPECT_EQ(statuses(), Statuses{eSuccess});
}

TEST_F(ConnectionTest, GreetsLateAfterADelayedRefusal) {
  addFault(R"({"kind": "delay", "call": "Connect", "seconds": 60})");
  wire::ConnectRequest request;
  request.mode = 9;
  ASSERT_TRUE(start());
  mPair.send(frame(wire::eType::eConnect, request));
  serve();
  pass(60.0);
  EXPECT_EQ(statuses(), Statuses{eModeUnknown});
  pass(4.75);
  EXPECT_FALSE(mPair.isOver());
  ASSERT_TRUE(mConnection);
  pass(0.25);
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ConnectionTest, EndsAfterADelayedDisconnect) {
  startConnected();
  addFault(R"({"kind": "delay", "call": "Disconnect", "seconds": 1})");
  mPair.send(disconnectFrame());
  serve();
  pass(0.5);
  EXPECT_EQ(statuses(), Statuses{});
  pass(0.5);
  EXPECT_EQ(statuses(), Statuses{eSuccess});
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ConnectionTest, HangsForEver) {
  addFault(R"({"kind": "hang", "call": "Connect"})");
  ASSERT_TRUE(start());
  mPair.send(connectFrame());
  serve();
  pass(1e6);
  EXPECT_EQ(statuses(), Statuses{});
  EXPECT_FALSE(mPair.isOver());
  EXPECT_TRUE(mConnection);
}

TEST_F(ConnectionTest, DropsWithoutAnAnswer) {
  startConnected();
  addFault(R"({"kind": "drop"})");
  mPair.send(readFrame());
  serve();
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ConnectionTest, CutsAnAnswerAndCloses) {
  startConnected();
  addFault(R"({"kind": "truncate"})");
  mPair.send(readFrame());
  serve();
  EXPECT_EQ(mPair.received().size(), (wire::cHeaderSize + 8) / 2);
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ConnectionTest, TakesOnlySoMuchWhileItHoldsAnAnswer) {
  startConnected();
  addFault(R"({"kind": "delay", "seconds": 60})");
  mPair.send(readFrame());
  serve();
  std::size_t sent = 0;
  const std::string octets(65536, 'x');
  while (mConnection && sent < 2 * FrameAssembler::cMaxOctets) {
    mPair.send(octets);
    sent += octets.size();
    serve();
  }
  EXPECT_FALSE(mConnection);
  EXPECT_GT(sent, FrameAssembler::cMaxOctets);
}

TEST_F(ConnectionTest, KeepsAMegabyteForAClientThatDoesNotRead) {
  startConnected();
  wire::Batch batch;
  batch.records.resize(wire::cMaxRecords);
  const std::string request = frame(wire::eType::eRead, batch);
  const auto answer = static_cast<double>(request.size());
  int asked = 0;
  while (mConnection && asked < 100) {
    ++asked;
    for (std::size_t part = 0; part < request.size(); part += 60000) {
      mPair.send(request.substr(part, 60000));
      serve();
    }
  }
  EXPECT_FALSE(mConnection);
  const auto kept = static_cast<double>(mPair.received().size());
  // What the socket holds comes on top of it.
  EXPECT_GT(asked * answer, 1e6 + kept - answer);
  EXPECT_LT(asked * answer, 1e6 + kept + 2 * answer);
}

}  // namespace

}  // namespace simulator
