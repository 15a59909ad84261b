// Tables of code texts, and the texts of the run types.
#include "CodeText.h"

#include <gtest/gtest.h>

#include <climits>

#include "RunType.h"

namespace {
constexpr CodeText cInOrder[] = {{0, "none"}, {1, "one"}, {2, "two"}};
constexpr CodeText cStartsAtOne[] = {{1, "one"}, {2, "two"}};
constexpr CodeText cWrongFirst[] = {{1, "one"}, {1, "one again"}};
constexpr CodeText cSwapped[] = {{0, "none"}, {2, "two"}, {1, "one"}};
constexpr CodeText cGap[] = {{0, "none"}, {1, "one"}, {3, "three"}};
constexpr CodeText cTwice[] = {{0, "none"}, {0, "none again"}};
}  // namespace

static_assert(isIndexedByCode(cInOrder));
static_assert(!isIndexedByCode(cStartsAtOne));
static_assert(!isIndexedByCode(cWrongFirst));
static_assert(!isIndexedByCode(cSwapped));
static_assert(!isIndexedByCode(cGap));
static_assert(!isIndexedByCode(cTwice));

TEST(CodeTextTest, CodesOfTheTableHaveTheirTexts) {
  EXPECT_STREQ(textOfCode(cInOrder, 0, "other"), "none");
  EXPECT_STREQ(textOfCode(cInOrder, 1, "other"), "one");
  EXPECT_STREQ(textOfCode(cInOrder, 2, "other"), "two");
}

TEST(CodeTextTest, AllOtherCodesHaveTheFallback) {
  for (const int code : {3, 4, 100, INT_MAX, -1, -2, -3, INT_MIN}) {
    EXPECT_STREQ(textOfCode(cInOrder, code, "other"), "other") << code;
  }
}

TEST(RunTypeTest, EachCodeHasItsText) {
  EXPECT_STREQ(runTypeText(0), "Analysis");
  EXPECT_STREQ(runTypeText(1), "Calibration");
  EXPECT_STREQ(runTypeText(2), "Blank");
  EXPECT_STREQ(runTypeText(3), "Verification");
}

TEST(RunTypeTest, AnyOtherCodeIsNone) {
  for (const int code : {4, 5, 255, INT_MAX, -1, -4, INT_MIN}) {
    EXPECT_STREQ(runTypeText(code), "None") << code;
  }
}
