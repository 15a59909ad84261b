// The base class of the operations: its state, the defaults of its functions, and what every
// operation keeps from its start.
#include "Section.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "Capture.h"
#include "SecAbortRun.h"
#include "SecAlarm.h"
#include "SecAutoRun.h"
#include "SecCalibRun.h"
#include "SecCalibTbl.h"
#include "SecConfig.h"
#include "SecSequenceTbl.h"
#include "SecSingleRun.h"
#include "SecSolutionLoad.h"
#include "SecStatus.h"
#include "SecStream.h"
#include "TestMap.h"

namespace {
/// Overrides only what it must, and exposes its state.
class PlainSection : public SectionBase {
 public:
  void init(ParameterMap* aMap, unsigned long handle) override {
    mMap = aMap;
    mHandle = handle;
  }
  ParameterMap* map() const { return mMap; }
  unsigned long handle() const { return mHandle; }
  SectionBase* section(int aIndex) const { return mSections[aIndex]; }
  unsigned int count() const { return mcount; }
};

class SectionTest : public testing::Test {
 protected:
  PlainSection mSection;
  PlainSection mFirst;
  PlainSection mSecond;
  PlainSection mThird;
  PlainSection mFourth;
};

/// Reports its own deletion.
class CountedSection : public PlainSection {
 public:
  explicit CountedSection(int& aDeleted) : mDeleted(aDeleted) {}
  ~CountedSection() override { ++mDeleted; }

 private:
  int& mDeleted;
};

/// Exposes an operation's state.
template <class Section>
class OpenSection : public Section {
 public:
  ParameterMap* map() const { return this->mMap; }
  unsigned long handle() const { return this->mHandle; }
};

template <class Section>
class SectionStartTest : public testing::Test {};

using LentMap = testing::Types<SecAbortRun, SecAlarm, SecAutoRun, SecCalibRun, SecConfig,
                               SecSequenceTbl, SecSingleRun, SecSolutionLoad, SecStatus, SecStream>;
TYPED_TEST_SUITE(SectionStartTest, LentMap, );
}  // namespace

static_assert(std::is_abstract_v<SectionBase>);
static_assert(std::has_virtual_destructor_v<SectionBase>);

TEST_F(SectionTest, NewSectionHoldsNothing) {
  EXPECT_EQ(mSection.map(), nullptr);
  EXPECT_EQ(mSection.handle(), 0UL);
  EXPECT_EQ(mSection.section(0), nullptr);
  EXPECT_EQ(mSection.section(1), nullptr);
  EXPECT_EQ(mSection.section(2), nullptr);
  EXPECT_EQ(mSection.count(), 0U);
}

TEST_F(SectionTest, DefaultsDoNothingAndReturnZero) {
  ParameterMap map(1);
  mSection.init(&map, 7);
  SectionBase& base = mSection;
  char file[] = "no such file";
  const Output output = capture([&] {
    EXPECT_EQ(base.readGC(), 0);
    EXPECT_EQ(base.writeGC(), 0);
    EXPECT_EQ(base.parseFile(file), 0);
    base.setArgument(3);
    base.printJson();
  });
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "");
  EXPECT_EQ(mSection.map(), &map);
  EXPECT_EQ(mSection.handle(), 7UL);
  EXPECT_EQ(mSection.count(), 0U);
  EXPECT_EQ(map.current_size(), 0U);
}

TEST_F(SectionTest, ThreeSubSectionsAreHeldInOrder) {
  EXPECT_TRUE(mSection.addSubSection(&mFirst));
  EXPECT_EQ(mSection.count(), 1U);
  EXPECT_EQ(mSection.section(1), nullptr);
  EXPECT_TRUE(mSection.addSubSection(&mSecond));
  EXPECT_TRUE(mSection.addSubSection(&mThird));
  EXPECT_EQ(mSection.section(0), &mFirst);
  EXPECT_EQ(mSection.section(1), &mSecond);
  EXPECT_EQ(mSection.section(2), &mThird);
  EXPECT_EQ(mSection.count(), 3U);
}

TEST_F(SectionTest, FourthSubSectionIsRefused) {
  mSection.addSubSection(&mFirst);
  mSection.addSubSection(&mSecond);
  mSection.addSubSection(&mThird);
  EXPECT_FALSE(mSection.addSubSection(&mFourth));
  EXPECT_FALSE(mSection.addSubSection(&mFourth));
  EXPECT_EQ(mSection.count(), 3U);
  EXPECT_EQ(mSection.section(0), &mFirst);
  EXPECT_EQ(mSection.section(1), &mSecond);
  EXPECT_EQ(mSection.section(2), &mThird);
}

TEST_F(SectionTest, ClearForgetsAllThreeAndTakesNewOnes) {
  mSection.addSubSection(&mFirst);
  mSection.addSubSection(&mSecond);
  mSection.addSubSection(&mThird);
  mSection.clearSubSection();
  EXPECT_EQ(mSection.count(), 0U);
  EXPECT_EQ(mSection.section(0), nullptr);
  EXPECT_EQ(mSection.section(1), nullptr);
  EXPECT_EQ(mSection.section(2), nullptr);
  EXPECT_TRUE(mSection.addSubSection(&mFourth));
  EXPECT_EQ(mSection.section(0), &mFourth);
  EXPECT_EQ(mSection.count(), 1U);
}

TEST(SectionOwnershipTest, SubSectionsAreNeverDeleted) {
  int deleted = 0;
  CountedSection sub(deleted);
  {
    PlainSection section;
    section.addSubSection(&sub);
    section.clearSubSection();
    section.addSubSection(&sub);
  }
  EXPECT_EQ(deleted, 0);
}

TEST(SectionOwnershipTest, DeletingThroughTheBaseReachesTheSection) {
  int deleted = 0;
  SectionBase* const section = new CountedSection(deleted);
  delete section;
  EXPECT_EQ(deleted, 1);
}

TEST(SectionOwnershipTest, MapIsNotTouched) {
  ParameterMap map(1);
  auto* const parameter = new Parameter(1, 300);
  map.bind(ACE_CString("a"), parameter);
  {
    PlainSection section;
    section.init(&map, 7);
  }
  EXPECT_EQ(map.current_size(), 1U);
  delete parameter;
}

TYPED_TEST(SectionStartTest, MapAndHandleAreKept) {
  TestMap map;
  OpenSection<TypeParam> section;
  section.init(&map, ~0xABCDUL);
  EXPECT_EQ(section.map(), &map);
  EXPECT_EQ(section.handle(), ~0xABCDUL);
}

TEST(CalibTableStartTest, OnlyTheHandleIsKept) {
  TestMap map;
  OpenSection<SecCalibTbl> section;
  section.init(&map, ~0xABCDUL);
  EXPECT_EQ(section.map(), nullptr);
  EXPECT_EQ(section.handle(), ~0xABCDUL);
  EXPECT_EQ(map.current_size(), 0U);
}
