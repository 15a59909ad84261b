// The fixed texts of the alarms: sample types, groups and the parameters of the groups.
#include "AlarmTexts.h"

#include <gtest/gtest.h>

#include <climits>
#include <ostream>

namespace {
struct NumberText {
  int number;
  const char* text;
};

struct ParameterText {
  int group;
  int id;
  const char* text;
};

std::ostream& operator<<(std::ostream& aStream, const NumberText& aRow) {
  return aStream << aRow.number;
}
std::ostream& operator<<(std::ostream& aStream, const ParameterText& aRow) {
  return aStream << aRow.group << ", " << aRow.id;
}

constexpr NumberText cSampleTypes[] = {
    {-2, "All"},        {-1, "None"},          {0, "None"},         {1, "Analysis"},
    {2, "Calibration"}, {3, "Blank"},          {4, "Verification"}, {5, "All"},
    {6, "None"},        {-3, "None"},          {7, "None"},         {-4, "None"},
    {INT_MAX, "None"},  {INT_MAX - 1, "None"}, {INT_MIN, "None"},   {INT_MIN + 1, "None"},
};

constexpr NumberText cGroups[] = {
    {0, "0. None"},
    {1, "1. ESTD Amounts"},
    {2, "2. NORM Amounts"},
    {3, "3. Sample results"},
    {4, "4. Verification"},
    {5, "5. Analog inputs"},
    {6, "6. ISO/GOST Results"},
    {7, "7. ASTM/GPA Results"},
    {8, "8. GC Status"},
    {9, "9. Digital Inputs"},
    {10, "10. Any Alarm"},
    {11, "11. Verification Failure"},
    {12, "12. Start Run Error"},
    {13, "Unknown"},
    {-1, "Unknown"},
    {INT_MAX, "Unknown"},
    {INT_MIN, "Unknown"},
};

constexpr ParameterText cSampleResults[] = {
    {3, 0, "0. None"},
    {3, 1, "1. Sum Unnormalized"},
    {3, 2, "2. Sum Estimates"},
    {3, 3, "3. Bridge comp. factor"},
    {3, 4, "4. ESTD total group 1"},
    {3, 5, "5. ESTD total group 2"},
    {3, 6, "6. ESTD total group 3"},
    {3, 7, "7. ESTD total group 4"},
    {3, 8, "8. ESTD total group 5"},
    {3, 9, "9. ESTD total group 6"},
    {3, 10, "10. ESTD total group 7"},
    {3, 11, "11. ESTD total group 8"},
    {3, 12, "12. ESTD total group 9"},
    {3, 13, "13. ESTD total group 10"},
    {3, 24, "24. Total peaks detected"},
    {3, 25, "--"},
    {3, -1, "--"},
    {3, INT_MAX, "--"},
    {3, INT_MIN, "--"},
};

// They continue the numbering after the ten groups of the other totals.
constexpr ParameterText cNormTotals[] = {
    {3, 14, "14. Norm total group 11"}, {3, 15, "15. Norm total group 12"},
    {3, 16, "16. Norm total group 13"}, {3, 17, "17. Norm total group 14"},
    {3, 18, "18. Norm total group 15"}, {3, 19, "19. Norm total group 16"},
    {3, 20, "20. Norm total group 17"}, {3, 21, "21. Norm total group 18"},
    {3, 22, "22. Norm total group 19"}, {3, 23, "23. Norm total group 20"},
};

constexpr ParameterText cSmallGroups[] = {
    {4, 0, "0. None"},
    {4, 1, "1. Verification failure"},
    {4, 2, "2. Stream selection failure"},
    {4, 3, "3. Unknown peaks detected"},
    {4, 4, "4. Calibration alarm"},
    {4, 5, "--"},
    {4, -1, "--"},
    {4, INT_MAX, "--"},
    {4, INT_MIN, "--"},
    {8, 0, "0. None"},
    {8, 1, "1. Instrument Error"},
    {8, 2, "2. Cabinet Temperature"},
    {8, 3, "3. Ambient Pressure"},
    {8, 4, "--"},
    {8, -1, "--"},
    {8, INT_MAX, "--"},
    {8, INT_MIN, "--"},
};

constexpr ParameterText cInputs[] = {
    {5, 0, "0. None"},       {5, 1, "1. Input# 1"}, {5, 2, "--"},       {5, 3, "--"},
    {5, -1, "--"},           {5, INT_MAX, "--"},    {5, INT_MIN, "--"}, {9, 0, "0. None"},
    {9, 1, "1. Digital# 1"}, {9, 2, "--"},          {9, 3, "--"},       {9, -1, "--"},
    {9, INT_MAX, "--"},      {9, INT_MIN, "--"},
};

constexpr ParameterText cAnyIndex[] = {
    {10, 0, "0. Any Alarm"},
    {10, 1, "0. Any Alarm"},
    {10, 99, "0. Any Alarm"},
    {10, -1, "0. Any Alarm"},
    {10, INT_MAX, "0. Any Alarm"},
    {10, INT_MIN, "0. Any Alarm"},
    {11, 0, "0. Verification failure"},
    {11, 1, "0. Verification failure"},
    {11, 99, "0. Verification failure"},
    {11, -1, "0. Verification failure"},
    {11, INT_MAX, "0. Verification failure"},
    {11, INT_MIN, "0. Verification failure"},
    {12, 0, "0. Start failure"},
    {12, 1, "0. Start failure"},
    {12, 99, "0. Start failure"},
    {12, -1, "0. Start failure"},
    {12, INT_MAX, "0. Start failure"},
    {12, INT_MIN, "0. Start failure"},
};

constexpr ParameterText cNoGroup[] = {
    {0, 0, "0. None"},
    {0, 1, "0. None"},
    {0, 99, "0. None"},
    {13, 0, "0. None"},
    {13, 1, "0. None"},
    {-1, 1, "0. None"},
    {INT_MAX, 5, "0. None"},
    {INT_MIN, 5, "0. None"},
    {INT_MAX, INT_MAX, "0. None"},
    {INT_MIN, INT_MIN, "0. None"},
};

constexpr ParameterText cIsoGost[] = {
    {6, 0, "0. None"},
    {6, 1, "1. Dry.Zmix"},
    {6, 2, "2. Dry.Molar Mass"},
    {6, 3, "3. Dry.Rel.Dens.Ideal"},
    {6, 4, "4. Dry.Rel.Dens.Real"},
    {6, 5, "5. Dry.Gas.Dens.Ideal"},
    {6, 6, "6. Dry.Gas.Dens.Real"},
    {6, 7, "7. Dry.Hs.v.Ideal"},
    {6, 8, "8. Dry.Hs.v.Real"},
    {6, 9, "9. Dry.Hs.v.Mass"},
    {6, 10, "10. Dry.Hs.v.Molar"},
    {6, 11, "11. Dry.Hi.v.Ideal"},
    {6, 12, "12. Dry.Hi.v.Real"},
    {6, 13, "13. Dry.Hi.Mass"},
    {6, 14, "14. Dry.Hi.Molar"},
    {6, 15, "15. Dry.Wobbe index"},
    {6, 16, "16. Dry.Wobbe Inferior"},
    {6, 17, "17. Sat.Zmix"},
    {6, 18, "18. Sat.Molar Mass"},
    {6, 19, "19. Sat.Rel.Dens.Ideal"},
    {6, 20, "20. Sat.Rel.Dens.Real"},
    {6, 21, "21. Sat.Gas.Dens.Ideal"},
    {6, 22, "22. Sat.Gas.Dens.Real"},
    {6, 23, "23. Sat.Hs.v.Ideal"},
    {6, 24, "24. Sat.Hs.v.Real"},
    {6, 25, "25. Sat.Hs.v.Mass"},
    {6, 26, "26. Sat.Hs.v.Molar"},
    {6, 27, "27. Sat.Hi.v.Ideal"},
    {6, 28, "28. Sat.Hi.v.Real"},
    {6, 29, "29. Sat.Hi.Mass"},
    {6, 30, "30. Sat.Hi.Molar"},
    {6, 31, "31. Sat.Wobbe index"},
    {6, 32, "32. Sat.Wobbe Inferior"},
    {6, 33, "--"},
    {6, -1, "--"},
    {6, INT_MAX, "--"},
    {6, INT_MIN, "--"},
};
static_assert(std::size(cIsoGost) == 1 + 32 + 4);

constexpr ParameterText cAstmGpa[] = {
    {7, 0, "0. None"},
    {7, 1, "1. Act.Zmix"},
    {7, 2, "2. Act.Molar Mass"},
    {7, 3, "3. Act.Rel.Dens.Ideal"},
    {7, 4, "4. Act.Rel.Dens.Real"},
    {7, 5, "5. Act.Gas.Dens.Ideal"},
    {7, 6, "6. Act.Gas.Dens.Real"},
    {7, 7, "7. Act.Hv.Ideal"},
    {7, 8, "8. Act.Hv.Real"},
    {7, 9, "9. Act.Hmass"},
    {7, 10, "10. Act.Hmolar"},
    {7, 11, "11. Act.hv.ideal"},
    {7, 12, "12. Act.hv.real"},
    {7, 13, "13. Act.hmass"},
    {7, 14, "14. Act.hmolar"},
    {7, 15, "15. Act.Wobbe index"},
    {7, 16, "16. Act.Spec.Volume"},
    {7, 17, "17. Act.GPM Total[gal/1000ft3]"},
    {7, 18, "18. Act.Hv.MJ/m3"},
    {7, 19, "19. Act.hv.MJ/m3"},
    {7, 20, "20. Dry.Zmix"},
    {7, 21, "21. Dry.Molar Mass"},
    {7, 22, "22. Dry.Rel.Dens.Ideal"},
    {7, 23, "23. Dry.Rel.Dens.Real"},
    {7, 24, "24. Dry.Gas.Dens.Ideal"},
    {7, 25, "25. Dry.Gas.Dens.Real"},
    {7, 26, "26. Dry.Hv.Ideal"},
    {7, 27, "27. Dry.Hv.Real"},
    {7, 28, "28. Dry.Hmass"},
    {7, 29, "29. Dry.Hmolar"},
    {7, 30, "30. Dry.hv.ideal"},
    {7, 31, "31. Dry.hv.real"},
    {7, 32, "32. Dry.hmass"},
    {7, 33, "33. Dry.hmolar"},
    {7, 34, "34. Dry.Wobbe index"},
    {7, 35, "35. Dry.Spec.Volume"},
    {7, 36, "36. Dry.GPM Total[gal/1000ft3]"},
    {7, 37, "37. Dry.Hv.MJ/m3"},
    {7, 38, "38. Dry.hv.MJ/m3"},
    {7, 39, "39. Sat.Zmix"},
    {7, 40, "40. Sat.Molar Mass"},
    {7, 41, "41. Sat.Rel.Dens.Ideal"},
    {7, 42, "42. Sat.Rel.Dens.Real"},
    {7, 43, "43. Sat.Gas.Dens.Ideal"},
    {7, 44, "44. Sat.Gas.Dens.Real"},
    {7, 45, "45. Sat.Hv.Ideal"},
    {7, 46, "46. Sat.Hv.Real"},
    {7, 47, "47. Sat.Hmass"},
    {7, 48, "48. Sat.Hmolar"},
    {7, 49, "49. Sat.hv.ideal"},
    {7, 50, "50. Sat.hv.real"},
    {7, 51, "51. Sat.hmass"},
    {7, 52, "52. Sat.hmolar"},
    {7, 53, "53. Sat.Wobbe index"},
    {7, 54, "54. Sat.Spec.Volume"},
    {7, 55, "55. Sat.GPM Total[gal/1000ft3]"},
    {7, 56, "56. Sat.Hv.MJ/m3"},
    {7, 57, "57. Sat.hv.MJ/m3"},
    {7, 58, "58. Zair"},
};
static_assert(std::size(cAstmGpa) == 1 + 58);

class SampleTypeTest : public testing::TestWithParam<NumberText> {};
class AlarmGroupTest : public testing::TestWithParam<NumberText> {};
class AlarmParameterTest : public testing::TestWithParam<ParameterText> {};
}  // namespace

