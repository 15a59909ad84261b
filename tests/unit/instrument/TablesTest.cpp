// Sequence table and calibration table: reading, downloading, clearing.
#include <Status.h>
#include <gtest/gtest.h>

#include <cmath>

#include "Bench.h"

namespace simulator {

namespace {

constexpr std::uint32_t cInsertLine = 19;
constexpr std::uint32_t cClearSequence = 22;
constexpr std::uint32_t cClearCalibration = 26;

struct Line {
  int type;
  int repeat;
  int stream;
  int slot;
  double flushTime;

  bool operator==(const Line& other) const {
    return type == other.type && repeat == other.repeat && stream == other.stream &&
           slot == other.slot && flushTime == other.flushTime;
  }
};

std::vector<Line> sequence(Bench& bench) {
  std::vector<Line> lines;
  const int total = bench.integer(0.0, 0, 144);
  for (int line = 1; line <= total; ++line) {
    const auto n = static_cast<std::uint32_t>(line);
    lines.push_back({bench.integer(0.0, 0, 23, n), bench.integer(0.0, 0, 24, n),
                     bench.integer(0.0, 0, 22, n), bench.integer(0.0, 1, 1010, n),
                     bench.real(0.0, 0, 26, n)});
  }
  return lines;
}

std::uint32_t writeLine(Bench& bench, std::uint32_t n, const Line& aLine) {
  return bench.instrument->write(0.0, {{0, 0, n, 23, 0.0, aLine.type, 0},
                                       {0, 0, n, 24, 0.0, aLine.repeat, 0},
                                       {0, 0, n, 25, 0.0, 1, 0},
                                       {0, 0, n, 22, 0.0, aLine.stream, 0},
                                       {1, 0, n, 1010, 0.0, aLine.slot, 0},
                                       {0, 0, n, 26, aLine.flushTime, 0, 0}});
}

/// As the tool does it. Returns the first refusal.
std::uint32_t download(Bench& bench, const std::vector<Line>& aLines) {
  std::uint32_t status =
      bench.instrument->write(0.0, {{0, 0, 0, 15, 0.0, 3, 0}, {0, 0, 0, 12, 0.0, 1, 0}});
  if (status == eSuccess) {
    status = bench.command(0.0, cClearSequence);
  }
  for (std::uint32_t n = 1; status == eSuccess && n <= aLines.size(); ++n) {
    status = n > 1 ? bench.command(0.0, cInsertLine) : status;
    if (status == eSuccess) {
      status = writeLine(bench, n, aLines[n - 1]);
    }
  }
  return status;
}

std::uint32_t readStatus(Bench& bench, std::uint32_t aChannel, std::uint32_t aId,
                         std::uint32_t aStep) {
  std::vector<ParamList> records{{aChannel, 0, aStep, aId, 1.0, 1, 1}};
  const std::uint32_t status = bench.instrument->read(0.0, records);
  EXPECT_EQ(status == eSuccess, records[0].ServiceStatus == eSuccess);
  return records[0].ServiceStatus;
}

}  // namespace

TEST(Sequence, ComesBackAsItWasDownloaded) {
  for (std::size_t count : {1U, 2U, 7U, 20U}) {
    std::vector<Line> lines;
    lines.reserve(count);
    for (int n = 0; n < static_cast<int>(count); ++n) {
      lines.push_back({n % 4, n * 50 % 1000, n % 47, n % 11, n * 3.0});
    }
    Bench bench;
    EXPECT_EQ(download(bench, lines), eSuccess);
    EXPECT_EQ(bench.integer(0.0, 0, 15), 3);
    EXPECT_EQ(bench.integer(0.0, 0, 12), 1);
    EXPECT_EQ(bench.integer(0.0, 0, 144), static_cast<int>(count));
    EXPECT_EQ(bench.integer(0.0, 0, 25, 1), 1);
    EXPECT_TRUE(sequence(bench) == lines) << count;
  }
}

TEST(Sequence, ThatIsClearedHasOneEmptyLine) {
  Bench bench;
  EXPECT_EQ(bench.integer(0.0, 0, 144), 3);
  EXPECT_EQ(download(bench, {}), eSuccess);
  EXPECT_TRUE(sequence(bench) == std::vector<Line>{(Line{0, 0, 0, 0, 0.0})});
  EXPECT_EQ(bench.integer(0.0, 0, 25, 1), 0);
  EXPECT_EQ(bench.integer(0.0, 0, 15), 3);  // the header stays
}

TEST(Sequence, TakesTwentyLinesAndNoMore) {
  Bench bench;
  EXPECT_EQ(bench.command(0.0, cClearSequence), eSuccess);
  for (int line = 2; line <= 20; ++line) {
    EXPECT_EQ(bench.command(0.0, cInsertLine), eSuccess) << line;
    EXPECT_EQ(bench.integer(0.0, 0, 144), line);
  }
  EXPECT_EQ(bench.command(0.0, cInsertLine), eStateForbids);
  EXPECT_EQ(bench.integer(0.0, 0, 144), 20);
}

TEST(Sequence, AnInsertedLineIsEmpty) {
  Bench bench;
  bench.set(0.0, "mTotalLines", 4);
  bench.set(0.0, "mRepeat[4]", 9);
  bench.set(0.0, "mTotalLines", 3);
  EXPECT_EQ(bench.command(0.0, cInsertLine), eSuccess);
  EXPECT_EQ(bench.integer(0.0, 0, 24, 4), 0);
}

TEST(Sequence, LinesThatAreNotThereAreUnknown) {
  Bench bench;  // three lines
  for (std::uint32_t line : {0U, 4U, 20U, 21U, UINT32_MAX}) {
    EXPECT_EQ(readStatus(bench, 0, 24, line), eParameterUnknown) << line;
    EXPECT_EQ(bench.writeInteger(0.0, 0, 24, 1, line), eParameterUnknown) << line;
  }
  EXPECT_EQ(readStatus(bench, 0, 1010, 1), eParameterUnknown);  // channel 1 has the solutions
  EXPECT_EQ(readStatus(bench, 1, 24, 1), eParameterUnknown);
  EXPECT_EQ(readStatus(bench, 0, 144, 1), eParameterUnknown);
}

TEST(Sequence, BoundsAreChecked) {
  struct Case {
    std::uint32_t channel;
    std::uint32_t id;
    int highest;
  };
  Bench bench;
  for (const Case& one :
       {Case{0, 23, 3}, Case{0, 24, 999}, Case{0, 22, 46}, Case{0, 25, 1}, Case{1, 1010, 10}}) {
    EXPECT_EQ(bench.writeInteger(0.0, one.channel, one.id, one.highest, 2), eSuccess) << one.id;
    for (int wrong : {one.highest + 1, -1, INT32_MAX, INT32_MIN}) {
      EXPECT_EQ(bench.writeInteger(0.0, one.channel, one.id, wrong, 2), eOutOfBounds) << one.id;
    }
    EXPECT_EQ(bench.integer(0.0, one.channel, one.id, 2), one.highest);
  }
  EXPECT_EQ(bench.writeReal(0.0, 0, 26, 60.0, 2), eSuccess);
  for (double wrong : {60.01, -0.01, std::nan(""), HUGE_VAL}) {
    EXPECT_EQ(bench.writeReal(0.0, 0, 26, wrong, 2), eOutOfBounds);
  }
  EXPECT_EQ(bench.writeInteger(0.0, 0, 15, 1000), eOutOfBounds);
  EXPECT_EQ(bench.writeInteger(0.0, 0, 12, 2), eOutOfBounds);
  EXPECT_EQ(bench.writeInteger(0.0, 0, 144, 2), eReadOnly);
}

TEST(Sequence, ALineIsWrittenWholeOrNotAtAll) {
  Bench bench;
  const auto before = sequence(bench);
  EXPECT_EQ(writeLine(bench, 2, {0, 7, 1, 11, 1.0}), eOutOfBounds);
  EXPECT_TRUE(sequence(bench) == before);
}

TEST(Sequence, IsNotChangedWhileSomethingRuns) {
  for (std::uint32_t start : {0U, 16U}) {
    Bench bench;
    EXPECT_EQ(bench.command(0.0, start), eSuccess);
    EXPECT_EQ(bench.command(0.0, cClearSequence), eStateForbids);
    EXPECT_EQ(bench.command(0.0, cInsertLine), eStateForbids);
    EXPECT_EQ(bench.command(0.0, cClearCalibration), eStateForbids);
    EXPECT_EQ(bench.writeInteger(0.0, 0, 15, 2), eStateForbids);
    EXPECT_EQ(bench.writeInteger(0.0, 0, 12, 0), eStateForbids);
    EXPECT_EQ(writeLine(bench, 1, {0, 1, 1, 0, 0.0}), eStateForbids);
    EXPECT_EQ(bench.writeReal(0.0, 1, 1230, 1.0, 1), eStateForbids);
    EXPECT_EQ(bench.integer(0.0, 0, 144), 3);
  }
}

TEST(Sequence, CountsThatAnOperatorSetsAreTakenAsFarAsTheyGo) {
  Bench bench;
  for (double total : {0.0, -1.0, -2147483648.0}) {
    bench.set(0.0, "mTotalLines", total);
    EXPECT_EQ(readStatus(bench, 0, 24, 1), eSuccess) << total;
    EXPECT_EQ(readStatus(bench, 0, 24, 2), eParameterUnknown) << total;
  }
  EXPECT_EQ(bench.command(0.0, cInsertLine), eSuccess);
  EXPECT_EQ(bench.integer(0.0, 0, 144), 2);
  for (double total : {25.0, 2147483647.0}) {
    bench.set(0.0, "mTotalLines", total);
    EXPECT_EQ(readStatus(bench, 0, 24, 20), eSuccess) << total;
    EXPECT_EQ(bench.command(0.0, cInsertLine), eStateForbids);
  }
}

namespace {

std::string name(Bench& bench, std::uint32_t aChannel, std::uint32_t aPeak) {
  std::string text;
  for (std::uint32_t id = 1176; id <= 1195; ++id) {
    text += static_cast<char>(bench.integer(0.0, aChannel, id, aPeak));
  }
  return text;
}

std::string component(Bench& bench, std::uint32_t aIndex) {
  std::string text;
  for (std::uint32_t position = 1; position <= 20; ++position) {
    text += static_cast<char>(bench.integer(0.0, position, 2021, aIndex));
  }
  return text;
}

std::string padded(const std::string& aText) {
  return aText + std::string(20 - aText.size(), '\0');
}

}  // namespace

TEST(Peaks, HaveNamesTimesAmountsAndCoefficients) {
  Bench bench;
  EXPECT_EQ(name(bench, 1, 3), padded("Carbon dioxide"));
  EXPECT_EQ(name(bench, 2, 7), padded("n-Hexane"));
  EXPECT_EQ(bench.real(0.0, 2, 1196, 7), 2.62);
  EXPECT_EQ(bench.real(0.0, 1, 1230, 2), 84.95);
  EXPECT_EQ(bench.real(0.0, 1, 1242, 4), 0.0000173);
}

TEST(Peaks, NamesMayUseAllTwentyCharacters) {
  Bench bench(scenarioWithTable("everyday", "peaks",
                                R"([{"channel": 4, "name": "12345678901234567890",)"
                                R"( "retentionTime": 1, "levelAmount": 2,)"
                                R"( "linearCoefficient": 3}])"));
  EXPECT_EQ(name(bench, 4, 1), "12345678901234567890");
  EXPECT_EQ(component(bench, 1), "12345678901234567890");
  EXPECT_EQ(bench.writeReal(0.0, 4, 1230, 1.0, 1), eStateForbids);  // channel 4 is not installed
}

TEST(Peaks, AreTheComponentsInTheOrderOfTheChannels) {
  Bench bench;
  EXPECT_EQ(component(bench, 1), padded("Nitrogen"));
  EXPECT_EQ(component(bench, 4), padded("Ethane"));
  EXPECT_EQ(component(bench, 5), padded("Propane"));
  EXPECT_EQ(component(bench, 11), padded("n-Hexane"));
  for (std::uint32_t index : {0U, 12U, UINT32_MAX}) {
    EXPECT_EQ(readStatus(bench, 1, 2021, index), eParameterUnknown) << index;
  }
  EXPECT_EQ(readStatus(bench, 0, 2021, 1), eParameterUnknown);
  EXPECT_EQ(readStatus(bench, 21, 2021, 1), eParameterUnknown);
}

TEST(Peaks, ThatAreNotThereAreUnknown) {
  Bench bench;
  for (std::uint32_t id : {1176U, 1195U, 1196U, 1230U, 1242U}) {
    EXPECT_EQ(readStatus(bench, 1, id, 4), eSuccess) << id;
    EXPECT_EQ(readStatus(bench, 1, id, 5), eParameterUnknown) << id;
    EXPECT_EQ(readStatus(bench, 1, id, 0), eParameterUnknown) << id;
    EXPECT_EQ(readStatus(bench, 3, id, 1), eParameterUnknown) << id;
    EXPECT_EQ(readStatus(bench, 0, id, 1), eParameterUnknown) << id;
    EXPECT_EQ(readStatus(bench, 5, id, 1), eParameterUnknown) << id;
  }
  EXPECT_EQ(readStatus(bench, 1, 1175, 1), eParameterUnknown);
  EXPECT_EQ(bench.writeReal(0.0, 1, 1230, 1.0, 5), eParameterUnknown);
  EXPECT_EQ(bench.writeReal(0.0, 3, 1230, 1.0, 1), eParameterUnknown);
}

TEST(Peaks, OnlyAmountsAreWritten) {
  Bench bench;
  for (std::uint32_t id : {1176U, 1195U, 1196U, 1242U}) {
    EXPECT_EQ(bench.writeReal(0.0, 1, id, 1.0, 1), eReadOnly) << id;
  }
  EXPECT_EQ(bench.writeInteger(0.0, 1, 2021, 65, 1), eReadOnly);
  for (double amount : {0.0, 1e6, 4.25}) {
    EXPECT_EQ(bench.writeReal(0.0, 1, 1230, amount, 1), eSuccess);
    EXPECT_EQ(bench.real(0.0, 1, 1230, 1), amount);
  }
  for (double wrong : {-0.001, 1000000.5, std::nan(""), HUGE_VAL}) {
    EXPECT_EQ(bench.writeReal(0.0, 1, 1230, wrong, 1), eOutOfBounds);
  }
  EXPECT_EQ(bench.real(0.0, 1, 1230, 1), 4.25);
}

TEST(Peaks, AmountsAreClearedAndRestored) {
  Bench bench("four-channel");
  std::vector<double> before;
  for (std::uint32_t peak = 0; peak < 400; ++peak) {
    before.push_back(bench.real(0.0, 1 + peak / 100, 1230, 1 + peak % 100));
    EXPECT_GT(before.back(), 0.0);
  }
  EXPECT_EQ(bench.command(0.0, cClearCalibration), eSuccess);
  for (std::uint32_t peak = 0; peak < 400; ++peak) {
    EXPECT_EQ(bench.real(0.0, 1 + peak / 100, 1230, 1 + peak % 100), 0.0);
    EXPECT_EQ(bench.writeReal(0.0, 1 + peak / 100, 1230, before[peak], 1 + peak % 100), eSuccess);
  }
  for (std::uint32_t peak = 0; peak < 400; ++peak) {
    EXPECT_EQ(bench.real(0.0, 1 + peak / 100, 1230, 1 + peak % 100), before[peak]);
  }
}

}  // namespace simulator
