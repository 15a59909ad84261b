// Simulated time: real, accelerated, paused or stepped.
#pragma once

namespace simulator {

/// Seconds on a clock that nobody sets.
double monotonicSeconds();

/// Simulated seconds since the start. They never go backwards but in reset().
class SimClock {
 public:
  using RealTime = double (*)();

  static constexpr double cMaxSpeed = 1e6;
  static constexpr double cMaxStep = 366.0 * 24 * 3600;

  /// `aSpeed` is simulated seconds a real second; `aRealTime` must not go backwards.
  explicit SimClock(double aSpeed = 1.0, bool aPaused = false,
                    RealTime aRealTime = &monotonicSeconds);

  double now() const;
  double speed() const { return mSpeed; }
  bool isPaused() const { return mPaused; }

  /// False, and nothing changed, unless over 0 and at most cMaxSpeed.
  bool setSpeed(double aSpeed);
  void pause();
  void resume();
  /// Goes forward at once, paused or not. False, and nothing changed, unless 0 to cMaxStep.
  bool step(double aSeconds);
  /// Starts at 0 again, with the same speed, and still paused when it was.
  void reset();

 private:
  /// Makes the present the point that time is counted from.
  void settle();

  RealTime mRealTime;
  double mSpeed;
  bool mPaused;
  double mSimulated = 0.0;  ///< simulated seconds at mReal
  double mReal;
};

}  // namespace simulator
