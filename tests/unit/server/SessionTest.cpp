// One client's calls against a simulation, without sockets.
#include "Session.h"

#include <Status.h>
#include <gtest/gtest.h>

namespace simulator {

namespace {

constexpr std::uint32_t cSequence = 77;

class SessionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    mSimulation.clock.pause();
    ASSERT_TRUE(mSimulation.load("everyday", error)) << error;
  }

  template <class Message>
  static Reply serve(Session& session, wire::eType aType, const Message& aMessage) {
    const wire::Frame frame = wire::encode(aType, cSequence, aMessage);
    wire::Header header{};
    EXPECT_TRUE(wire::decodeHeader(frame.data(), header));
    return session.serve(header, frame.data() + wire::cHeaderSize);
  }

  template <class Answer>
  static Answer decoded(const Reply& aReply, wire::eType aType) {
    Answer answer;
    wire::Header header{};
    if (aReply.octets.size() < wire::cHeaderSize ||
        !wire::decodeHeader(aReply.octets.data(), header)) {
      ADD_FAILURE() << "no answer";
      return answer;
    }
    EXPECT_EQ(header.type, aType);
    EXPECT_EQ(header.sequence, cSequence);
    EXPECT_TRUE(wire::decode(aReply.octets.data() + wire::cHeaderSize, header.bodyLength, answer));
    return answer;
  }

  static std::uint32_t connect(Session& session, std::uint32_t aMode) {
    wire::ConnectRequest request;
    request.mode = aMode;
    request.clientName = "test";
    return decoded<wire::StatusReply>(serve(session, wire::eType::eConnect, request),
                                      wire::eType::eConnect)
        .status;
  }

  std::string lastLine() const {
    return mSimulation.journal.lines().empty() ? "" : mSimulation.journal.lines().back();
  }

  void addFault(const char* aJson) {
    rapidjson::Document document;
    document.Parse(aJson);
    std::string error;
    ASSERT_TRUE(mSimulation.faults.add(document, error)) << error;
  }

  Simulation mSimulation;
};

TEST_F(SessionTest, IsConnectedFromConnectToDisconnect) {
  Session session(mSimulation, "127.0.0.1:5", 3);
  EXPECT_FALSE(session.isConnected());
  EXPECT_EQ(connect(session, 1), 0U);
  EXPECT_TRUE(session.isConnected());
  EXPECT_EQ(mSimulation.clients, 1U);
  EXPECT_EQ(lastLine(), R"({"time":0.0,"peer":"127.0.0.1:5","connection":3,"call":"Connect",)"
                        R"("status":0,"mode":1,"client":"test"})");
  const Reply reply = serve(session, wire::eType::eDisconnect, wire::StatusReply());
  EXPECT_EQ(decoded<wire::StatusReply>(reply, wire::eType::eDisconnect).status, 0U);
  EXPECT_TRUE(reply.close);
  EXPECT_FALSE(session.isConnected());
  EXPECT_EQ(mSimulation.clients, 0U);
  EXPECT_EQ(mSimulation.calls, 2U);
}

TEST_F(SessionTest, DisconnectMayBeEmpty) {
  Session session(mSimulation, "", 1);
  EXPECT_EQ(connect(session, 1), 0U);
  const Reply reply = session.serve({wire::eType::eDisconnect, cSequence, 0}, "");
  EXPECT_EQ(decoded<wire::StatusReply>(reply, wire::eType::eDisconnect).status, 0U);
}

TEST_F(SessionTest, LostWithoutDisconnect) {
  {
    Session silent(mSimulation, "127.0.0.1:5", 1);
    Session session(mSimulation, "127.0.0.1:6", 2);
    EXPECT_EQ(connect(session, 0), 0U);
  }
  EXPECT_EQ(mSimulation.clients, 0U);
  EXPECT_EQ(mSimulation.journal.lines().size(), 2U);
  EXPECT_EQ(lastLine(),
            R"({"time":0.0,"peer":"127.0.0.1:6","connection":2,"mode":0,"call":"Lost"})");
}

TEST_F(SessionTest, OneClientTooMany) {
  mSimulation.clients = 255;
  Session last(mSimulation, "", 1);
  EXPECT_EQ(connect(last, 1), 0U);
  Session late(mSimulation, "", 2);
  wire::ConnectRequest request;
  request.mode = 1;
  const Reply reply = serve(late, wire::eType::eConnect, request);
  EXPECT_EQ(decoded<wire::StatusReply>(reply, wire::eType::eConnect).status, eTooManyConnections);
  EXPECT_TRUE(reply.close);
  EXPECT_FALSE(late.isConnected());
  mSimulation.clients -= 255;
}

