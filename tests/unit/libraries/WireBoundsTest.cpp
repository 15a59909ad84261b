// The bounds of counts and lengths: values within them pass, values outside are rejected.
#include <ObjectTexts.h>
#include <gtest/gtest.h>

#include <string>

#include "WireSamples.h"

namespace {

template <class Message>
bool decodes(const wire::Frame& aBody) {
  Message message;
  return wire::decode(aBody.data(), aBody.size(), message);
}

/// The text, and whether it was read completely.
bool readsText(const wire::Frame& aStream, ACE_CString& text) {
  ACE_InputCDR stream(aStream.data(), aStream.size(), ACE_CDR::BYTE_ORDER_BIG_ENDIAN);
  return wire::readText(stream, text) && stream.length() == 0;
}

TEST(WireBounds, LargestBatchPasses) {
  wire::Batch sent;
  sent.records.resize(4096);
  for (ParamList& record : sent.records) {
    record = {1, 2, 3, 4, 5.0, 6, 7};
  }
  const wire::Frame frame = wire::encode(wire::eType::eRead, 1, sent);
  ASSERT_EQ(16U + 8 + 4096 * 32, frame.size());
  wire::Batch read;
  ASSERT_TRUE(wire::decode(frame.data() + 16, frame.size() - 16, read));
  EXPECT_TRUE(same(sent, read));
}

TEST(WireBounds, LargerBatchIsNotEncoded) {
  wire::Batch sent;
  sent.records.resize(4097);
  EXPECT_TRUE(wire::encode(wire::eType::eRead, 1, sent).empty());
}

TEST(WireBounds, LargerBatchIsNotDecoded) {
  wire::Frame body = octets("00000000 00001001");
  body.resize(8 + 4097 * 32, '\0');
  EXPECT_FALSE(decodes<wire::Batch>(body));
}

TEST(WireBounds, CountWithoutItsRecordsIsRefused) {
  EXPECT_FALSE(decodes<wire::Batch>(octets("00000000 00000001")));
  EXPECT_FALSE(decodes<wire::Batch>(octets("00000000 FFFFFFFF")));
  EXPECT_FALSE(decodes<wire::Batch>(octets("00000000 08000000")));  // times 32 wraps to 0
}

TEST(WireBounds, RecordsBeyondTheCountAreRefused) {
  wire::Frame body = octets("00000000 00000000");
  EXPECT_TRUE(decodes<wire::Batch>(body));
  body.resize(8 + 32, '\0');
  EXPECT_FALSE(decodes<wire::Batch>(body));
}

TEST(WireBounds, LongestNamePasses) {
  const std::string name(4096, 'n');
  const wire::Frame frame =
      wire::encode(wire::eType::eConnect, 1, wire::ConnectRequest{1, name.c_str()});
  wire::ConnectRequest read;
  ASSERT_TRUE(wire::decode(frame.data() + 16, frame.size() - 16, read));
  EXPECT_EQ(name, read.clientName.c_str());
}

TEST(WireBounds, LongerNameIsNotEncoded) {
  const std::string name(4097, 'n');
  EXPECT_TRUE(
      wire::encode(wire::eType::eConnect, 1, wire::ConnectRequest{1, name.c_str()}).empty());
}

TEST(WireBounds, LongerNameIsNotDecoded) {
  wire::Frame body = octets("00000001 00001002");  // 4097 octets including the zero
  body.resize(8 + 4097, 'n');
  body.push_back('\0');
  EXPECT_FALSE(decodes<wire::ConnectRequest>(body));
}

TEST(WireBounds, TextWithoutItsZeroIsRefused) {
  ACE_CString text;
  EXPECT_TRUE(readsText(octets("00000003 616200"), text));
  EXPECT_FALSE(readsText(octets("00000003 616263"), text));
  EXPECT_FALSE(readsText(octets("00000000"), text));
  EXPECT_FALSE(readsText(octets("00000003 6162"), text));
  EXPECT_FALSE(readsText(octets("FFFFFFFF 616200"), text));
}

TEST(WireBounds, TextMayHoldAnyOctets) {
  ACE_CString text;
  ASSERT_TRUE(readsText(octets("00000006 E900FF8041 00"), text));
  EXPECT_EQ(std::string("\xE9\0\xFF\x80\x41", 5), std::string(text.c_str(), text.length()));
}

TEST(WireBounds, LongerTextIsNotMarshalled) {
  const std::string texts[] = {std::string(4096, 't'), std::string(4097, 't')};
  EXPECT_EQ(4U + 4096 + 1, wire::marshalTexts(texts, 1).size());
  EXPECT_TRUE(wire::marshalTexts(texts, 2).empty());
}

TEST(WireBounds, ContentsThatFillTheBodyPass) {
  // status 4, class name 4 + 1, padding 3, count 4: the rest of 256 kB is the contents
  wire::ObjectReply sent{0, "", std::vector<char>(262144 - 16, 'c')};
  const wire::Frame frame = wire::encode(wire::eType::eObject, 1, sent);
  ASSERT_EQ(16U + 262144, frame.size());
  wire::ObjectReply read;
  ASSERT_TRUE(wire::decode(frame.data() + 16, frame.size() - 16, read));
  EXPECT_TRUE(same(sent, read));
}

TEST(WireBounds, LargerContentsAreNotEncoded) {
  const wire::ObjectReply sent{0, "", std::vector<char>(262144 - 15, 'c')};
  EXPECT_TRUE(wire::encode(wire::eType::eObject, 1, sent).empty());
}

TEST(WireBounds, LargerContentsAreNotDecoded) {
  wire::Frame body = octets("00000000 00000001 00 000000 0003FFF1");
  body.resize(262144 + 1, 'c');
  EXPECT_FALSE(decodes<wire::ObjectReply>(body));
}

}  // namespace
