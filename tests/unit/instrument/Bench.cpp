// Scenarios, files and short ways to one value.
#include "Bench.h"

#include <gtest/gtest.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace simulator {

namespace {

Scenario load(const std::string& aName) {
  Scenario scenario;
  std::string error;
  EXPECT_TRUE(loadScenario(aName, scenario, error)) << error;
  return scenario;
}

}  // namespace

Scenario scenarioWith(const std::string& aName,
                      const std::vector<std::pair<std::string, double>>& aValues) {
  Scenario scenario = load(aName);
  auto& allocator = scenario.document.GetAllocator();
  auto& parameters = scenario.document["parameters"];
  for (const auto& [name, value] : aValues) {
    parameters.RemoveMember(name.c_str());
    parameters.AddMember(rapidjson::Value(name.c_str(), allocator), rapidjson::Value(value),
                         allocator);
  }
  return scenario;
}

Scenario scenarioWithTable(const std::string& aName, const std::string& aTable,
                           const std::string& aJson,
                           const std::vector<std::pair<std::string, double>>& aValues) {
  Scenario scenario = scenarioWith(aName, aValues);
  auto& allocator = scenario.document.GetAllocator();
  rapidjson::Document table(&allocator);
  table.Parse(aJson.c_str());
  EXPECT_FALSE(table.HasParseError()) << aJson;
  scenario.document.RemoveMember(aTable.c_str());
  scenario.document.AddMember(rapidjson::Value(aTable.c_str(), allocator), table, allocator);
  return scenario;
}

TemporaryFile::TemporaryFile(const std::string& aContents)
    : mPath(::testing::TempDir() + "gc_instrument_tests_XXXXXX") {
  const int descriptor = mkstemp(mPath.data());
  EXPECT_NE(descriptor, -1);
  close(descriptor);
  std::ofstream(mPath, std::ios::binary) << aContents;
}

TemporaryFile::~TemporaryFile() {
  unlink(mPath.c_str());
}

Bench::Bench(const std::string& aScenario, std::uint32_t aSeed) : Bench(load(aScenario), aSeed) {}

Bench::Bench(const Scenario& aScenario, std::uint32_t aSeed)
    : instrument(std::make_unique<Instrument>(aScenario, aSeed)) {}

int Bench::integer(double aNow, std::uint32_t aChannel, std::uint32_t aParmID,
                   std::uint32_t aStep) {
  return read(aNow, aChannel, aParmID, aStep).intvalue;
}

double Bench::real(double aNow, std::uint32_t aChannel, std::uint32_t aParmID,
                   std::uint32_t aStep) {
  return read(aNow, aChannel, aParmID, aStep).realvalue;
}

std::uint32_t Bench::writeReal(double aNow, std::uint32_t aChannel, std::uint32_t aParmID,
                               double aValue, std::uint32_t aStep) {
  return instrument->write(aNow, {{aChannel, 0, aStep, aParmID, aValue, 0, 0}});
}

std::uint32_t Bench::writeInteger(double aNow, std::uint32_t aChannel, std::uint32_t aParmID,
                                  std::int32_t aValue, std::uint32_t aStep) {
  return instrument->write(aNow, {{aChannel, 0, aStep, aParmID, 0.0, aValue, 0}});
}

void Bench::set(double aNow, const std::string& aName, double aValue) {
  EXPECT_TRUE(instrument->set(aNow, aName, aValue)) << aName;
}

std::string Bench::snapshot(double aNow) {
  rapidjson::Document document;
  instrument->snapshot(aNow, document);
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  EXPECT_TRUE(document.Accept(writer));
  return buffer.GetString();
}

ParamList Bench::read(double aNow, std::uint32_t aChannel, std::uint32_t aParmID,
                      std::uint32_t aStep) {
  std::vector<ParamList> records{{aChannel, 0, aStep, aParmID, 0.0, 0, 99}};
  EXPECT_EQ(instrument->read(aNow, records), 0U) << aChannel << "/" << aParmID;
  EXPECT_EQ(records[0].ServiceStatus, 0U);
  return records[0];
}

}  // namespace simulator
