// Captures what a piece of code writes to standard output and standard error.
#pragma once

#include <gtest/gtest.h>

#include <string>

struct Output {
  std::string out;
  std::string err;
};

/// Runs an action and returns everything it wrote.
template <class Action>
Output capture(Action&& aAction) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  aAction();
  Output lOutput;
  lOutput.out = testing::internal::GetCapturedStdout();
  lOutput.err = testing::internal::GetCapturedStderr();
  return lOutput;
}
