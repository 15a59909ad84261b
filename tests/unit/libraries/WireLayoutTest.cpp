// The position of each octet in a message, and that messages survive a round trip.
#include <ObjectTexts.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "WireSamples.h"

namespace {

TEST(WireLayout, FrameIsHeaderAndBody) {
  forEachSample([](const char* name, const auto& message, const wire::Frame& body) {
    SCOPED_TRACE(name);
    wire::Frame expected = octets("47435731 00000005 89ABCDEF");
    const wire::Frame length = octets("000000");
    expected.insert(expected.end(), length.begin(), length.end());
    expected.push_back(static_cast<char>(body.size()));
    expected.insert(expected.end(), body.begin(), body.end());
    EXPECT_EQ(expected, wire::encode(wire::eType::eObject, 0x89ABCDEF, message));
  });
}

TEST(WireLayout, BodyIsReadBack) {
  forEachSample([](const char* name, const auto& message, const wire::Frame& body) {
    SCOPED_TRACE(name);
    std::decay_t<decltype(message)> read{};
    ASSERT_TRUE(wire::decode(body.data(), body.size(), read));
    EXPECT_TRUE(same(message, read));
  });
}

TEST(WireLayout, BodyIsReadAtEveryAddress) {
  forEachSample([](const char* name, const auto& message, const wire::Frame& body) {
    for (std::size_t offset = 0; offset < 16; ++offset) {
      SCOPED_TRACE(testing::Message() << name << " at " << offset);
      wire::Frame shifted(offset, '\x55');
      shifted.insert(shifted.end(), body.begin(), body.end());
      std::decay_t<decltype(message)> read{};
      ASSERT_TRUE(wire::decode(shifted.data() + offset, body.size(), read));
      EXPECT_TRUE(same(message, read));
    }
  });
}

TEST(WireLayout, EveryDoubleKeepsItsOctets) {
  std::uint64_t pattern = 0x7FF8DEADBEEF0001;  // a NaN with a payload
  double payload = 0;
  std::memcpy(&payload, &pattern, sizeof payload);
  const double values[] = {0.0, -0.0, 5e-324, 1.7976931348623157e308, HUGE_VAL, payload};
  for (const double value : values) {
    wire::Batch sent;
    sent.records.push_back({0, 0, 0, 1, value, 0, 0});
    const wire::Frame frame = wire::encode(wire::eType::eRead, 1, sent);
    wire::Batch read;
    ASSERT_TRUE(
        wire::decode(frame.data() + wire::cHeaderSize, frame.size() - wire::cHeaderSize, read));
    EXPECT_TRUE(same(sent, read)) << value;
  }
}

TEST(WireLayout, HeaderIsReadAtEveryAddress) {
  const wire::Frame head = octets("47435731 00000002 00000003 00040000");
  for (std::size_t offset = 0; offset < 8; ++offset) {
    wire::Frame shifted(offset, '\x55');
    shifted.insert(shifted.end(), head.begin(), head.end());
    wire::Header header{};
    ASSERT_TRUE(wire::decodeHeader(shifted.data() + offset, header));
    EXPECT_EQ(wire::eType::eRead, header.type);
    EXPECT_EQ(3U, header.sequence);
    EXPECT_EQ(262144U, header.bodyLength);
  }
}

TEST(WireLayout, HeaderOfUnknownTypeIsRead) {
  wire::Header header{};
  ASSERT_TRUE(wire::decodeHeader(octets("47435731 FFFFFFFF 00000000 00000000").data(), header));
  EXPECT_EQ(0xFFFFFFFFU, static_cast<std::uint32_t>(header.type));
}

TEST(WireLayout, HeaderIsRefused) {
  wire::Header header{};
  EXPECT_FALSE(wire::decodeHeader(octets("47435732 00000002 00000003 00000000").data(), header));
  EXPECT_FALSE(wire::decodeHeader(octets("31574347 00000002 00000003 00000000").data(), header));
  EXPECT_FALSE(wire::decodeHeader(octets("47435731 00000002 00000003 00040001").data(), header));
  EXPECT_FALSE(wire::decodeHeader(octets("47435731 00000002 00000003 FFFFFFFF").data(), header));
}

TEST(WireLayout, TextsOfAnObjectAreZeroPaddedStrings) {
  const std::string texts[] = {"ab", "", std::string("\xE9\0z", 3)};
  EXPECT_EQ(octets("00000003 616200 00"
                   "00000001 00 000000"
                   "00000004 E9007A00"),
            wire::marshalTexts(texts, 3));
}

}  // namespace
