// Each call of a client: what it is answered, what the journal tells of it, and what faults do.
#include <ObjectTexts.h>
#include <Status.h>
#include <gtest/gtest.h>

#include "Session.h"

namespace simulator {

namespace {

using wire::eType;

/// Answered, with the status that the body begins with; 999 when it is not.
struct Exchange {
  Reply reply;
  std::uint32_t status = 999;
};

class CallsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    mSimulation.clock.pause();
    ASSERT_TRUE(mSimulation.load("everyday", error)) << error;
    wire::ConnectRequest request;
    request.clientName = "test";
    ASSERT_EQ(exchange(eType::eConnect, request).status, eSuccess);
  }

  template <class Message>
  Exchange exchange(eType aType, const Message& aMessage) {
    const wire::Frame frame = wire::encode(aType, 5, aMessage);
    wire::Header header{};
    EXPECT_TRUE(wire::decodeHeader(frame.data(), header));
    Exchange result{mSession.serve(header, frame.data() + wire::cHeaderSize)};
    wire::StatusReply status;
    if (result.reply.octets.size() >= wire::cHeaderSize + 4 &&
        wire::decode(result.reply.octets.data() + wire::cHeaderSize, 4, status)) {
      result.status = status.status;
    }
    return result;
  }

  template <class Message>
  static Message decoded(const Exchange& aExchange) {
    Message message;
    const wire::Frame& octets = aExchange.reply.octets;
    EXPECT_TRUE(wire::decode(octets.data() + wire::cHeaderSize, octets.size() - wire::cHeaderSize,
                             message));
    return message;
  }

  /// The last line of the journal from its call on.
  std::string told() const {
    const std::string& line = mSimulation.journal.lines().back();
    const std::string before = R"({"time":0.0,"peer":"192.0.2.1:4","connection":7,"mode":0,)";
    EXPECT_EQ(line.substr(0, before.size()), before);
    return line.substr(std::min(before.size(), line.size()));
  }

  void addFault(const std::string& aJson) {
    rapidjson::Document document;
    document.Parse(aJson.c_str());
    std::string error;
    ASSERT_TRUE(mSimulation.faults.add(document, error)) << error;
  }

  static wire::Batch batch(std::vector<ParamList> aRecords) {
    wire::Batch result;
    result.records = std::move(aRecords);
    return result;
  }

  Simulation mSimulation;
  Session mSession{mSimulation, "192.0.2.1:4", 7};
};

constexpr ParamList cState{0, 0, 0, 102, 0.0, 0, 0};
constexpr ParamList cUnknown{9, 8, 7, 6, 5.0, 4, 3};
constexpr ParamList cSetpoint{1, 0, 0, 202, 61.5, 0, 0};
constexpr char cToldSetpoint[] =
    R"({"channel":1,"method":0,"step":0,"id":202,"real":61.5,"int":0,"status":0})";
constexpr char cToldState[] =
    R"({"channel":0,"method":0,"step":0,"id":102,"real":0.0,"int":4,"status":0})";
constexpr char cToldUnread[] =
    R"({"channel":0,"method":0,"step":0,"id":102,"real":0.0,"int":0,"status":0})";

std::string toldOf(const std::string& aCall, const std::string& aRest) {
  return "\"call\":\"" + aCall + "\"," + aRest + "}";
}

TEST_F(CallsTest, Read) {
  const wire::Batch answer =
      decoded<wire::Batch>(exchange(eType::eRead, batch({cState, cUnknown})));
  EXPECT_EQ(answer.status, 28U);
  ASSERT_EQ(answer.records.size(), 2U);
  EXPECT_EQ(answer.records[0].intvalue, 4);
  EXPECT_EQ(answer.records[1].ServiceStatus, 204U);
  EXPECT_EQ(
      told(),
      toldOf("Read",
             std::string(R"("status":28,"records":[)") + cToldState +
                 R"(,{"channel":9,"method":8,"step":7,"id":6,"real":0.0,"int":0,"status":204}])"));
}

TEST_F(CallsTest, Write) {
  const wire::Batch answer = decoded<wire::Batch>(exchange(eType::eWrite, batch({cSetpoint})));
  EXPECT_EQ(answer.status, 0U);
  EXPECT_EQ(answer.records.size(), 1U);
  EXPECT_EQ(told(),
            toldOf("Write", std::string(R"("status":0,"records":[)") + cToldSetpoint + "]"));
  std::vector<ParamList> read{cSetpoint};
  read[0].realvalue = 0.0;
  mSimulation.instrument->read(0.0, read);
  EXPECT_EQ(read[0].realvalue, 61.5);
}

