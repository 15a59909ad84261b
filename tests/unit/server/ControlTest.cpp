// The verbs of the remote control, done and refused.
#include "Control.h"

#include <gtest/gtest.h>

namespace simulator {

namespace {

class ControlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    mSimulation.clock.pause();
    ASSERT_TRUE(mSimulation.load("everyday", error)) << error;
  }

  rapidjson::Document ask(const std::string& aRequest) {
    const std::string line = answerControl(mSimulation, aRequest);
    EXPECT_EQ(line.find('\n'), std::string::npos);
    rapidjson::Document answer;
    answer.Parse<rapidjson::kParseValidateEncodingFlag>(line.c_str());
    EXPECT_FALSE(answer.HasParseError()) << line;
    return answer;
  }

  /// The answer's JSON, which has to be an acceptance.
  std::string done(const std::string& aRequest) {
    std::string line = answerControl(mSimulation, aRequest);
    EXPECT_EQ(line.rfind(R"({"ok":true)", 0), 0U) << line;
    return line;
  }

  std::string refused(const std::string& aRequest) {
    const rapidjson::Document answer = ask(aRequest);
    EXPECT_TRUE(answer["ok"].IsFalse()) << aRequest;
    EXPECT_EQ(answer.MemberCount(), 2U);
    return answer["error"].GetString();
  }

  Simulation mSimulation;
};

TEST_F(ControlTest, Status) {
  mSimulation.seed = 9;
  mSimulation.clients = 3;
  mSimulation.calls = 4;
  EXPECT_EQ(done(R"({"verb": "status"})"),
            R"({"ok":true,"time":0.0,"speed":1.0,"paused":true,"scenario":"everyday",)"
            R"("seed":9,"connections":3,"calls":4})");
}

TEST_F(ControlTest, Time) {
  EXPECT_EQ(done(R"({"verb": "step", "seconds": 2.5})"),
            R"({"ok":true,"time":2.5,"speed":1.0,"paused":true})");
  EXPECT_EQ(done(R"({"verb": "speed", "speed": 60})"),
            R"({"ok":true,"time":2.5,"speed":60.0,"paused":true})");
  const rapidjson::Document resumed = ask(R"({"verb": "resume"})");
  EXPECT_TRUE(resumed["paused"].IsFalse());
  const rapidjson::Document paused = ask(R"({"verb": "pause"})");
  EXPECT_TRUE(paused["paused"].IsTrue());
  EXPECT_GE(paused["time"].GetDouble(), resumed["time"].GetDouble());
}

TEST_F(ControlTest, SetAndSnapshot) {
  done(R"({"verb": "set", "name": "mAmbientTemp", "value": -7})");
  done(R"({"verb": "set", "number": 4, "text": "a\u0000\u00fc"})");
  const rapidjson::Document answer = ask(R"({"verb": "snapshot"})");
  EXPECT_EQ(answer["time"].GetDouble(), 0.0);
  EXPECT_EQ(answer["parameters"]["mAmbientTemp"].GetInt(), -7);
  const rapidjson::Value& text = answer["texts"]["application"];
  EXPECT_EQ(std::string(text.GetString(), text.GetStringLength()), std::string("a\0\xC3\xBC", 4));
}

TEST_F(ControlTest, Command) {
  done(R"({"verb": "command", "number": 0})");
  EXPECT_EQ(refused(R"({"verb": "command", "number": 0, "channel": 0})"),
            "the instrument refuses with status 207");
}

TEST_F(ControlTest, Faults) {
  done(R"({"verb": "fault", "fault": {"kind": "hang", "call": "Read"}})");
  EXPECT_EQ(done(R"({"verb": "fault", "list": true})"),
            R"({"ok":true,"faults":[{"fault":{"kind":"hang","call":"Read"},"seen":0,"hits":0}]})");
  done(R"({"verb": "fault", "clear": true})");
  EXPECT_EQ(done(R"({"verb": "fault", "list": true})"), R"({"ok":true,"faults":[]})");
}

