// A scenario brings its faults with it, or nothing changes.
#include "Simulation.h"

#include <gtest/gtest.h>

#include <fstream>

#include "TemporaryFolder.h"

namespace simulator {

namespace {

class SimulationTest : public ::testing::Test {
 protected:
  /// Loads a scenario with these faults; everything else is as in another one.
  bool load(const std::string& aFaults) {
    Simulation other;
    rapidjson::Document scenario;
    EXPECT_TRUE(other.load("bare", mError)) << mError;
    other.instrument->snapshot(0.0, scenario);
    rapidjson::Document faults(&scenario.GetAllocator());
    faults.Parse(aFaults.c_str());
    scenario.AddMember("faults", faults, scenario.GetAllocator());
    rapidjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    scenario.Accept(writer);
    std::ofstream(mPath) << buffer.GetString();
    mError.clear();
    return mSimulation.load(mPath, mError);
  }

  std::string faults() const {
    rapidjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    mSimulation.faults.describe(writer);
    return buffer.GetString();
  }

  TemporaryFolder mFolder;
  std::string mPath = mFolder.path("scenario.json");
  std::string mError;
  Simulation mSimulation;
};

TEST_F(SimulationTest, LoadsTheFaultsOfAScenario) {
  ASSERT_TRUE(load(R"([{"kind":"hang"},{"kind":"short"}])")) << mError;
  EXPECT_EQ(faults(), R"([{"fault":{"kind":"hang"},"seen":0,"hits":0},)"
                      R"({"fault":{"kind":"short"},"seen":0,"hits":0}])");
  ASSERT_TRUE(load("[]")) << mError;
  EXPECT_EQ(faults(), "[]");
}

TEST_F(SimulationTest, RefusesAScenarioWithABadFault) {
  ASSERT_TRUE(load(R"([{"kind":"hang"}])")) << mError;
  EXPECT_FALSE(load(R"([{"kind":"short"},{"kind":"delay"}])"));
  EXPECT_EQ(mError, mPath + ": /faults/1/seconds: missing");
  EXPECT_EQ(faults(), R"([{"fault":{"kind":"hang"},"seen":0,"hits":0}])");
}

}  // namespace

}  // namespace simulator
