// Octets that no honest peer sends: each is read or rejected, and no read goes beyond the body.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <type_traits>

#include "WireSamples.h"

namespace {

/// Decodes from a heap block of exactly this size, so that a sanitizer sees a read beyond it.
template <class Message>
bool decodeExact(const char* aBody, std::size_t aSize) {
  const std::unique_ptr<char[]> exact(new char[aSize]);
  std::copy_n(aBody, aSize, exact.get());
  Message message;
  return wire::decode(exact.get(), aSize, message);
}

TEST(WireHostile, EveryTruncationIsRefused) {
  forEachSample([](const char* name, const auto& message, const wire::Frame& body) {
    using Message = std::decay_t<decltype(message)>;
    for (std::size_t size = 0; size < body.size(); ++size) {
      EXPECT_FALSE(decodeExact<Message>(body.data(), size)) << name << ' ' << size;
    }
  });
}

TEST(WireHostile, EveryExtensionIsRefused) {
  forEachSample([](const char* name, const auto& message, wire::Frame body) {
    using Message = std::decay_t<decltype(message)>;
    for (int extra = 1; extra <= 40; ++extra) {
      body.push_back('\0');
      EXPECT_FALSE(decodeExact<Message>(body.data(), body.size())) << name << ' ' << extra;
    }
  });
}

TEST(WireHostile, NoBodyIsRefused) {
  forEachSample([](const char* name, auto message, const wire::Frame&) {
    EXPECT_FALSE(wire::decode(nullptr, 0, message)) << name;
  });
}

TEST(WireHostile, RandomOctetsHarmNobody) {
  std::mt19937 random(20047);
  for (int round = 0; round < 20000; ++round) {
    wire::Frame body(random() % 128);
    for (char& octet : body) {
      // Mostly small numbers, which pass as counts and reach more code.
      octet = static_cast<char>(random() % 4 == 0 ? random() : random() % 3);
    }
    forEachSample([&body](const char*, const auto& message, const wire::Frame&) {
      decodeExact<std::decay_t<decltype(message)>>(body.data(), body.size());
    });
  }
}

TEST(WireHostile, WhatDecodesEncodesToAnEqualMessage) {
  std::mt19937 random(28);
  int decoded = 0;
  for (int round = 0; round < 5000; ++round) {
    forEachSample([&](const char* name, auto message, wire::Frame body) {
      body[random() % body.size()] = static_cast<char>(random());
      if (!wire::decode(body.data(), body.size(), message)) {
        return;
      }
      ++decoded;
      const wire::Frame frame = wire::encode(wire::eType::eRead, 1, message);
      ASSERT_EQ(wire::cHeaderSize + body.size(), frame.size()) << name;
      decltype(message) again;
      ASSERT_TRUE(wire::decode(frame.data() + wire::cHeaderSize, body.size(), again)) << name;
      EXPECT_TRUE(same(message, again)) << name;
    });
  }
  EXPECT_GT(decoded, 5000);
}

}  // namespace
