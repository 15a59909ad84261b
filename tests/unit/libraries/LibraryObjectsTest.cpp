// Remote objects: created from registered prototypes, filled from the answer, owned by the library.
#include <ObjectTexts.h>
#include <RemoteObjects.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "LibraryFixture.h"
#include "WireSamples.h"

// The program's instance of the singleton, as in the tool.
template class ACE_Singleton<CloneFactory, ACE_Thread_Mutex>;

namespace {

void registerPrototype(const Clone& aPrototype) {
  ACE_Singleton<CloneFactory, ACE_Thread_Mutex>::instance()->registerObject(aPrototype);
}

ScriptedController::Script objectAnswer(std::uint32_t aStatus, const char* aClass,
                                        const wire::Frame& aContents) {
  return [aStatus, aClass, aContents](const Request& request) {
    return answer(request, wire::ObjectReply{aStatus, aClass, aContents});
  };
}

/// A class known only to the program: its objects can only come from its prototype.
class Reading : public RemoteObject {
 public:
  explicit Reading(int aGeneration = 0) : generation(aGeneration) { ++alive; }
  Reading(const Reading& aOther) : RemoteObject(aOther), generation(aOther.generation) { ++alive; }
  ~Reading() override { --alive; }

  Clone* clone() const override { return new Reading(*this); }
  const char* className() const override { return "Reading"; }
  bool save(ACE_OutputCDR& aStream) const override { return aStream.write_double(value); }
  bool load(ACE_InputCDR& aStream) override { return aStream.read_double(value); }

