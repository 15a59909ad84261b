// Units configured by the owner: the setting, and where the units appear.
#include "Units.h"

#include "Bench.h"

namespace gateway {

namespace {

Answer configuration(const std::string& aBody) {
  return {200, aBody, "configuration", ""};
}

std::string unitsFrom(const std::string& aSetting) {
  return withUnits(configuration("{}"), aSetting).body;
}

TEST(Units, AreAMemberOfTheConfiguration) {
  const Answer answer = withUnits(configuration("{\"a\": 1.50,\t\"b\": {}}\n"), "pressure=kPa");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.schema, "configuration");
  EXPECT_EQ(answer.body, "{\"a\": 1.50,\t\"b\": {},\"units\":{\"pressure\":\"kPa\"}}\n");
}

TEST(Units, ComeAloneInAnEmptyDocument) {
  EXPECT_EQ(withUnits(configuration(" { \r\n\t} "), "amount=%").body,
            " { \r\n\t\"units\":{\"amount\":\"%\"}} ");
}

TEST(Units, AreThoseOfAllQuantities) {
  EXPECT_EQ(unitsFrom("temperature=\xC2\xB0"
                      "C,pressure=kPa,ambient_pressure=hPa,auto_zero=mV,retention_time=s,"
                      "flush_time=min,amount=mol %"),
            "{\"units\":{\"temperature\":\"\xC2\xB0"
            "C\",\"pressure\":\"kPa\",\"ambient_pressure\":\"hPa\",\"auto_zero\":\"mV\","
            "\"retention_time\":\"s\",\"flush_time\":\"min\",\"amount\":\"mol %\"}}");
}

TEST(Units, MayHaveBlanksAroundThem) {
  EXPECT_EQ(unitsFrom("  amount =  mol % ,  pressure= kPa"),
            R"({"units":{"amount":"mol %","pressure":"kPa"}})");
}

TEST(Units, MayHoldAnything) {
  EXPECT_EQ(unitsFrom("amount=a=\"\\\xFF"), "{\"units\":{\"amount\":\"a=\\\"\\\\\xEF\xBF\xBD\"}}");
}

TEST(Units, AreOnlyInAConfiguration) {
  const Answer result{200, "{}", "result", ""};
  EXPECT_EQ(withUnits(result, "amount=%").body, "{}");
  const Answer fault{503, "{}", "", ""};
  EXPECT_EQ(withUnits(fault, "amount=%").body, "{}");
  EXPECT_EQ(withUnits(configuration("{}"), "").body, "{}");
}

struct WrongRow {
  const char* setting;
  const char* told;
};

TEST(Units, ThatCannotBeReadAreTold) {
  constexpr WrongRow cWrong[] = {
      {"temp=K", "temp=K"},
      {"amount", "amount"},
      {"amount=", "amount="},
      {"amount= ", "amount="},
      {"=K", "=K"},
      {" ", ""},
      {",", ""},
      {"amount=%,", ""},
      {"pressure=kPa,amount=%, pressure=bar ", "pressure=bar"},
      {"Temperature=K", "Temperature=K"},
      {"pressure=kPa;amount=%,x", "x"},
  };
  for (const WrongRow& row : cWrong) {
    const Answer answer = withUnits(configuration("{}"), row.setting);
    EXPECT_EQ(answer.status, 500) << row.setting;
    EXPECT_EQ(answer.schema, "");
    EXPECT_EQ(answer.body,
              "{\"title\":\"Internal Server Error\",\"status\":500,\"detail\":\"GC_WEB_UNITS must "
              "be a comma-separated list of pairs such as temperature=\xC2\xB0"
              "C, each quantity at most once; invalid pair: " +
                  std::string(row.told) + "\"}")
        << row.setting;
  }
}

class UnitsRequest : public Bench {};

TEST_F(UnitsRequest, HasThemInTheConfigurationOnly) {
  toolDoes("out {\"total\": 0}");
  input.variables["GC_WEB_UNITS"] = "amount=%";
  EXPECT_EQ(report("/api/config").body, R"({"total": 0,"units":{"amount":"%"}})");
  EXPECT_EQ(report("/api/sequence").body, R"({"total": 0})");
  input.variables["GC_WEB_UNITS"] = "amount";
  EXPECT_EQ(report("/api/config").status, 500);
  EXPECT_EQ(report("/api/status").status, 200);
}

}  // namespace

}  // namespace gateway