TEST_F(ControlTest, Load) {
  done(R"({"verb": "step", "seconds": 5})");
  done(R"({"verb": "fault", "fault": {"kind": "hang"}})");
  const rapidjson::Document answer = ask(R"({"verb": "load", "scenario": "bare"})");
  EXPECT_STREQ(answer["scenario"].GetString(), "bare");
  EXPECT_EQ(answer["time"].GetDouble(), 0.0);
  EXPECT_FALSE(mSimulation.faults.match(wire::eType::eRead));
}

TEST_F(ControlTest, RefusedScenarioChangesNothing) {
  done(R"({"verb": "step", "seconds": 5})");
  done(R"({"verb": "fault", "fault": {"kind": "hang"}})");
  EXPECT_EQ(refused(R"({"verb": "load", "scenario": "/nonexistent/a.json"})")
                .rfind("/nonexistent/a.json: ", 0),
            0U);
  const rapidjson::Document answer = ask(R"({"verb": "status"})");
  EXPECT_STREQ(answer["scenario"].GetString(), "everyday");
  EXPECT_EQ(answer["time"].GetDouble(), 5.0);
  EXPECT_TRUE(mSimulation.faults.match(wire::eType::eRead));
}

TEST_F(ControlTest, Journal) {
  EXPECT_EQ(done(R"({"verb": "journal"})"), R"({"ok":true,"lines":[]})");
  for (const char* line : {R"({"n":1})", R"({"n":2})", R"({"n":3})"}) {
    mSimulation.journal.write(line);
  }
  EXPECT_EQ(done(R"({"verb": "journal", "count": 2})"), R"({"ok":true,"lines":[{"n":2},{"n":3}]})");
  EXPECT_EQ(done(R"({"verb": "journal", "count": 0})"), R"({"ok":true,"lines":[]})");
  EXPECT_EQ(done(R"({"verb": "journal", "count": 4294967295})"),
            R"({"ok":true,"lines":[{"n":1},{"n":2},{"n":3}]})");
}

TEST_F(ControlTest, Refusals) {
  struct Row {
    std::string request;
    const char* error;
  };
  const std::string tooLong(4097, 'x');
  const Row rows[] = {
      {"", "a JSON object in one line expected"},
      {"status", "a JSON object in one line expected"},
      {R"({"verb": "status"} {})", "a JSON object in one line expected"},
      {std::string(65000, '['), "a JSON object in one line expected"},
      {"[]", "a verb expected"},
      {"{}", "a verb expected"},
      {R"({"verb": null})", "a verb expected"},
      {R"({"verb": "Status"})", "a verb expected"},
      {R"({"verb": "set"})", "the name of a parameter, and a number, expected"},
      {R"({"verb": "set", "name": 1, "value": 1})",
       "the name of a parameter, and a number, expected"},
      {R"({"verb": "set", "name": "mGC_State", "value": "4"})",
       "the name of a parameter, and a number, expected"},
      {R"({"verb": "set", "name": "GC_State", "value": 4})", "there is no parameter GC_State"},
      {R"({"verb": "set", "text": "a"})", "the number of a text, and the text, expected"},
      {R"({"verb": "set", "number": 4, "text": 5})",
       "the number of a text, and the text, expected"},
      {R"({"verb": "set", "number": 99, "text": "a"})", "there is no such text"},
      {R"({"verb": "set", "number": 4, "text": ")" + tooLong + "\"}", "the text is too long"},
      {R"({"verb": "command"})",
       "the number of a command, and of a channel when there is one, expected"},
      {R"({"verb": "command", "number": -1})",
       "the number of a command, and of a channel when there is one, expected"},
      {R"({"verb": "command", "number": 0, "channel": "1"})",
       "the number of a command, and of a channel when there is one, expected"},
      {R"({"verb": "fault"})", "a fault expected"},
      {R"({"verb": "fault", "fault": []})", "fault: an object expected"},
      {R"({"verb": "fault", "fault": {"kind": "delay"}})", "fault/seconds: missing"},
      {R"({"verb": "speed"})", "a speed over 0, at most 1000000, expected"},
      {R"({"verb": "speed", "speed": 0})", "a speed over 0, at most 1000000, expected"},
      {R"({"verb": "speed", "speed": "Infinity"})", "a speed over 0, at most 1000000, expected"},
      {R"({"verb": "step"})", "seconds from 0 to 31622400 expected"},
      {R"({"verb": "step", "seconds": -1})", "seconds from 0 to 31622400 expected"},
      {R"({"verb": "step", "seconds": "NaN"})", "seconds from 0 to 31622400 expected"},
      {R"({"verb": "load"})", "the name or the file of a scenario expected"},
      {R"({"verb": "journal", "count": -1})", "a number of lines expected"},
  };
  const std::string before = done(R"({"verb": "snapshot"})");
  for (const Row& row : rows) {
    EXPECT_EQ(refused(row.request), row.error) << row.request.substr(0, 100);
  }
  EXPECT_EQ(done(R"({"verb": "snapshot"})"), before);
  EXPECT_EQ(done(R"({"verb": "fault", "list": true})"), R"({"ok":true,"faults":[]})");
}

