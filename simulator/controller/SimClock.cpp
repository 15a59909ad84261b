// Simulated time is counted from the last change of its pace.
#include "SimClock.h"

#include <chrono>

namespace simulator {

double monotonicSeconds() {
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(sinceStart).count();
}

SimClock::SimClock(double aSpeed, bool aPaused, RealTime aRealTime)
    : mRealTime(aRealTime), mSpeed(aSpeed), mPaused(aPaused), mReal(aRealTime()) {}

double SimClock::now() const {
  return mPaused ? mSimulated : mSimulated + (mRealTime() - mReal) * mSpeed;
}

bool SimClock::setSpeed(double aSpeed) {
  if (!(aSpeed > 0.0 && aSpeed <= cMaxSpeed)) {
    return false;
  }
  settle();
  mSpeed = aSpeed;
  return true;
}

void SimClock::pause() {
  settle();
  mPaused = true;
}

void SimClock::resume() {
  settle();
  mPaused = false;
}

bool SimClock::step(double aSeconds) {
  if (!(aSeconds >= 0.0 && aSeconds <= cMaxStep)) {
    return false;
  }
  mSimulated += aSeconds;
  return true;
}

void SimClock::reset() {
  settle();
  mSimulated = 0.0;
}

void SimClock::settle() {
  const double real = mRealTime();
  if (!mPaused) {
    mSimulated += (real - mReal) * mSpeed;
  }
  mReal = real;
}

}  // namespace simulator