TEST_F(SessionTest, ReportModeMayChangeNothing) {
  Session session(mSimulation, "", 1);
  EXPECT_EQ(connect(session, 1), 0U);
  const Reply command = serve(session, wire::eType::eCommand, wire::CommandRequest());
  EXPECT_EQ(decoded<wire::StatusReply>(command, wire::eType::eCommand).status, eNotPermitted);
  wire::Batch batch;
  batch.records.push_back({0, 0, 0, 1, 50.0, 0, 0});
  const Reply write = serve(session, wire::eType::eWrite, batch);
  const wire::Batch answer = decoded<wire::Batch>(write, wire::eType::eWrite);
  EXPECT_EQ(answer.status, eNotPermitted);
  EXPECT_TRUE(answer.records.empty());
  EXPECT_FALSE(write.close);
}

TEST_F(SessionTest, UndecodableBodyClosesAndCountsForNoFault) {
  addFault(R"({"kind": "status", "call": "Object", "status": 9})");
  Session session(mSimulation, "", 1);
  EXPECT_EQ(connect(session, 1), 0U);
  const std::size_t lines = mSimulation.journal.lines().size();
  const Reply reply = session.serve({wire::eType::eObject, cSequence, 3}, "abc");
  EXPECT_TRUE(reply.close);
  EXPECT_TRUE(reply.octets.empty());
  EXPECT_EQ(mSimulation.journal.lines().size(), lines);
  const Reply object = serve(session, wire::eType::eObject, wire::ObjectRequest());
  EXPECT_EQ(decoded<wire::ObjectReply>(object, wire::eType::eObject).status, 9U);
}

TEST_F(SessionTest, UnknownMessage) {
  Session session(mSimulation, "", 1);
  const auto type = static_cast<wire::eType>(99);
  EXPECT_TRUE(session.serve({type, cSequence, 0}, "").close);
  EXPECT_EQ(connect(session, 1), 0U);
  const Reply reply = session.serve({type, cSequence, 3}, "abc");
  EXPECT_FALSE(reply.close);
  EXPECT_EQ(decoded<wire::StatusReply>(reply, type).status, eUnknownMessage);
}

TEST_F(SessionTest, RefusedConnection) {
  addFault(R"({"kind": "refuse"})");
  Session session(mSimulation, "127.0.0.1:5", 4);
  EXPECT_TRUE(session.isRefused());
  EXPECT_EQ(lastLine(), R"({"time":0.0,"peer":"127.0.0.1:5","connection":4,"call":"Lost",)"
                        R"("fault":"refuse"})");
  EXPECT_FALSE(session.isRefused());
}

TEST_F(SessionTest, FaultsOnTheWayBack) {
  Session session(mSimulation, "", 1);
  EXPECT_EQ(connect(session, 1), 0U);
  wire::Batch batch;
  batch.records.push_back({0, 0, 0, 102, 0.0, 0, 0});

  addFault(R"({"kind": "delay", "seconds": 1.5})");
  const Reply delayed = serve(session, wire::eType::eRead, batch);
  EXPECT_EQ(delayed.seconds, 1.5);
  EXPECT_EQ(decoded<wire::Batch>(delayed, wire::eType::eRead).records.at(0).intvalue, 4);

  addFault(R"({"kind": "hang"})");
  const Reply hanging = serve(session, wire::eType::eRead, batch);
  EXPECT_TRUE(hanging.hang && hanging.octets.empty() && !hanging.close);

  addFault(R"({"kind": "drop"})");
  const Reply dropped = serve(session, wire::eType::eRead, batch);
  EXPECT_TRUE(!dropped.hang && dropped.octets.empty() && dropped.close);

  addFault(R"({"kind": "truncate"})");
  const Reply truncated = serve(session, wire::eType::eRead, batch);
  EXPECT_EQ(truncated.octets.size(), (16U + 8 + 32) / 2);
  EXPECT_TRUE(truncated.close);

  addFault(R"({"kind": "short"})");
  const Reply shortened = serve(session, wire::eType::eRead, batch);
  wire::Header header{};
  ASSERT_TRUE(wire::decodeHeader(shortened.octets.data(), header));
  EXPECT_EQ(header.bodyLength, (8U + 32) / 2);
  EXPECT_EQ(shortened.octets.size(), 16U + (8 + 32) / 2);
  EXPECT_FALSE(shortened.close);
}

}  // namespace

}  // namespace simulator
