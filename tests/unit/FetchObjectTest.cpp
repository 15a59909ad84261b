// Fetching remote objects: the prototype first, then the object, used only if its class is right.
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

TEST_F(FetchObjectTest, InstrumentApplicationIsObject4) {
  EXPECT_EQ(eInstrumentApplication, 4UL);
}
