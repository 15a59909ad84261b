// The first phase.
#include "StartUp.h"

#include "Planning.h"

namespace simulator::model {

namespace {

constexpr double cInitializingTime = 30.0;

double seconds(const rapidjson::Value& aSnapshot, const char* aName, double aOtherwise) {
  const auto found = aSnapshot.FindMember(aName);
  return found == aSnapshot.MemberEnd() ? aOtherwise : found->value.GetDouble();
}

}  // namespace

Start givenStart(const StoredValues& aStored) {
  const int state = static_cast<int>(aStored.of(eParam::eGcState));
  switch (state) {
    case eInitializing:
      return {state, 0.0, cInitializingTime};
    case eFlushing:
      return {state, 0.0, aStored.of(eParam::eFlushingStream) * cMinute};
    case eRunning:
      return {state, aStored.of(eParam::eCurRunTime),
              runTime(aStored) - aStored.of(eParam::eCurRunTime)};
    case eCleaning:
      return {state, 0.0, aStored.of(eParam::eCleaningTimeLeft) * cMinute};
    default:
      return {state, 0.0, 0.0};
  }
}

Start snapshotStart(const rapidjson::Value& aSnapshot) {
  const int state = aSnapshot["state"].GetInt();
  // What would never be reached may be within reach when it is computed afresh.
  const double never = state == eStabilizing ? cNever : 0.0;
  return {state, seconds(aSnapshot, "elapsed", 0.0), seconds(aSnapshot, "left", never)};
}

void startUp(const Start& aStart, Phases& phases, Runs& runs) {
  switch (aStart.state) {
    case eInitializing:
    case eCleaning:
      return phases.enter({aStart.state, eAutoIdle, 0.0, aStart.left});
    case eFlushing:
      return phases.enter({aStart.state, eAutoFlushing, 0.0, aStart.left});
    case eRunning:
      return runs.resume(aStart.elapsed, aStart.left);
    case eError:
    case eRecoverableError:
    case eUnrecoverableError:
      return phases.enter({aStart.state, eAutoIdle, 0.0, cNever});
    case eNotReady:  // and a solution being loaded
      return phases.enter(aStart.left > 0.0 ? Phase{eNotReady, eAutoIdle, 0.0, aStart.left}
                                            : phases.idlePhase());
    case eStabilizing:
      return phases.enter(aStart.left > 0.0
                              ? Phase{eStabilizing, eAutoIdle, 0.0, aStart.left, eActivity::eIdling}
                              : phases.idlePhase());
    default:
      return phases.enter(phases.idlePhase());
  }
}

}  // namespace simulator::model