TEST_F(CallsTest, RefusedWrite) {
  ParamList much = cSetpoint;
  much.realvalue = 1e9;
  const wire::Batch answer = decoded<wire::Batch>(exchange(eType::eWrite, batch({much})));
  EXPECT_EQ(answer.status, 206U);
  EXPECT_TRUE(answer.records.empty());
  EXPECT_EQ(told(),
            toldOf("Write", R"("status":206,"records":[{"channel":1,"method":0,"step":0,"id":202,)"
                            R"("real":1000000000.0,"int":0,"status":0}])"));
}

TEST_F(CallsTest, Command) {
  wire::CommandRequest request;
  request.command = 99;
  EXPECT_EQ(exchange(eType::eCommand, request).status, 208U);
  EXPECT_EQ(told(), toldOf("Command", R"("status":208,"channel":0,"command":99)"));
  request.channel = 3;
  EXPECT_EQ(exchange(eType::eCommand, request).status, 210U);
  EXPECT_EQ(told(), toldOf("Command", R"("status":210,"channel":3,"command":99)"));
  EXPECT_EQ(exchange(eType::eCommand, wire::CommandRequest()).status, 0U);
}

TEST_F(CallsTest, Object) {
  wire::ObjectRequest request;
  request.number = 4;
  const Exchange found = exchange(eType::eObject, request);
  EXPECT_EQ(found.status, 0U);
  EXPECT_STREQ(decoded<wire::ObjectReply>(found).className.c_str(), "SiteInfoTag");
  EXPECT_EQ(told(), toldOf("Object", R"("status":0,"number":4)"));
  request.number = 99;
  EXPECT_EQ(exchange(eType::eObject, request).status, 209U);
  EXPECT_EQ(told(), toldOf("Object", R"("status":209,"number":99)"));
}

TEST_F(CallsTest, ProgramInfo) {
  wire::ProgramInfoRequest request;
  request.channel = 2;
  const auto answer = decoded<wire::ProgramInfoReply>(exchange(eType::eProgramInfo, request));
  EXPECT_EQ(answer.status, 0U);
  EXPECT_EQ(answer.first, 7U);
  EXPECT_EQ(told(), toldOf("ProgramInfo", R"("status":0,"channel":2)"));
  request.channel = 9;
  EXPECT_EQ(exchange(eType::eProgramInfo, request).status, 210U);
}

TEST_F(CallsTest, Disconnect) {
  wire::StatusReply request;
  request.status = 0;
  EXPECT_EQ(exchange(eType::eDisconnect, request).status, 0U);
  EXPECT_EQ(mSimulation.journal.lines().back(),
            R"({"time":0.0,"peer":"192.0.2.1:4","connection":7,"mode":0,"call":"Disconnect",)"
            R"("status":0})");
}

TEST_F(CallsTest, AreCounted) {
  exchange(eType::eRead, batch({}));
  EXPECT_EQ(mSimulation.calls, 2U);
}

TEST_F(CallsTest, ConnectInAnUnknownMode) {
  Session session(mSimulation, "", 1);
  wire::ConnectRequest request;
  for (const std::uint32_t mode : {2U, 0xFFFFFFFFU}) {
    request.mode = mode;
    const wire::Frame frame = wire::encode(eType::eConnect, 1, request);
    const Reply reply = session.serve(
        {eType::eConnect, 1, static_cast<std::uint32_t>(frame.size() - wire::cHeaderSize)},
        frame.data() + wire::cHeaderSize);
    wire::StatusReply answer;
    ASSERT_EQ(reply.octets.size(), wire::cHeaderSize + 4);
    EXPECT_TRUE(wire::decode(reply.octets.data() + wire::cHeaderSize, 4, answer));
    EXPECT_EQ(answer.status, 202U);
    EXPECT_FALSE(reply.close);
    EXPECT_FALSE(session.isConnected());
  }
}

