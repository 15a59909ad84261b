// Where a plan of runs stands, against one that is walked step by step.
#include <gtest/gtest.h>
#include <model/Plan.h>

#include <chrono>
#include <limits>
#include <random>

namespace simulator {

namespace {

using model::Plan;
using model::PlannedLine;
using model::RunCounts;
using eDoing = Plan::eDoing;

constexpr double cInfinity = std::numeric_limits<double>::infinity();

PlannedLine line(std::uint32_t aNumber, std::uint32_t aRunType, double aFlushTime,
                 double aReplicates) {
  return {aNumber, aRunType, 1, 0, aFlushTime, aReplicates};
}

struct Walked {
  eDoing doing;
  double since;
  double until;
  std::uint32_t line;
  double replicate;
  double repeat;
  RunCounts before;
};

std::vector<Walked> walk(const std::vector<PlannedLine>& aLines, int aRepeats, double aRunTime,
                         double aDelay, double aStart) {
  std::vector<Walked> steps;
  RunCounts counts{};
  double now = aStart;
  const auto add = [&](eDoing aDoing, double aTime, const PlannedLine& aLine, int aReplicate,
                       int aRepeat) {
    if (aTime > 0.0) {
      steps.push_back({aDoing, now, now + aTime, aLine.number, static_cast<double>(aReplicate),
                       static_cast<double>(aRepeat), counts});
      now += aTime;
    }
  };
  for (int repeat = 1; repeat <= aRepeats; ++repeat) {
    for (const PlannedLine& one : aLines) {
      for (int replicate = 1; replicate <= one.replicates; ++replicate) {
        if (replicate == 1 && one.flushTime > 0.0) {
          add(eDoing::eFlushing, one.flushTime, one, replicate, repeat);
        } else if (!steps.empty()) {
          add(eDoing::eWaiting, aDelay, one, replicate, repeat);
        }
        add(eDoing::eRunning, aRunTime, one, replicate, repeat);
        ++counts.at(one.runType);
      }
    }
  }
  return steps;
}

void compare(const std::vector<PlannedLine>& aLines, int aRepeats, double aRunTime, double aDelay,
             double aStart) {
  const Plan plan(aLines, aRepeats, aRunTime, aDelay, aStart);
  const auto steps = walk(aLines, aRepeats, aRunTime, aDelay, aStart);
  for (const Walked& expected : steps) {
    for (double time :
         {expected.since, (expected.since + expected.until) / 2.0, expected.until - 1.0 / 64.0}) {
      const Plan::Step step = plan.at(time);
      ASSERT_EQ(step.doing, expected.doing) << time;
      EXPECT_EQ(step.since, expected.since) << time;
      EXPECT_EQ(step.until, expected.until) << time;
      ASSERT_NE(step.line, nullptr) << time;
      EXPECT_EQ(step.line->number, expected.line) << time;
      EXPECT_EQ(step.replicate, expected.replicate) << time;
      EXPECT_EQ(step.repeat, expected.repeat) << time;
      EXPECT_EQ(step.completed, expected.before) << time;
    }
  }
  const Plan::Step over = plan.at(steps.back().until);
  EXPECT_EQ(over.doing, eDoing::eNothing);
  EXPECT_EQ(over.line, nullptr);
  EXPECT_EQ(over.since, steps.back().until);
  RunCounts all = steps.back().before;
  ++all.at(aLines.back().runType);
  EXPECT_EQ(over.completed, all);
  EXPECT_EQ(plan.at(1e15).completed, all);
}

}  // namespace

TEST(Plan, OfOneRun) {
  compare({line(0, 0, 0.0, 1)}, 1, 180.0, 0.0, 10.5);
}

TEST(Plan, OfReplicatesWithoutADelay) {
  compare({line(0, 1, 0.0, 5)}, 1, 60.0, 0.0, 0.0);
}

TEST(Plan, StandsWhereItsStepsLeadAtAnyTime) {
  // Eighths of a second: exact, so that the walk adds up to the same numbers.
  std::mt19937 random(1);
  const auto upTo = [&random](std::uint32_t aLargest) {
    return static_cast<std::uint32_t>(random() % (aLargest + 1));
  };
  for (int round = 0; round < 300; ++round) {
    std::vector<PlannedLine> lines;
    const std::uint32_t count = 1 + upTo(5);
    for (std::uint32_t n = 1; n <= count; ++n) {
      lines.push_back(line(n, upTo(3), upTo(1) == 0 ? 0.0 : upTo(800) / 8.0, 1 + upTo(4)));
    }
    compare(lines, 1 + static_cast<int>(upTo(3)), 1.0 + upTo(1000) / 8.0, upTo(1) * 30.0,
            upTo(10000) / 8.0);
  }
}

// Times that no sum meets exactly: nowhere a gap, nowhere a step that is over.
TEST(Plan, EachStepLastsLongerThanTheMomentAskedFor) {
  const Plan plan({line(1, 0, 0.1 * 60.0, 7), line(2, 1, 0.0, 3), line(3, 2, 0.7 * 60.0, 1)},
                  cInfinity, 33.3, 30.0, 0.3);
  double runs = 0.0;
  double now = 0.3;
  for (int n = 0; n < 20000; ++n) {
    const Plan::Step step = plan.at(now);
    ASSERT_GT(step.until, now);
    ASSERT_LE(step.since, now);
    runs += step.doing == eDoing::eRunning ? 1.0 : 0.0;
    now = step.until;
  }
  const Plan::Step last = plan.at(now);
  EXPECT_EQ(last.completed[0] + last.completed[1] + last.completed[2], runs);
}

TEST(Plan, OfLifetimesAnswersAtOnce) {
  // 60 + 180 + 30 + 180 + 30 + 180 = 660 s a repeat, two calibrations and an analysis.
  const Plan plan({line(1, 1, 60.0, 2), line(2, 0, 0.0, 1)}, cInfinity, 180.0, 30.0, 100.0);
  const auto began = std::chrono::steady_clock::now();
  for (double repeats : {0.0, 1.0, 1e3, 1e6, 1e12}) {
    const Plan::Step step = plan.at(100.0 + repeats * 660.0 + 61.0);
    EXPECT_EQ(step.doing, eDoing::eRunning) << repeats;
    EXPECT_EQ(step.repeat, repeats + 1.0);
    EXPECT_EQ(step.completed[1], repeats * 2.0);
    EXPECT_EQ(step.completed[0], repeats);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(100));
}

}  // namespace simulator
