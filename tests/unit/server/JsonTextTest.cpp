// Any octets and any number through JSON.
#include "JsonText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr char cBad[] = "\xEF\xBF\xBD";

std::string bad(int aCount) {
  std::string text;
  for (int n = 0; n < aCount; ++n) {
    text += cBad;
  }
  return text;
}

TEST(ToUtf8, KeepsWhatIsValid) {
  for (const std::string& text :
       {std::string(), std::string("plain"), std::string("a\0b\x7f", 4), std::string("Gr\xC3\xBCn"),
        std::string("\xE2\x82\xAC"), std::string("\xF0\x9F\x98\x80"), std::string("\xEF\xBF\xBF"),
        std::string("\xF4\x8F\xBF\xBF")}) {
    EXPECT_EQ(toUtf8(text), text);
  }
}

TEST(ToUtf8, ReplacesEachOctetThatIsNot) {
  EXPECT_EQ(toUtf8("a\xFFz"), "a" + bad(1) + "z");
  EXPECT_EQ(toUtf8("\x80\xBF"), bad(2));
  EXPECT_EQ(toUtf8("\xC3"), bad(1));              // cut off
  EXPECT_EQ(toUtf8("\xE2\x82"), bad(2));          // cut off
  EXPECT_EQ(toUtf8("\xC3("), bad(1) + "(");       // not continued
  EXPECT_EQ(toUtf8("\xC0\xAF"), bad(2));          // overlong
  EXPECT_EQ(toUtf8("\xE0\x80\xAF"), bad(3));      // overlong
  EXPECT_EQ(toUtf8("\xED\xA0\x80"), bad(3));      // surrogate
  EXPECT_EQ(toUtf8("\xF4\x90\x80\x80"), bad(4));  // past the last code point
  EXPECT_EQ(toUtf8("\xC3\xBC\xFF\xC3\xBC"), "\xC3\xBC" + bad(1) + "\xC3\xBC");
  EXPECT_EQ(toUtf8(std::string("\xC3\0", 2)), bad(1) + std::string(1, '\0'));
}

std::string written(double aValue) {
  rapidjson::StringBuffer buffer;
  JsonWriter writer(buffer);
  writeReal(writer, aValue);
  return buffer.GetString();
}

TEST(WriteReal, NumbersAndNames) {
  EXPECT_EQ(written(0.5), "0.5");
  EXPECT_EQ(written(-2), "-2.0");
  EXPECT_EQ(written(1e300), "1e300");
  EXPECT_EQ(written(std::numeric_limits<double>::quiet_NaN()), "\"NaN\"");
  EXPECT_EQ(written(-std::numeric_limits<double>::quiet_NaN()), "\"NaN\"");
  EXPECT_EQ(written(std::numeric_limits<double>::infinity()), "\"Infinity\"");
  EXPECT_EQ(written(-std::numeric_limits<double>::infinity()), "\"-Infinity\"");
}

rapidjson::Document parse(const char* aText) {
  rapidjson::Document document;
  document.Parse(aText);
  EXPECT_FALSE(document.HasParseError()) << aText;
  return document;
}

TEST(ReadReal, ReadsWhatIsWritten) {
  double real = 0.0;
  EXPECT_TRUE(readReal(parse("-2"), real));
  EXPECT_EQ(real, -2.0);
  EXPECT_TRUE(readReal(parse("\"-Infinity\""), real));
  EXPECT_EQ(real, -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(readReal(parse("\"Infinity\""), real));
  EXPECT_EQ(real, std::numeric_limits<double>::infinity());
  EXPECT_TRUE(readReal(parse("\"NaN\""), real));
  EXPECT_TRUE(std::isnan(real));
  real = 7.0;
  for (const char* other : {"\"nan\"", "\"1\"", "true", "null", "[1]", "{}"}) {
    EXPECT_FALSE(readReal(parse(other), real)) << other;
  }
  EXPECT_EQ(real, 7.0);
}

TEST(ReadUnsigned, Bounds) {
  std::uint32_t number = 7;
  for (const char* other : {"-1", "4294967296", "1.0", "\"1\"", "true"}) {
    EXPECT_FALSE(readUnsigned(parse(other), number)) << other;
  }
  EXPECT_EQ(number, 7U);
  EXPECT_TRUE(readUnsigned(parse("4294967295"), number));
  EXPECT_EQ(number, 4294967295U);
}

TEST(ReadText, KeepsZeros) {
  std::string text = "before";
  EXPECT_FALSE(readText(parse("1"), text));
  EXPECT_EQ(text, "before");
  EXPECT_TRUE(readText(parse(R"("a\u0000b")"), text));
  EXPECT_EQ(text, std::string("a\0b", 3));
}

}  // namespace
