// Which faults are taken, and which of them acts on which call.
#include "Faults.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace simulator {

namespace {

using wire::eType;

bool add(FaultList& faults, const std::string& aJson, std::string& error) {
  rapidjson::Document document;
  document.Parse(aJson.c_str());
  EXPECT_FALSE(document.HasParseError()) << aJson;
  return faults.add(document, error);
}

void add(FaultList& faults, const std::string& aJson) {
  std::string error;
  ASSERT_TRUE(add(faults, aJson, error)) << error;
}

/// The status of the fault that acts on each of `count` calls, 0 for none.
std::vector<std::uint32_t> hits(FaultList& faults, eType aCall, int count) {
  std::vector<std::uint32_t> statuses;
  for (int n = 0; n < count; ++n) {
    const std::optional<Fault> fault = faults.match(aCall);
    statuses.push_back(fault ? fault->status : 0);
  }
  return statuses;
}

using Statuses = std::vector<std::uint32_t>;

TEST(FaultMatching, FirstCallByDefault) {
  FaultList faults;
  add(faults, R"({"kind": "status", "status": 5})");
  EXPECT_EQ(hits(faults, eType::eRead, 3), (Statuses{5, 0, 0}));
}

TEST(FaultMatching, NthCall) {
  FaultList faults;
  add(faults, R"({"kind": "status", "status": 5, "nth": 3})");
  EXPECT_EQ(hits(faults, eType::eRead, 5), (Statuses{0, 0, 5, 0, 0}));
}

TEST(FaultMatching, Times) {
  FaultList faults;
  add(faults, R"({"kind": "status", "status": 5, "nth": 2, "times": 3})");
  EXPECT_EQ(hits(faults, eType::eRead, 6), (Statuses{0, 5, 5, 5, 0, 0}));
}

TEST(FaultMatching, ForEver) {
  FaultList faults;
  add(faults, R"({"kind": "status", "status": 5, "nth": 2, "times": 0})");
  EXPECT_EQ(hits(faults, eType::eRead, 6), (Statuses{0, 5, 5, 5, 5, 5}));
}

TEST(FaultMatching, OnlyItsCallCounts) {
  FaultList faults;
  add(faults, R"({"kind": "status", "status": 5, "call": "Write", "nth": 2})");
  EXPECT_EQ(hits(faults, eType::eRead, 3), (Statuses{0, 0, 0}));
  EXPECT_EQ(hits(faults, eType::eWrite, 1), (Statuses{0}));
  EXPECT_EQ(hits(faults, eType::eCommand, 1), (Statuses{0}));
  EXPECT_EQ(hits(faults, eType::eWrite, 2), (Statuses{5, 0}));
}

TEST(FaultMatching, AnyCallCounts) {
  FaultList faults;
  add(faults, R"({"kind": "status", "status": 5, "call": "Any", "nth": 7})");
  for (const eType call : {eType::eConnect, eType::eRead, eType::eWrite, eType::eCommand,
                           eType::eObject, eType::eProgramInfo}) {
    EXPECT_EQ(hits(faults, call, 1), Statuses{0});
  }
  EXPECT_EQ(hits(faults, eType::eDisconnect, 1), Statuses{5});
}

TEST(FaultMatching, TheOneAddedFirstActs) {
  FaultList faults;
  add(faults, R"({"kind": "status", "status": 1})");
  add(faults, R"({"kind": "status", "status": 2})");
  add(faults, R"({"kind": "status", "status": 3, "nth": 2, "times": 2})");
  EXPECT_EQ(hits(faults, eType::eRead, 5), (Statuses{1, 2, 3, 3, 0}));
}

TEST(FaultMatching, CountsFromWhenItWasAdded) {
  FaultList faults;
  EXPECT_EQ(hits(faults, eType::eRead, 3), (Statuses{0, 0, 0}));
  add(faults, R"({"kind": "status", "status": 5, "nth": 2})");
  EXPECT_EQ(hits(faults, eType::eRead, 3), (Statuses{0, 5, 0}));
}

TEST(FaultMatching, KindsThatHitOnlySomeCalls) {
  struct Row {
    const char* fault;
    std::vector<eType> calls;
  };
  const Row rows[] = {
      {R"({"kind": "ignore", "times": 0})", {eType::eWrite, eType::eCommand}},
      {R"({"kind": "text", "text": "", "times": 0})", {eType::eObject}},
      {R"({"kind": "unanswered", "records": "all", "times": 0})", {eType::eRead}},
      {R"({"kind": "value", "records": "all", "int": 1, "times": 0})", {eType::eRead}},
      {R"({"kind": "swap", "a": 0, "b": 1, "times": 0})", {eType::eRead, eType::eWrite}},
  };
  for (const Row& row : rows) {
    FaultList faults;
    add(faults, row.fault);
    std::vector<eType> hit;
    for (std::uint32_t n = 1; n <= 7; ++n) {
      if (faults.match(static_cast<eType>(n))) {
        hit.push_back(static_cast<eType>(n));
      }
    }
    EXPECT_EQ(hit, row.calls) << row.fault;
  }
}

TEST(FaultMatching, RefusalsCountConnectionsNotCalls) {
  FaultList faults;
  add(faults, R"({"kind": "refuse", "nth": 2})");
  add(faults, R"({"kind": "hang", "call": "Connect"})");
  EXPECT_FALSE(faults.matchAccepted());
  EXPECT_EQ(faults.match(eType::eConnect)->kind, eFault::eHang);
  EXPECT_FALSE(faults.match(eType::eConnect));
  EXPECT_TRUE(faults.matchAccepted());
  EXPECT_FALSE(faults.matchAccepted());
}

TEST(FaultMatching, ClearedOnesDoNotAct) {
  FaultList faults;
  add(faults, R"({"kind": "hang", "times": 0})");
  faults.clear();
  EXPECT_FALSE(faults.match(eType::eRead));
}

Fault parsed(const std::string& aJson, eType aCall = eType::eRead) {
  FaultList faults;
  add(faults, aJson);
  return faults.match(aCall).value_or(Fault());
}

TEST(FaultParsing, Fields) {
  EXPECT_FALSE(parsed(R"({"kind": "drop"})").after);
  EXPECT_FALSE(parsed(R"({"kind": "drop", "when": "before"})").after);
  EXPECT_TRUE(parsed(R"({"kind": "drop", "when": "after"})").after);
  EXPECT_EQ(parsed(R"({"kind": "delay", "seconds": 0.25})").seconds, 0.25);
  EXPECT_EQ(parsed(R"({"kind": "status", "status": 4294967295})").status, 4294967295U);
  EXPECT_TRUE(parsed(R"({"kind": "unanswered", "records": "all"})").allRecords);
  EXPECT_EQ(parsed(R"({"kind": "unanswered", "records": [3, 0]})").records, (Statuses{3, 0}));
  const Fault swap = parsed(R"({"kind": "swap", "a": 4, "b": 2})");
  EXPECT_EQ(swap.first, 4U);
  EXPECT_EQ(swap.second, 2U);
  const Fault value = parsed(R"({"kind": "value", "records": [1], "real": "NaN", "int": -5})");
  EXPECT_TRUE(std::isnan(value.real.value_or(0.0)));
  EXPECT_EQ(value.integer, -5);
  EXPECT_FALSE(parsed(R"({"kind": "value", "records": [1], "int": 5})").real.has_value());
  EXPECT_FALSE(parsed(R"({"kind": "value", "records": [1], "real": 5})").integer.has_value());
}

TEST(FaultParsing, NamesAndKinds) {
  const struct {
    const char* fault;
    const char* name;
    eFault kind;
    eType call;
  } cRows[] = {
      {R"({"kind": "drop"})", "drop", eFault::eDrop, eType::eRead},
      {R"({"kind": "delay", "seconds": 1})", "delay", eFault::eDelay, eType::eRead},
      {R"({"kind": "hang"})", "hang", eFault::eHang, eType::eRead},
      {R"({"kind": "status", "status": 1})", "status", eFault::eStatus, eType::eRead},
      {R"({"kind": "unanswered", "records": []})", "unanswered", eFault::eUnanswered, eType::eRead},
      {R"({"kind": "swap", "a": 0, "b": 1})", "swap", eFault::eSwap, eType::eWrite},
      {R"({"kind": "short"})", "short", eFault::eShort, eType::eRead},
      {R"({"kind": "truncate"})", "truncate", eFault::eTruncate, eType::eRead},
      {R"({"kind": "value", "records": [], "int": 1})", "value", eFault::eValue, eType::eRead},
      {R"({"kind": "text", "text": ""})", "text", eFault::eText, eType::eObject},
      {R"({"kind": "ignore"})", "ignore", eFault::eIgnore, eType::eCommand},
  };
  for (const auto& row : cRows) {
    const Fault fault = parsed(row.fault, row.call);
    EXPECT_STREQ(fault.name, row.name);
    EXPECT_EQ(fault.kind, row.kind) << row.name;
  }
}

TEST(FaultParsing, Bounds) {
  EXPECT_EQ(parsed(R"({"kind": "hang", "nth": 1})").nth, 1U);
  EXPECT_EQ(parsed(R"({"kind": "delay", "seconds": 0})").name, std::string("delay"));
  EXPECT_EQ(parsed(R"({"kind": "delay", "seconds": 3600})").seconds, 3600.0);
  const auto records = [](std::size_t aCount) {
    std::string list = "0";
    for (std::size_t n = 1; n < aCount; ++n) {
      list += ", 0";
    }
    return R"({"kind": "unanswered", "records": [)" + list + "]}";
  };
  EXPECT_EQ(parsed(records(4096)).records.size(), 4096U);
  const auto text = [](const char* aKind, std::size_t aCount) {
    return std::string(R"({"kind": "text", ")") + aKind + "\": \"" + std::string(aCount, '0') +
           "\"}";
  };
  EXPECT_EQ(parsed(text("text", 65536), eType::eObject).text.size(), 65536U);
  EXPECT_EQ(parsed(text("hex", 131072), eType::eObject).text.size(), 65536U);
  FaultList faults;
  std::string error;
  EXPECT_FALSE(add(faults, records(4097), error));
  EXPECT_FALSE(add(faults, text("text", 65537), error));
  EXPECT_EQ(error, "/text: a text of at most 65536 octets expected");
  EXPECT_FALSE(add(faults, text("hex", 131074), error));
}

TEST(FaultParsing, Texts) {
  EXPECT_EQ(parsed(R"({"kind": "text", "text": "a\u0000b"})", eType::eObject).text,
            std::string("a\0b", 3));
  EXPECT_EQ(parsed(R"({"kind": "text", "hex": "00fFA5"})", eType::eObject).text,
            std::string("\0\xff\xa5", 3));
  EXPECT_EQ(parsed(R"({"kind": "text", "hex": ""})", eType::eObject).text, "");
  EXPECT_EQ(parsed(R"({"kind": "text", "length": 5})", eType::eObject).text, "xxxxx");
  EXPECT_EQ(parsed(R"({"kind": "text", "length": 65536})", eType::eObject).text.size(), 65536U);
}

TEST(FaultParsing, Refusals) {
  struct Row {
    const char* fault;
    const char* error;
  };
  const Row rows[] = {
      {"[]", ": an object expected"},
      {"{}", "/kind: the name of a kind of fault expected"},
      {R"({"kind": 1})", "/kind: the name of a kind of fault expected"},
      {R"({"kind": "Drop"})", "/kind: the name of a kind of fault expected"},
      {R"({"kind": "hang", "nth": 0})", "/nth: a whole number from 1 expected"},
      {R"({"kind": "hang", "nth": 1.5})", "/nth: a whole number from 1 expected"},
      {R"({"kind": "hang", "times": -1})", "/times: a whole number from 0 expected"},
      {R"({"kind": "hang", "call": "read"})",
       R"(/call: "Any" or a call that faults of this kind can hit expected)"},
      {R"({"kind": "ignore", "call": "Read"})",
       R"(/call: "Any" or a call that faults of this kind can hit expected)"},
      {R"({"kind": "refuse", "call": "Read"})",
       R"(/call: "Any" or a call that faults of this kind can hit expected)"},
      {R"({"kind": "hang", "seconds": 1})", R"(/seconds: no field of "hang")"},
      {R"({"kind": "drop", "when": "never"})", R"(/when: "before" or "after" expected)"},
      {R"({"kind": "delay"})", "/seconds: missing"},
      {R"({"kind": "delay", "seconds": -1})", "/seconds: a number from 0 to 3600 expected"},
      {R"({"kind": "delay", "seconds": 3601})", "/seconds: a number from 0 to 3600 expected"},
      {R"({"kind": "delay", "seconds": "NaN"})", "/seconds: a number from 0 to 3600 expected"},
      {R"({"kind": "status"})", "/status: missing"},
      {R"({"kind": "status", "status": 4294967296})",
       "/status: an unsigned 32-bit number expected"},
      {R"({"kind": "unanswered"})", "/records: missing"},
      {R"({"kind": "unanswered", "records": 1})",
       R"(/records: an array of indices, or "all" expected)"},
      {R"({"kind": "unanswered", "records": [0, -1]})",
       R"(/records: an array of indices, or "all" expected)"},
      {R"({"kind": "swap", "a": 0})", "/b: missing"},
      {R"({"kind": "swap", "b": 0})", "/a: missing"},
      {R"({"kind": "swap"})", "/a: missing"},
      {R"({"kind": "swap", "a": -1, "b": 0})", "/a: an index expected"},
      {R"({"kind": "swap", "a": 0, "b": -1})", "/b: an index expected"},
      {R"({"kind": "value", "records": 1, "int": 1})",
       R"(/records: an array of indices, or "all" expected)"},
      {R"({"kind": "value", "records": [], "real": true})",
       R"(/real: a number, "NaN", "Infinity" or "-Infinity" expected)"},
      {R"({"kind": "text", "text": 1})", "/text: a text of at most 65536 octets expected"},
      {R"({"kind": "value", "records": "all"})", ": one or more of real, int expected"},
      {R"({"kind": "value", "real": 1})", "/records: missing"},
      {R"({"kind": "value", "records": "all", "int": 2147483648})",
       "/int: a signed 32-bit number expected"},
      {R"({"kind": "text"})", ": one of text, hex, length expected"},
      {R"({"kind": "text", "text": "", "length": 1})", ": one of text, hex, length expected"},
      {R"({"kind": "text", "hex": "0"})",
       "/hex: pairs of hexadecimal digits, at most 65536 expected"},
      {R"({"kind": "text", "hex": "0g"})",
       "/hex: pairs of hexadecimal digits, at most 65536 expected"},
      {R"({"kind": "text", "length": 65537})", "/length: a whole number from 0 to 65536 expected"},
  };
  for (const Row& row : rows) {
    FaultList faults;
    std::string error;
    EXPECT_FALSE(add(faults, row.fault, error)) << row.fault;
    EXPECT_EQ(error, row.error);
    EXPECT_FALSE(faults.match(eType::eRead));
  }
}

TEST(FaultList, IsBounded) {
  FaultList faults;
  for (int n = 0; n < 1000; ++n) {
    add(faults, R"({"kind": "hang"})");
  }
  std::string error;
  EXPECT_FALSE(add(faults, R"({"kind": "hang"})", error));
  EXPECT_EQ(error, ": too many faults wait already");
  EXPECT_TRUE(faults.match(eType::eRead));  // makes room, having acted
  EXPECT_TRUE(add(faults, R"({"kind": "hang"})", error)) << error;
}

TEST(FaultList, DescribesWhatCanStillAct) {
  FaultList faults;
  add(faults, R"({"kind":"status","status":1})");
  add(faults, R"({"kind":"status","status":2,"times":2})");
  add(faults, R"({"kind":"text","hex":"ff"})");
  EXPECT_EQ(hits(faults, eType::eRead, 2), (Statuses{1, 2}));
  rapidjson::StringBuffer buffer;
  JsonWriter writer(buffer);
  faults.describe(writer);
  EXPECT_STREQ(buffer.GetString(),
               R"([{"fault":{"kind":"status","status":2,"times":2},"seen":2,"hits":1},)"
               R"({"fault":{"kind":"text","hex":"ff"},"seen":0,"hits":0}])");
}

}  // namespace

}  // namespace simulator
