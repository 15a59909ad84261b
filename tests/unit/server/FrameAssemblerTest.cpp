// Frames out of octets in pieces of every size.
#include "FrameAssembler.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace simulator {

namespace {

using eNext = FrameAssembler::eNext;

/// A header with the right magic, type 2, and a body of the letters a, b, c, ...
std::string frameOf(std::uint8_t aSequence, std::uint8_t aLength) {
  std::string frame = std::string("GCW1") + std::string("\0\0\0\2", 4) + std::string("\0\0\0", 3) +
                      static_cast<char>(aSequence) + std::string("\0\0\0", 3) +
                      static_cast<char>(aLength);
  for (std::uint8_t n = 0; n < aLength; ++n) {
    frame += static_cast<char>('a' + n);
  }
  return frame;
}

struct Received {
  std::vector<std::uint32_t> sequences;
  std::vector<std::string> bodies;
};

/// Takes all frames that are whole; returns why it ended.
eNext takeAll(FrameAssembler& assembler, Received& received) {
  wire::Header header{};
  const char* body = nullptr;
  for (;;) {
    const eNext next = assembler.next(header, body);
    if (next != eNext::eFrame) {
      return next;
    }
    EXPECT_EQ(static_cast<int>(header.type), 2);
    received.sequences.push_back(header.sequence);
    received.bodies.emplace_back(body, header.bodyLength);
  }
}

class FrameAssemblerPieces : public ::testing::TestWithParam<std::size_t> {};

TEST_P(FrameAssemblerPieces, Assembles) {
  const std::string octets = frameOf(1, 5) + frameOf(2, 0) + frameOf(3, 20) + frameOf(4, 1);
  FrameAssembler assembler;
  Received received;
  for (std::size_t start = 0; start < octets.size(); start += GetParam()) {
    const std::string piece = octets.substr(start, GetParam());
    ASSERT_TRUE(assembler.append(piece.data(), piece.size()));
    ASSERT_EQ(takeAll(assembler, received), eNext::eNone);
  }
  EXPECT_EQ(received.sequences, (std::vector<std::uint32_t>{1, 2, 3, 4}));
  EXPECT_EQ(received.bodies, (std::vector<std::string>{"abcde", "", "abcdefghijklmnopqrst", "a"}));
}

INSTANTIATE_TEST_SUITE_P(EverySize, FrameAssemblerPieces,
                         ::testing::Range(std::size_t{1}, std::size_t{92}));

TEST(FrameAssembler, NothingYet) {
  FrameAssembler assembler;
  Received received;
  EXPECT_EQ(takeAll(assembler, received), eNext::eNone);
  ASSERT_TRUE(assembler.append("", 0));
  EXPECT_EQ(takeAll(assembler, received), eNext::eNone);
}

TEST(FrameAssembler, WrongMagic) {
  std::string frame = frameOf(1, 3);
  frame[3] = '2';
  FrameAssembler assembler;
  Received received;
  ASSERT_TRUE(assembler.append(frame.data(), 15));
  EXPECT_EQ(takeAll(assembler, received), eNext::eNone);
  ASSERT_TRUE(assembler.append(frame.data() + 15, frame.size() - 15));
  EXPECT_EQ(takeAll(assembler, received), eNext::eInvalid);
  EXPECT_TRUE(received.sequences.empty());
}

TEST(FrameAssembler, GoodFramesBeforeABadHeaderCount) {
  const std::string octets = frameOf(1, 3) + "this is no header";
  FrameAssembler assembler;
  Received received;
  ASSERT_TRUE(assembler.append(octets.data(), octets.size()));
  EXPECT_EQ(takeAll(assembler, received), eNext::eInvalid);
  EXPECT_EQ(received.bodies, std::vector<std::string>{"abc"});
}

TEST(FrameAssembler, LengthOverTheBound) {
  // 262145 octets, one too many, and 4294967295.
  for (const std::string& length : {std::string("\0\4\0\1", 4), std::string("\xff\xff\xff\xff")}) {
    const std::string header = frameOf(1, 0).substr(0, 12) + length;
    FrameAssembler assembler;
    Received received;
    ASSERT_TRUE(assembler.append(header.data(), header.size()));
    EXPECT_EQ(takeAll(assembler, received), eNext::eInvalid);
  }
}

TEST(FrameAssembler, LargestFrame) {
  const std::string header = frameOf(7, 0).substr(0, 12) + std::string("\0\4\0\0", 4);
  const std::string body(262144, 'x');
  FrameAssembler assembler;
  Received received;
  ASSERT_TRUE(assembler.append(header.data(), header.size()));
  ASSERT_TRUE(assembler.append(body.data(), body.size() - 1));
  EXPECT_EQ(takeAll(assembler, received), eNext::eNone);
  ASSERT_TRUE(assembler.append("x", 1));
  EXPECT_EQ(takeAll(assembler, received), eNext::eNone);
  EXPECT_EQ(received.bodies, std::vector<std::string>{body});
}

TEST(FrameAssembler, BoundsWhatWaits) {
  FrameAssembler assembler;
  const std::string octets(524320, 'x');  // two frames of the largest size
  EXPECT_TRUE(assembler.append(octets.data(), octets.size()));
  EXPECT_FALSE(assembler.append("x", 1));
  EXPECT_FALSE(assembler.append(octets.data(), octets.size()));
}

}  // namespace

}  // namespace simulator