TEST_F(CallsTest, WithAStatusInsteadAreNotDone) {
  addFault(R"({"kind": "status", "status": 9, "times": 0})");
  const wire::Batch read = decoded<wire::Batch>(exchange(eType::eRead, batch({cState})));
  EXPECT_EQ(read.status, 9U);
  EXPECT_TRUE(read.records.empty());
  EXPECT_EQ(told(), toldOf("Read", std::string(R"("fault":"status","status":9,"records":[)") +
                                       cToldUnread + "]"));
  EXPECT_EQ(exchange(eType::eWrite, batch({cSetpoint})).status, 9U);
  std::vector<ParamList> setpoint{cSetpoint};
  mSimulation.instrument->read(0.0, setpoint);
  EXPECT_EQ(setpoint[0].realvalue, 60.0);
}

TEST_F(CallsTest, WithAStatusThatMeansDoneKeepTheirRecords) {
  for (const char* status : {"0", "28"}) {
    addFault(std::string(R"({"kind": "status", "status": )") + status + "}");
    const wire::Batch read = decoded<wire::Batch>(exchange(eType::eRead, batch({cState})));
    EXPECT_EQ(std::to_string(read.status), status);
    ASSERT_EQ(read.records.size(), 1U);
    EXPECT_EQ(read.records[0].intvalue, 0);
  }
}

TEST_F(CallsTest, IgnoredAreAcceptedAndNotDone) {
  addFault(R"({"kind": "ignore", "times": 2})");
  const wire::Batch write = decoded<wire::Batch>(exchange(eType::eWrite, batch({cSetpoint})));
  EXPECT_EQ(write.status, 0U);
  EXPECT_EQ(write.records.size(), 1U);
  EXPECT_EQ(told(), toldOf("Write", std::string(R"("fault":"ignore","status":0,"records":[)") +
                                        cToldSetpoint + "]"));
  std::vector<ParamList> setpoint{cSetpoint};
  mSimulation.instrument->read(0.0, setpoint);
  EXPECT_EQ(setpoint[0].realvalue, 60.0);
  wire::CommandRequest command;
  command.command = 99;
  EXPECT_EQ(exchange(eType::eCommand, command).status, 0U);
}

TEST_F(CallsTest, DroppedBeforeAreNotDone) {
  addFault(R"({"kind": "drop"})");
  exchange(eType::eWrite, batch({cSetpoint}));
  EXPECT_EQ(told(),
            toldOf("Write", std::string(R"("fault":"drop","records":[)") + cToldSetpoint + "]"));
  std::vector<ParamList> setpoint{cSetpoint};
  mSimulation.instrument->read(0.0, setpoint);
  EXPECT_EQ(setpoint[0].realvalue, 60.0);
}

TEST_F(CallsTest, DroppedAfterAreDone) {
  addFault(R"({"kind": "drop", "when": "after"})");
  const Exchange write = exchange(eType::eWrite, batch({cSetpoint}));
  EXPECT_TRUE(write.reply.close && write.reply.octets.empty());
  EXPECT_EQ(told(), toldOf("Write", std::string(R"("fault":"drop","status":0,"records":[)") +
                                        cToldSetpoint + "]"));
  std::vector<ParamList> setpoint{cSetpoint};
  mSimulation.instrument->read(0.0, setpoint);
  EXPECT_EQ(setpoint[0].realvalue, 61.5);
}

TEST_F(CallsTest, ThatHangAreNotDone) {
  addFault(R"({"kind": "hang"})");
  exchange(eType::eWrite, batch({cSetpoint}));
  EXPECT_EQ(told(),
            toldOf("Write", std::string(R"("fault":"hang","records":[)") + cToldSetpoint + "]"));
}

TEST_F(CallsTest, ThatAreLateOrCutAreDone) {
  for (const char* kind : {R"("delay", "seconds": 2)", "\"short\"", "\"truncate\""}) {
    addFault(std::string(R"({"kind": )") + kind + "}");
    wire::CommandRequest command;
    command.command = 99;
    exchange(eType::eCommand, command);
    EXPECT_NE(told().find(R"("status":208)"), std::string::npos) << kind;
  }
}

