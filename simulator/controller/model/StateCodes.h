// The instrument's state codes, as it answers them, and sets of states.
#pragma once

#include <cstdint>

namespace simulator::model {

enum eGcState : int {
  eInitializing = 0,
  eFlushing = 1,
  eRunning = 2,
  eStabilizing = 3,
  eReady = 4,
  eError = 5,
  eRecoverableError = 6,
  eUnrecoverableError = 7,
  eNotReady = 8,
  eWaitExtReady = 9,
  eCleaning = 10,
};

enum eRunType : int { eAnalysis = 0, eCalibration = 1, eBlank = 2, eVerification = 3 };

enum eAutoState : int {
  eAutoIdle = 0,
  eAutoSingleRun = 1,
  eAutoSequence = 2,
  eAutoCalibration = 3,
  eAutoVerification = 4,
  eAutoFlushing = 6,
};

/// A set of states, one bit each.
using StateSet = std::uint32_t;

template <typename... States>
constexpr StateSet statesOf(States... aStates) {
  return ((1U << static_cast<unsigned>(aStates)) | ...);
}

/// Any code may be asked for: an operator can make the instrument show one that it does not have.
constexpr bool contains(StateSet aStates, int aCode) {
  return aCode >= 0 && aCode < 32 && ((aStates >> static_cast<unsigned>(aCode)) & 1U) != 0;
}

constexpr StateSet cErrorStates = statesOf(eError, eRecoverableError, eUnrecoverableError);
constexpr StateSet cIdleStates = statesOf(eStabilizing, eReady, eNotReady, eWaitExtReady);
constexpr StateSet cAllStates =
    cErrorStates | cIdleStates | statesOf(eInitializing, eFlushing, eRunning, eCleaning);

/// The instrument is taking care of itself and nothing else: settings can be changed.
constexpr StateSet cSettingStates = cIdleStates | statesOf(eError, eRecoverableError);

}  // namespace simulator::model