  static int alive;
  int generation;
  double value = 0;
};
int Reading::alive = 0;

/// Can be copied, but not sent over a connection.
class Copyable : public Clone {
 public:
  Clone* clone() const override { return new Copyable(*this); }
};

class ObjectTest : public ConnectedTest {
 protected:
  /// Reads object 2 as this class; null if none arrived.
  template <class Wanted>
  Wanted* read(unsigned long aStatus) {
    RemoteObject* object = nullptr;
    EXPECT_EQ(aStatus, ReadObject(mHandle, 2, object));
    return dynamic_cast<Wanted*>(object);
  }
};

TEST_F(ObjectTest, TextArrives) {
  registerPrototype(SiteInfoTag());
  mController.on(wire::eType::eObject,
                 objectAnswer(0, "SiteInfoTag", octets("00000006 4761732031 00")));
  const auto* tag = read<SiteInfoTag>(0);
  ASSERT_NE(nullptr, tag);
  EXPECT_STREQ("Gas 1", tag->getTagName().c_str());
  EXPECT_EQ(octets("00000002"), mController.requests().at(1).body);
}

TEST_F(ObjectTest, TextMayBeAnyOctets) {
  registerPrototype(SiteInfoTag());
  mController.on(wire::eType::eObject,
                 objectAnswer(0, "SiteInfoTag", octets("00000005 E9FF0080 00")));
  const auto* tag = read<SiteInfoTag>(0);
  ASSERT_NE(nullptr, tag);
  EXPECT_EQ(std::string("\xE9\xFF\0\x80", 4),
            std::string(tag->getTagName().c_str(), tag->getTagName().length()));
}

TEST_F(ObjectTest, FourTextsArrive) {
  registerPrototype(ColumnDescriptions());
  const std::string texts[] = {"Molsieve", "", "Plot U 10m", "x"};
  mController.on(wire::eType::eObject,
                 objectAnswer(0, "ColumnDescriptions", wire::marshalTexts(texts, 4)));
  const auto* columns = read<ColumnDescriptions>(0);
  ASSERT_NE(nullptr, columns);
  EXPECT_STREQ("Molsieve", columns->getDescriptionColumn1().c_str());
  EXPECT_STREQ("", columns->getDescriptionColumn2().c_str());
  EXPECT_STREQ("Plot U 10m", columns->getDescriptionColumn3().c_str());
  EXPECT_STREQ("x", columns->getDescriptionColumn4().c_str());
}

TEST_F(ObjectTest, ProgramsOwnClassIsCreatedFromItsLatestPrototype) {
  registerPrototype(Reading(1));
  registerPrototype(Reading(2));
  mController.on(wire::eType::eObject, objectAnswer(0, "Reading", octets("3FF8000000000000")));
  const int before = Reading::alive;
  const auto* reading = read<Reading>(0);
  ASSERT_NE(nullptr, reading);
  EXPECT_EQ(2, reading->generation);
  EXPECT_EQ(1.5, reading->value);
  EXPECT_EQ(before + 1, Reading::alive);
  shutdownGC();
  EXPECT_EQ(before, Reading::alive);
}

TEST_F(ObjectTest, EachReadBringsAnObjectOfItsOwn) {
  registerPrototype(SiteInfoTag());
  mController.on(wire::eType::eObject, objectAnswer(0, "SiteInfoTag", octets("00000002 41 00")));
  const auto* first = read<SiteInfoTag>(0);
  mController.on(wire::eType::eObject, objectAnswer(0, "SiteInfoTag", octets("00000002 42 00")));
  const auto* second = read<SiteInfoTag>(0);
  ASSERT_TRUE(first != nullptr && second != nullptr);
  EXPECT_STREQ("A", first->getTagName().c_str());
  EXPECT_STREQ("B", second->getTagName().c_str());
}

TEST_F(ObjectTest, UnregisteredClassBringsNothing) {
  mController.on(wire::eType::eObject, objectAnswer(0, "NeverSeen", {}));
  SiteInfoTag before;
  RemoteObject* object = &before;
  EXPECT_EQ(eClassNotRegistered, ReadObject(mHandle, 2, object));
  EXPECT_EQ(&before, object);
  EXPECT_EQ(0UL, BreakConnection(mHandle));
}

TEST_F(ObjectTest, WhatCrossesNoConnectionIsNotRegistered) {
  registerPrototype(Copyable());
  mController.on(wire::eType::eObject, objectAnswer(0, "Copyable", {}));
  EXPECT_EQ(nullptr, read<RemoteObject>(eClassNotRegistered));
}

TEST_F(ObjectTest, RefusalBringsNothing) {
  registerPrototype(SiteInfoTag());
  mController.on(wire::eType::eObject, objectAnswer(eObjectUnknown, "", {}));
  SiteInfoTag before;
  RemoteObject* object = &before;
  EXPECT_EQ(eObjectUnknown, ReadObject(mHandle, 99, object));
  EXPECT_EQ(&before, object);
  EXPECT_EQ(0UL, BreakConnection(mHandle));
}

TEST_F(ObjectTest, ContentsThatAreNotTheClassesBringNothing) {
  registerPrototype(SiteInfoTag());
  registerPrototype(ColumnDescriptions());
  const struct {
    const char* name;
    const char* contents;
  } cases[] = {
      {"SiteInfoTag", ""},
      {"SiteInfoTag", "00000006 476173"},
      {"SiteInfoTag", "00000003 476173"},
      {"SiteInfoTag", "00000002 41 00 00"},
      {"SiteInfoTag", "00000000"},
      {"SiteInfoTag", "FFFFFFFF 41 00"},
      {"ColumnDescriptions", "00000002 41 00"},
  };
  for (const auto& bad : cases) {
    SCOPED_TRACE(testing::Message() << bad.name << ' ' << bad.contents);
    mController.on(wire::eType::eObject, objectAnswer(0, bad.name, octets(bad.contents)));
    SiteInfoTag before;
    RemoteObject* object = &before;
    EXPECT_EQ(eAnswerInvalid, ReadObject(mHandle, 2, object));
    EXPECT_EQ(&before, object);
    EXPECT_EQ(eConnectionLost, ReadObject(mHandle, 2, object));
    EXPECT_EQ(eConnectionLost, BreakConnection(mHandle));
    ASSERT_EQ(0UL, connect());
  }
}

// A program may exit without stopping the library: a leak checker must find nothing then either.
TEST_F(ObjectTest, ProgramMayEndWithObjectsInItsHands) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // runs this test again, with its own controller
  registerPrototype(SiteInfoTag());
  mController.on(wire::eType::eObject, objectAnswer(0, "SiteInfoTag", octets("00000002 41 00")));
  ASSERT_EQ(0UL, BreakConnection(mHandle));
  const auto run = [this] {
    RemoteObject* object = nullptr;
    const bool good = connect() == 0 && ReadObject(mHandle, 2, object) == 0 && object != nullptr;
    std::exit(good ? 0 : 1);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST(RemoteObjects, TextIsSavedAndLoaded) {
  const wire::Frame contents = octets("00000003 616200");
  ACE_InputCDR in(contents.data(), contents.size(), ACE_CDR::BYTE_ORDER_BIG_ENDIAN);
  SiteInfoTag tag;
  ASSERT_TRUE(tag.load(in));
  ACE_OutputCDR out(std::size_t{0}, ACE_CDR::BYTE_ORDER_BIG_ENDIAN);
  ASSERT_TRUE(tag.save(out));
  EXPECT_EQ(contents, wire::Frame(out.buffer(), out.buffer() + out.length()));
}

TEST(RemoteObjects, FailedLoadLeavesEveryTextAsItWas) {
  const std::string texts[] = {"1", "2", "3", "4"};
  const std::string others[] = {"5", "6", "7"};
  const wire::Frame good = wire::marshalTexts(texts, 4);
  const wire::Frame three = wire::marshalTexts(others, 3);
  ACE_InputCDR whole(good.data(), good.size(), ACE_CDR::BYTE_ORDER_BIG_ENDIAN);
  ACE_InputCDR part(three.data(), three.size(), ACE_CDR::BYTE_ORDER_BIG_ENDIAN);
  ColumnDescriptions columns;
  ASSERT_TRUE(columns.load(whole));
  EXPECT_FALSE(columns.load(part));
  EXPECT_STREQ("1", columns.getDescriptionColumn1().c_str());
  EXPECT_STREQ("4", columns.getDescriptionColumn4().c_str());
}

TEST(RemoteObjects, CloneIsACopy) {
  const wire::Frame contents = octets("00000003 616200");
  ACE_InputCDR in(contents.data(), contents.size(), ACE_CDR::BYTE_ORDER_BIG_ENDIAN);
  SiteInfoTag tag;
  ASSERT_TRUE(tag.load(in));
  const std::unique_ptr<Clone> copy(tag.clone());
  const auto* copied = dynamic_cast<const SiteInfoTag*>(copy.get());
  ASSERT_NE(nullptr, copied);
  EXPECT_STREQ("ab", copied->getTagName().c_str());
  EXPECT_STREQ("SiteInfoTag", copied->className());
  EXPECT_STREQ("ColumnDescriptions", ColumnDescriptions().className());
}

}  // namespace
