// Texts of error codes: some written out, all within their buffer.
#include <ErrorText.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <set>
#include <string>

namespace {

constexpr std::size_t cBufferSize = 128;
constexpr char cGuard = '\x5A';

/// The text, from a buffer whose last octet must stay untouched behind the 128 promised ones.
std::string textOf(int aCode) {
  char buffer[cBufferSize + 1];
  std::memset(buffer, cGuard, sizeof buffer);
  getErrorText(aCode, buffer);
  EXPECT_EQ(cGuard, buffer[cBufferSize]) << aCode;
  EXPECT_NE(nullptr, std::memchr(buffer, '\0', cBufferSize)) << aCode;
  buffer[cBufferSize] = '\0';
  return buffer;
}

TEST(ErrorText, KnownCodes) {
  EXPECT_EQ("No error", textOf(0));
  EXPECT_EQ("Clock battery empty", textOf(103));
  EXPECT_EQ("Carrier gas pressure too low", textOf(201));
  EXPECT_EQ("Column heater open circuit", textOf(301));
  EXPECT_EQ("Stream selection valve not in position", textOf(404));
  EXPECT_EQ("Response factor outside its limits", textOf(506));
}

TEST(ErrorText, UnknownCodesShowTheirNumber) {
  EXPECT_EQ("Unknown error 4711", textOf(4711));
  EXPECT_EQ("Unknown error 1", textOf(1));
  EXPECT_EQ("Unknown error 507", textOf(507));
  EXPECT_EQ("Unknown error -1", textOf(-1));
  EXPECT_EQ("Unknown error 2147483647", textOf(INT_MAX));
  EXPECT_EQ("Unknown error -2147483648", textOf(INT_MIN));
}

TEST(ErrorText, EveryCodeHasATextOfItsOwnInPrintableAscii) {
  std::set<std::string> texts;
  int known = 0;
  for (int code = -10; code < 1000; ++code) {
    const std::string text = textOf(code);
    EXPECT_TRUE(texts.insert(text).second) << code;
    EXPECT_FALSE(text.empty()) << code;
    for (const char c : text) {
      EXPECT_TRUE(c >= ' ' && c <= '~') << code;
    }
    known += text.rfind("Unknown error ", 0) == 0 ? 0 : 1;
  }
  EXPECT_EQ(33, known);
}

TEST(ErrorText, NullBufferIsLeftAlone) {
  getErrorText(0, nullptr);
}

}  // namespace
