// A simulated instrument on the bench: built from a scenario, read by name of quantity.
#pragma once

#include <Instrument.h>
#include <Scenario.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace simulator {

/// A shipped scenario in which some starting values are others.
Scenario scenarioWith(const std::string& aName,
                      const std::vector<std::pair<std::string, double>>& aValues);

/// A shipped scenario with other contents for one of its tables ("sequence", "alarms", "peaks").
Scenario scenarioWithTable(const std::string& aName, const std::string& aTable,
                           const std::string& aJson,
                           const std::vector<std::pair<std::string, double>>& aValues = {});

/// A file that is gone again after the test.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& aContents);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return mPath; }

 private:
  std::string mPath;
};

class Bench {
 public:
  explicit Bench(const std::string& aScenario = "everyday", std::uint32_t aSeed = 1);
  explicit Bench(const Scenario& aScenario, std::uint32_t aSeed = 1);

  // One parameter by its address; a failed read fails the test.
  int integer(double aNow, std::uint32_t aChannel, std::uint32_t aParmID, std::uint32_t aStep = 0);
  double real(double aNow, std::uint32_t aChannel, std::uint32_t aParmID, std::uint32_t aStep = 0);

  int state(double aNow) { return integer(aNow, 0, 102); }
  int autoState(double aNow) { return integer(aNow, 0, 138); }
  int runTime(double aNow) { return integer(aNow, 0, 161); }
  int counter(double aNow) { return integer(aNow, 0, 2202); }
  int runType(double aNow) { return integer(aNow, 0, 141); }
  int stream(double aNow) { return integer(aNow, 0, 58); }
  double columnTemp1(double aNow) { return real(aNow, 1, 300); }

  // One setting; returns the status.
  std::uint32_t writeReal(double aNow, std::uint32_t aChannel, std::uint32_t aParmID, double aValue,
                          std::uint32_t aStep = 0);
  std::uint32_t writeInteger(double aNow, std::uint32_t aChannel, std::uint32_t aParmID,
                             std::int32_t aValue, std::uint32_t aStep = 0);

  std::uint32_t command(double aNow, std::uint32_t aNumber) {
    return instrument->command(aNow, 0, aNumber);
  }
  void set(double aNow, const std::string& aName, double aValue);

  /// The snapshot as compact JSON.
  std::string snapshot(double aNow);

  std::unique_ptr<Instrument> instrument;

 private:
  ParamList read(double aNow, std::uint32_t aChannel, std::uint32_t aParmID, std::uint32_t aStep);
};

}  // namespace simulator
