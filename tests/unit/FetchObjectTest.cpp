// Fetching remote objects: the prototype first, then the object, used only if its class matches.
#include "FetchObject.h"

#include <gmock/gmock.h>

#include "FakeInstrument.h"

using testing::ElementsAre;

namespace {
class FetchObjectTest : public testing::Test {
 protected:
  FakeInstrument mInstrument;
};
}  // namespace

TEST_F(FetchObjectTest, PrototypeIsRegisteredAndDestroyedBeforeTheObjectIsRead) {
  mInstrument.setTag(4, "Natural gas");
  const auto* const tag = fetchObject<SiteInfoTag>(FakeInstrument::cHandle, 4);
  ASSERT_NE(tag, nullptr);
  EXPECT_STREQ(tag->getTagName().c_str(), "Natural gas");
  EXPECT_THAT(mInstrument.calls(), ElementsAre("registerObject(SiteInfoTag)", "~SiteInfoTag()",
                                               "ReadObject(handle, 4)"));
}

TEST_F(FetchObjectTest, EveryFetchRegistersAgain) {
  mInstrument.setColumns(6, {"a", "b", "c", "d"});
  for (int i = 0; i < 2; ++i) {
    const auto* const columns = fetchObject<ColumnDescriptions>(9, 6);
    ASSERT_NE(columns, nullptr);
    EXPECT_STREQ(columns->getDescriptionColumn4().c_str(), "d");
  }
  EXPECT_THAT(mInstrument.calls(),
              ElementsAre("registerObject(ColumnDescriptions)", "~ColumnDescriptions()",
                          "ReadObject(9, 6)", "registerObject(ColumnDescriptions)",
                          "~ColumnDescriptions()", "ReadObject(9, 6)"));
}

TEST_F(FetchObjectTest, AbsentObjectIsNull) {
  EXPECT_EQ(fetchObject<SiteInfoTag>(1, 4), nullptr);
}

TEST_F(FetchObjectTest, ObjectOfAnotherClassIsNull) {
  mInstrument.setColumns(4, {"a", "b", "c", "d"});
  EXPECT_EQ(fetchObject<SiteInfoTag>(1, 4), nullptr);
  mInstrument.setTag(6, "tag");
  EXPECT_EQ(fetchObject<ColumnDescriptions>(1, 6), nullptr);
}

TEST_F(FetchObjectTest, UntouchedPointerIsNull) {
  mInstrument.setTag(4, "Natural gas");
  mInstrument.silent = true;
  EXPECT_EQ(fetchObject<SiteInfoTag>(1, 4), nullptr);
}

TEST_F(FetchObjectTest, StatusIsNotLookedAt) {
  mInstrument.setStatus(eFunction::eReadObject, 10061);
  EXPECT_EQ(fetchObject<SiteInfoTag>(1, 4), nullptr);
  mInstrument.setTag(4, "Natural gas");
  const auto* const tag = fetchObject<SiteInfoTag>(1, 4);
  ASSERT_NE(tag, nullptr);
  EXPECT_STREQ(tag->getTagName().c_str(), "Natural gas");
}

TEST_F(FetchObjectTest, TextIsAssigned) {
  mInstrument.setTag(3, "gc-12");
  ACE_CString text("before");
  fetchText(FakeInstrument::cHandle, 3, text);
  EXPECT_STREQ(text.c_str(), "gc-12");
  EXPECT_THAT(mInstrument.calls(), ElementsAre("registerObject(SiteInfoTag)", "~SiteInfoTag()",
                                               "ReadObject(handle, 3)"));
}

TEST_F(FetchObjectTest, TextThatCannotBeHadLeavesTheString) {
  ACE_CString text("before");
  fetchText(1, 3, text);
  EXPECT_STREQ(text.c_str(), "before");
  mInstrument.setColumns(3, {"a", "b", "c", "d"});
  fetchText(1, 3, text);
  EXPECT_STREQ(text.c_str(), "before");
}

TEST_F(FetchObjectTest, NumbersOfTheObjects) {
  EXPECT_EQ(eSiteInformation, 2UL);
  EXPECT_EQ(eInstrumentName, 3UL);
  EXPECT_EQ(eInstrumentApplication, 4UL);
  EXPECT_EQ(eBOOTPName, 5UL);
  EXPECT_EQ(eColumnDescriptions, 6UL);
}
