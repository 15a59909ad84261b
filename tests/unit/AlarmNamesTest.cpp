// The names that the section gives to alarms, including those of the instrument's components.
#include <gmock/gmock.h>

#include "AlarmRows.h"
#include "SecAlarmAccess.h"
#include "SectionBench.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
// One record per character, on the channel that matches its position.
constexpr const char* cNameOfSeven =
    "ReadParamList(handle, 20): 1:2021@7 2:2021@7 3:2021@7 4:2021@7 5:2021@7 6:2021@7 7:2021@7 "
    "8:2021@7 9:2021@7 10:2021@7 11:2021@7 12:2021@7 13:2021@7 14:2021@7 15:2021@7 16:2021@7 "
    "17:2021@7 18:2021@7 19:2021@7 20:2021@7";

class AlarmNamesTest : public SectionBench<SecAlarm>, public testing::Test {
 protected:
  std::string component(int aIndex) {
    return SecAlarmAccess::component(mSection, aIndex, "before");
  }
  std::string parameter(int aGroup, int aId) {
    return SecAlarmAccess::parameter(mSection, aGroup, aId, "before");
  }
};

class ComponentFailureTest : public AlarmNamesTest,
                             public testing::WithParamInterface<unsigned long> {};
}  // namespace

TEST_F(AlarmNamesTest, FixedTextsReplaceWhatTheStringHeld) {
  EXPECT_EQ(SecAlarmAccess::sampleType(1, "before"), "Analysis");
  EXPECT_EQ(SecAlarmAccess::sampleType(6, "before"), "None");
  EXPECT_EQ(SecAlarmAccess::sampleType(INT_MAX, "before"), "None");
  EXPECT_EQ(SecAlarmAccess::sampleType(INT_MIN, "before"), "None");
  EXPECT_EQ(SecAlarmAccess::group(12, "before"), "12. Start Run Error");
  EXPECT_EQ(SecAlarmAccess::group(13, "before"), "Unknown");
  EXPECT_EQ(parameter(3, 13), "13. ESTD total group 10");
  EXPECT_EQ(parameter(3, 14), "14. Norm total group 11");
  EXPECT_EQ(parameter(6, 33), "--");
  EXPECT_EQ(parameter(7, 58), "58. Zair");
  EXPECT_EQ(parameter(7, 0), "0. None");
  EXPECT_EQ(parameter(10, 99), "0. Any Alarm");
  EXPECT_EQ(parameter(13, 1), "0. None");
  EXPECT_EQ(parameter(0, 1), "0. None");
  EXPECT_EQ(parameter(INT_MIN, INT_MIN), "0. None");
  EXPECT_THAT(mInstrument.calls(), IsEmpty());
}

TEST_F(AlarmNamesTest, AstmGpaLeavesTheStringForOtherIndices) {
  for (const int id : {59, 60, -1, INT_MAX, INT_MIN}) {
    EXPECT_EQ(SecAlarmAccess::parameter(mSection, 7, id, "7. ASTM/GPA Results"),
              "7. ASTM/GPA Results");
  }
}

TEST_F(AlarmNamesTest, ComponentNameIsOneReadOfTwentyCharacters) {
  setComponent(mInstrument, 7, "CO2");
  EXPECT_EQ(component(7), "CO2");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cNameOfSeven));
}

TEST_F(AlarmNamesTest, ComponentGroupsNumberTheName) {
  setComponent(mInstrument, 7, "CO2");
  EXPECT_EQ(parameter(1, 7), "7. CO2");
  EXPECT_EQ(parameter(2, 7), "7. CO2");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cNameOfSeven, cNameOfSeven));
}

TEST_F(AlarmNamesTest, ComponentsAreToldApartByStep) {
  setComponent(mInstrument, 1, "Methane");
  setComponent(mInstrument, 2, "Ethane");
  EXPECT_EQ(component(1), "Methane");
  EXPECT_EQ(component(2), "Ethane");
}

TEST_F(AlarmNamesTest, ComponentNameWithoutAnswerIsEmpty) {
  EXPECT_EQ(component(3), "");
  EXPECT_EQ(parameter(2, 3), "3. ");
}

TEST_F(AlarmNamesTest, LongestComponentNameHasTwentyCharacters) {
  setComponent(mInstrument, 3, "abcdefghijklmnopqrst");
  EXPECT_EQ(component(3), "abcdefghijklmnopqrst");
  EXPECT_EQ(parameter(1, 3), "3. abcdefghijklmnopqrst");
}

TEST_F(AlarmNamesTest, ZeroEndsAComponentName) {
  setComponent(mInstrument, 3, std::string("CO\0xyz", 6));
  EXPECT_EQ(component(3), "CO");
}

TEST_F(AlarmNamesTest, LowEightBitsAreTheCharacter) {
  mInstrument.setStepValue(1, 2021, 3, {0x7FFFFF43});
  mInstrument.setStepValue(2, 2021, 3, {-177});  // ...FF4F
  mInstrument.setStepValue(3, 2021, 3, {INT_MIN + 0x32});
  mInstrument.setStepValue(4, 2021, 3, {0x100});
  mInstrument.setStepValue(5, 2021, 3, {'x'});
  EXPECT_EQ(component(3), "CO2");
}

TEST_F(AlarmNamesTest, ComponentIndicesAtTheLimits) {
  EXPECT_EQ(parameter(1, INT_MAX), "2147483647. ");
  EXPECT_EQ(mInstrument.batch(0)[19].Step, 2147483647U);
  EXPECT_EQ(parameter(2, INT_MIN), "-2147483648. ");
  EXPECT_EQ(mInstrument.batch(1)[0].Step, 2147483648U);
  EXPECT_EQ(parameter(2, 0), "0. ");
  EXPECT_EQ(mInstrument.batch(2)[0].Step, 0U);
}

TEST_P(ComponentFailureTest, IsUnknown) {
  setComponent(mInstrument, 5, "CO2");
  mInstrument.setStatus(eFunction::eReadParamList, GetParam());
  EXPECT_EQ(component(5), "Unknown");
  EXPECT_EQ(parameter(1, 5), "5. Unknown");
}

// An incomplete name is not used: 28 fails here like any other status.
INSTANTIATE_TEST_SUITE_P(IncompleteIncluded, ComponentFailureTest, testing::ValuesIn(cRefusals));