namespace {

std::string nested(std::size_t aLevels) {
  return std::string(aLevels, '[') + "1" + std::string(aLevels, ']');
}

}  // namespace

// The request is one level itself.
TEST_F(ControlTest, MayBeAHundredLevelsDeepAndNoMore) {
  EXPECT_EQ(refused(R"({"verb": "fault", "fault": )" + nested(99) + "}"),
            "fault: an object expected");
  for (std::size_t levels : {100U, 1000U, 32000U}) {
    for (const char* member : {"fault", "value", "scenario", "else"}) {
      EXPECT_EQ(
          refused(R"({"verb": "status", ")" + std::string(member) + "\": " + nested(levels) + "}"),
          "the request is more than 100 levels deep");
    }
    EXPECT_EQ(refused(nested(levels + 1)), "the request is more than 100 levels deep");
  }
}

TEST_F(ControlTest, SetsNoLinePeakOrRowThatIsNotThere) {
  const std::string before = done(R"({"verb": "snapshot"})");
  for (const std::string name :
       {"mRepeat[0]",    "mRepeat[4]",      "mRepeat[20]",
        "mRepeat[21]",   "mRepeat[-1]",     "mRepeat[01]",
        "mRepeat[ 1]",   "mRepeat[1 ]",     "mRepeat[4294967297]",
        "mRT1[0]",       "mRT1[5]",         "mRT1[401]",
        "mLevelAmt3[1]", "mLinearCoef2[8]", "mTriggered[0]",
        "mTriggered[6]", "mTriggered[39]",  "mAlarmOn[99999999999999999999]",
        "mSlotNr[11]",   "mSlotNr[-1]",     "mSlotNr[00]"}) {
    EXPECT_EQ(refused(R"({"verb": "set", "value": 1, "name": ")" + name + "\"}"),
              "there is no parameter " + name);
  }
  EXPECT_EQ(done(R"({"verb": "snapshot"})"), before);
}

TEST_F(ControlTest, TakesEachNumberToItsLastBit) {
  done(R"({"verb": "set", "name": "mLinearCoef1[1]", "value": 2.1400000000000023e-5})");
  const std::string snapshot = done(R"({"verb": "snapshot"})");
  EXPECT_NE(snapshot.find(R"("mLinearCoef1[1]":0.000021400000000000023,)"), std::string::npos);
}

TEST_F(ControlTest, OctetsThatAreNoText) {
  EXPECT_EQ(refused("{\"verb\": \"set\", \"name\": \"\xff\", \"value\": 1}"),
            "there is no parameter \xEF\xBF\xBD");
}

}  // namespace

}  // namespace simulator