TEST_F(CallsTest, LeaveRecordsUnanswered) {
  addFault(R"({"kind": "unanswered", "records": [1, 5]})");
  ParamList other = cState;
  other.intvalue = 77;
  const wire::Batch some =
      decoded<wire::Batch>(exchange(eType::eRead, batch({cState, other, cState})));
  EXPECT_EQ(some.status, 28U);
  ASSERT_EQ(some.records.size(), 3U);
  EXPECT_EQ(some.records[0].intvalue, 4);
  EXPECT_EQ(some.records[1].intvalue, 77);
  EXPECT_EQ(some.records[1].ServiceStatus, 204U);
  EXPECT_EQ(some.records[2].ServiceStatus, 0U);
  EXPECT_NE(told().find(R"("fault":"unanswered","status":28)"), std::string::npos);

  addFault(R"({"kind": "unanswered", "records": "all"})");
  const wire::Batch all = decoded<wire::Batch>(exchange(eType::eRead, batch({cState, cState})));
  EXPECT_EQ(all.records.at(0).ServiceStatus, 204U);
  EXPECT_EQ(all.records.at(1).ServiceStatus, 204U);

  addFault(R"({"kind": "unanswered", "records": [1]})");
  EXPECT_EQ(exchange(eType::eRead, batch({cState})).status, 0U);
}

TEST_F(CallsTest, SwapRecords) {
  addFault(R"({"kind": "swap", "a": 0, "b": 2})");
  const auto swapped =
      decoded<wire::Batch>(exchange(eType::eRead, batch({cState, cState, cSetpoint})));
  EXPECT_EQ(swapped.records.at(0).ParmID, 202U);
  EXPECT_EQ(swapped.records.at(1).ParmID, 102U);
  EXPECT_EQ(swapped.records.at(2).ParmID, 102U);
  for (const char* past : {R"("a": 0, "b": 2)", R"("a": 2, "b": 0)"}) {
    addFault(std::string(R"({"kind": "swap", )") + past + "}");
    const auto kept = decoded<wire::Batch>(exchange(eType::eRead, batch({cState, cSetpoint})));
    EXPECT_EQ(kept.records.at(0).ParmID, 102U);
    EXPECT_EQ(kept.records.at(1).ParmID, 202U);
  }
}

TEST_F(CallsTest, AnswerOtherValues) {
  addFault(R"({"kind": "value", "records": [1], "real": 2.5})");
  const auto reals = decoded<wire::Batch>(exchange(eType::eRead, batch({cState, cState})));
  EXPECT_EQ(reals.records.at(0).realvalue, 0.0);
  EXPECT_EQ(reals.records.at(1).realvalue, 2.5);
  EXPECT_EQ(reals.records.at(1).intvalue, 4);
  addFault(R"({"kind": "value", "records": "all", "int": -9})");
  const auto integers = decoded<wire::Batch>(exchange(eType::eRead, batch({cState, cSetpoint})));
  EXPECT_EQ(integers.records.at(0).intvalue, -9);
  EXPECT_EQ(integers.records.at(1).intvalue, -9);
  EXPECT_EQ(integers.records.at(1).realvalue, 60.0);
}

TEST_F(CallsTest, AnswerAnotherText) {
  wire::ObjectRequest request;
  request.number = 4;
  addFault(R"({"kind": "text", "text": "ab"})");
  const auto other = decoded<wire::ObjectReply>(exchange(eType::eObject, request));
  EXPECT_EQ(std::string(other.contents.data(), other.contents.size()),
            std::string("\0\0\0\3ab\0", 7));
  addFault(R"({"kind": "text", "length": 65536})");
  const Exchange large = exchange(eType::eObject, request);
  EXPECT_GT(large.reply.octets.size(), 65536U);
  addFault(R"({"kind": "text", "text": "ab"})");
  request.number = 6;
  const auto columns = decoded<wire::ObjectReply>(exchange(eType::eObject, request));
  EXPECT_STREQ(columns.className.c_str(), "ColumnDescriptions");
  EXPECT_GT(columns.contents.size(), 7U);
}

TEST_F(CallsTest, AreCutShort) {
  addFault(R"({"kind": "short"})");
  const Exchange status = exchange(eType::eCommand, wire::CommandRequest());
  wire::Header header{};
  ASSERT_TRUE(wire::decodeHeader(status.reply.octets.data(), header));
  EXPECT_EQ(header.type, eType::eCommand);
  EXPECT_EQ(header.sequence, 5U);
  EXPECT_EQ(header.bodyLength, 2U);
  EXPECT_EQ(status.reply.octets.size(), wire::cHeaderSize + 2);
}

}  // namespace

}  // namespace simulator
