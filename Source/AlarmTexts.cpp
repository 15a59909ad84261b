// Texts of the numbers that define an alarm; they are part of the report's format.
#include "AlarmTexts.h"

#include <cstddef>

#include "CodeText.h"

namespace {

constexpr int cFirstSampleType = -2;
constexpr CodeText cSampleTypes[] = {
    {-2, "All"},        {-1, "None"}, {0, "None"},         {1, "Analysis"},
    {2, "Calibration"}, {3, "Blank"}, {4, "Verification"}, {5, "All"},
};
static_assert(isIndexedByCode(cSampleTypes, cFirstSampleType));

constexpr CodeText cGroups[] = {
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
};
static_assert(isIndexedByCode(cGroups));

// The normalised totals continue the numbering of the external-standard ones: 14 is group 11.
constexpr CodeText cSampleResults[] = {
    {0, "0. None"},
    {1, "1. Sum Unnormalized"},
    {2, "2. Sum Estimates"},
    {3, "3. Bridge comp. factor"},
    {4, "4. ESTD total group 1"},
    {5, "5. ESTD total group 2"},
    {6, "6. ESTD total group 3"},
    {7, "7. ESTD total group 4"},
    {8, "8. ESTD total group 5"},
    {9, "9. ESTD total group 6"},
    {10, "10. ESTD total group 7"},
    {11, "11. ESTD total group 8"},
    {12, "12. ESTD total group 9"},
    {13, "13. ESTD total group 10"},
    {14, "14. Norm total group 11"},
    {15, "15. Norm total group 12"},
    {16, "16. Norm total group 13"},
    {17, "17. Norm total group 14"},
    {18, "18. Norm total group 15"},
    {19, "19. Norm total group 16"},
    {20, "20. Norm total group 17"},
    {21, "21. Norm total group 18"},
    {22, "22. Norm total group 19"},
    {23, "23. Norm total group 20"},
    {24, "24. Total peaks detected"},
};
static_assert(isIndexedByCode(cSampleResults));

constexpr CodeText cVerification[] = {
    {0, "0. None"},
    {1, "1. Verification failure"},
    {2, "2. Stream selection failure"},
    {3, "3. Unknown peaks detected"},
    {4, "4. Calibration alarm"},
};
static_assert(isIndexedByCode(cVerification));

// Inputs beyond the first have no text of their own.
constexpr CodeText cAnalogInputs[] = {{0, "0. None"}, {1, "1. Input# 1"}};
constexpr CodeText cDigitalInputs[] = {{0, "0. None"}, {1, "1. Digital# 1"}};
static_assert(isIndexedByCode(cAnalogInputs) && isIndexedByCode(cDigitalInputs));

constexpr CodeText cIsoGost[] = {
    {0, "0. None"},
    {1, "1. Dry.Zmix"},
    {2, "2. Dry.Molar Mass"},
    {3, "3. Dry.Rel.Dens.Ideal"},
    {4, "4. Dry.Rel.Dens.Real"},
    {5, "5. Dry.Gas.Dens.Ideal"},
    {6, "6. Dry.Gas.Dens.Real"},
    {7, "7. Dry.Hs.v.Ideal"},
    {8, "8. Dry.Hs.v.Real"},
    {9, "9. Dry.Hs.v.Mass"},
    {10, "10. Dry.Hs.v.Molar"},
    {11, "11. Dry.Hi.v.Ideal"},
    {12, "12. Dry.Hi.v.Real"},
    {13, "13. Dry.Hi.Mass"},
    {14, "14. Dry.Hi.Molar"},
    {15, "15. Dry.Wobbe index"},
    {16, "16. Dry.Wobbe Inferior"},
    {17, "17. Sat.Zmix"},
    {18, "18. Sat.Molar Mass"},
    {19, "19. Sat.Rel.Dens.Ideal"},
    {20, "20. Sat.Rel.Dens.Real"},
    {21, "21. Sat.Gas.Dens.Ideal"},
    {22, "22. Sat.Gas.Dens.Real"},
    {23, "23. Sat.Hs.v.Ideal"},
    {24, "24. Sat.Hs.v.Real"},
    {25, "25. Sat.Hs.v.Mass"},
    {26, "26. Sat.Hs.v.Molar"},
    {27, "27. Sat.Hi.v.Ideal"},
    {28, "28. Sat.Hi.v.Real"},
    {29, "29. Sat.Hi.Mass"},
    {30, "30. Sat.Hi.Molar"},
    {31, "31. Sat.Wobbe index"},
    {32, "32. Sat.Wobbe Inferior"},
};
static_assert(isIndexedByCode(cIsoGost) && sizeof cIsoGost / sizeof cIsoGost[0] == 1 + 32);

constexpr CodeText cAstmGpa[] = {
    {0, "0. None"},
    {1, "1. Act.Zmix"},
    {2, "2. Act.Molar Mass"},
    {3, "3. Act.Rel.Dens.Ideal"},
    {4, "4. Act.Rel.Dens.Real"},
    {5, "5. Act.Gas.Dens.Ideal"},
    {6, "6. Act.Gas.Dens.Real"},
    {7, "7. Act.Hv.Ideal"},
    {8, "8. Act.Hv.Real"},
    {9, "9. Act.Hmass"},
    {10, "10. Act.Hmolar"},
    {11, "11. Act.hv.ideal"},
    {12, "12. Act.hv.real"},
    {13, "13. Act.hmass"},
    {14, "14. Act.hmolar"},
    {15, "15. Act.Wobbe index"},
    {16, "16. Act.Spec.Volume"},
    {17, "17. Act.GPM Total[gal/1000ft3]"},
    {18, "18. Act.Hv.MJ/m3"},
    {19, "19. Act.hv.MJ/m3"},
    {20, "20. Dry.Zmix"},
    {21, "21. Dry.Molar Mass"},
    {22, "22. Dry.Rel.Dens.Ideal"},
    {23, "23. Dry.Rel.Dens.Real"},
    {24, "24. Dry.Gas.Dens.Ideal"},
    {25, "25. Dry.Gas.Dens.Real"},
    {26, "26. Dry.Hv.Ideal"},
    {27, "27. Dry.Hv.Real"},
    {28, "28. Dry.Hmass"},
    {29, "29. Dry.Hmolar"},
    {30, "30. Dry.hv.ideal"},
    {31, "31. Dry.hv.real"},
    {32, "32. Dry.hmass"},
    {33, "33. Dry.hmolar"},
    {34, "34. Dry.Wobbe index"},
    {35, "35. Dry.Spec.Volume"},
    {36, "36. Dry.GPM Total[gal/1000ft3]"},
    {37, "37. Dry.Hv.MJ/m3"},
    {38, "38. Dry.hv.MJ/m3"},
    {39, "39. Sat.Zmix"},
    {40, "40. Sat.Molar Mass"},
    {41, "41. Sat.Rel.Dens.Ideal"},
    {42, "42. Sat.Rel.Dens.Real"},
    {43, "43. Sat.Gas.Dens.Ideal"},
    {44, "44. Sat.Gas.Dens.Real"},
    {45, "45. Sat.Hv.Ideal"},
    {46, "46. Sat.Hv.Real"},
    {47, "47. Sat.Hmass"},
    {48, "48. Sat.Hmolar"},
    {49, "49. Sat.hv.ideal"},
    {50, "50. Sat.hv.real"},
    {51, "51. Sat.hmass"},
    {52, "52. Sat.hmolar"},
    {53, "53. Sat.Wobbe index"},
    {54, "54. Sat.Spec.Volume"},
    {55, "55. Sat.GPM Total[gal/1000ft3]"},
    {56, "56. Sat.Hv.MJ/m3"},
    {57, "57. Sat.hv.MJ/m3"},
    {58, "58. Zair"},
};
static_assert(isIndexedByCode(cAstmGpa) && sizeof cAstmGpa / sizeof cAstmGpa[0] == 1 + 58);

constexpr CodeText cGCStatus[] = {
    {0, "0. None"},
    {1, "1. Instrument Error"},
    {2, "2. Cabinet Temperature"},
    {3, "3. Ambient Pressure"},
};
static_assert(isIndexedByCode(cGCStatus));

constexpr char cNone[] = "0. None";
constexpr char cOther[] = "--";

/// Texts of one group's parameters, and the text for any other id.
struct GroupRow {
  int group;
  const CodeText* rows;
  int count;
  const char* other;
};

template <std::size_t size>
constexpr GroupRow makeGroup(int group, const CodeText (&rows)[size], const char* other) {
  return {group, rows, static_cast<int>(size), other};
}

constexpr GroupRow cParameters[] = {
    makeGroup(3, cSampleResults, cOther), makeGroup(4, cVerification, cOther),
    makeGroup(5, cAnalogInputs, cOther),  makeGroup(6, cIsoGost, cOther),
    makeGroup(7, cAstmGpa,
              nullptr),  // the only list without a text for unknown ids
    makeGroup(8, cGCStatus, cOther),      makeGroup(9, cDigitalInputs, cOther),
    {10, nullptr, 0, "0. Any Alarm"},     {11, nullptr, 0, "0. Verification failure"},
    {12, nullptr, 0, "0. Start failure"},
};

}  // namespace

const char* sampleTypeText(int aType) {
  return textOfCode(cSampleTypes, aType, "None", cFirstSampleType);
}

const char* alarmGroupText(int aGroup) {
  return textOfCode(cGroups, aGroup, "Unknown");
}

const char* alarmParameterText(int aGroup, int aId) {
  for (const GroupRow& row : cParameters) {
    if (row.group == aGroup) {
      return aId >= 0 && aId < row.count ? row.rows[aId].text : row.other;
    }
  }
  return cNone;
}