static_assert(!isComponentGroup(0));
static_assert(isComponentGroup(1));
static_assert(isComponentGroup(2));
static_assert(!isComponentGroup(3));
static_assert(!isComponentGroup(-1));
static_assert(!isComponentGroup(INT_MAX));
static_assert(!isComponentGroup(INT_MIN));

TEST_P(SampleTypeTest, Text) {
  EXPECT_STREQ(sampleTypeText(GetParam().number), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Types, SampleTypeTest, testing::ValuesIn(cSampleTypes));

TEST_P(AlarmGroupTest, Text) {
  EXPECT_STREQ(alarmGroupText(GetParam().number), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Groups, AlarmGroupTest, testing::ValuesIn(cGroups));

TEST_P(AlarmParameterTest, Text) {
  EXPECT_STREQ(alarmParameterText(GetParam().group, GetParam().id), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(SampleResults, AlarmParameterTest, testing::ValuesIn(cSampleResults));
INSTANTIATE_TEST_SUITE_P(NormTotalsCountFromEleven, AlarmParameterTest,
                         testing::ValuesIn(cNormTotals));
INSTANTIATE_TEST_SUITE_P(SmallGroups, AlarmParameterTest, testing::ValuesIn(cSmallGroups));
INSTANTIATE_TEST_SUITE_P(OnlyInputOneIsKnown, AlarmParameterTest, testing::ValuesIn(cInputs));
INSTANTIATE_TEST_SUITE_P(IsoGost, AlarmParameterTest, testing::ValuesIn(cIsoGost));
INSTANTIATE_TEST_SUITE_P(AstmGpa, AlarmParameterTest, testing::ValuesIn(cAstmGpa));
INSTANTIATE_TEST_SUITE_P(OneTextForEveryIndex, AlarmParameterTest, testing::ValuesIn(cAnyIndex));
INSTANTIATE_TEST_SUITE_P(NoGroup, AlarmParameterTest, testing::ValuesIn(cNoGroup));

TEST(AlarmParameterTextTest, AstmGpaHasNoTextForOtherIndices) {
  for (const int id : {59, 60, 1000, -1, -58, INT_MAX, INT_MIN}) {
    EXPECT_EQ(alarmParameterText(7, id), nullptr) << id;
  }
}
