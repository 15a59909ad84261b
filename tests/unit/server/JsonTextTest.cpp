// Any octets and any number through JSON.
#include "JsonText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace simulator {

namespace {

constexpr char cBad[] = "\xEF\xBF\xBD";

std::string bad(int aCount) {
  std::string text;
  for (int n = 0; n < aCount; ++n) {
    text += cBad;
  }
  return text;
}

std::string reprinted(const std::string& aText) {
  rapidjson::Document document;
  EXPECT_FALSE(parseJson(aText, document).IsError()) << aText;
  rapidjson::StringBuffer buffer;
  JsonWriter writer(buffer);
  document.Accept(writer);
  return {buffer.GetString(), buffer.GetSize()};
}

TEST(ParseJson, BuildsAnything) {
  for (const char* text : {"null", "true", "false", "{}", "[]", R"("a\u0000\n\"b")",
                           R"({"a":[1,-2,{"b":null,"c":{}},[]],"d":"","a":false})"}) {
    EXPECT_EQ(reprinted(text), text);
  }
  EXPECT_EQ(reprinted("\"\xff\""), "\"\xff\"");
}

TEST(ParseJson, WholeNumbersStayWhole) {
  for (const char* text :
       {"0", "7", "-7", "2147483647", "2147483648", "-2147483648", "-2147483649", "4294967295",
        "4294967296", "9223372036854775808", "-9223372036854775808", "18446744073709551615"}) {
    EXPECT_EQ(reprinted(text), text);
  }
  EXPECT_EQ(reprinted("-0"), "0");
  rapidjson::Document document;
  parseJson("18446744073709551616", document);
  EXPECT_TRUE(document.IsDouble());
  EXPECT_EQ(document.GetDouble(), 0x1p64);
  parseJson("-9223372036854775809", document);
  EXPECT_TRUE(document.IsDouble());
  EXPECT_EQ(document.GetDouble(), -0x1p63);
  for (const char* text : {"4294967295", "0"}) {
    parseJson(text, document);
    EXPECT_TRUE(document.IsUint()) << text;
  }
  parseJson("4294967296", document);
  EXPECT_TRUE(document.IsUint64() && !document.IsUint());
  parseJson("-2147483648", document);
  EXPECT_TRUE(document.IsInt());
  parseJson("-2147483649", document);
  EXPECT_TRUE(document.IsInt64() && !document.IsInt());
  for (const char* text : {"4.0", "4e0", "40E-1"}) {
    parseJson(text, document);
    EXPECT_TRUE(document.IsDouble()) << text;
    EXPECT_EQ(document.GetDouble(), 4.0);
  }
}

TEST(ParseJson, RealNumbersAreReadToTheLastBit) {
  struct Row {
    const char* text;
    double value;
  };
  const Row rows[] = {
      {"2.1400000000000022e-5", 0x1.67084cd59ba8dp-16},
      {"0.1", 0x1.999999999999ap-4},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"-1.7976931348623157e308", -std::numeric_limits<double>::max()},
      {"2.2250738585072014e-308", std::numeric_limits<double>::min()},
      {"5e-324", std::numeric_limits<double>::denorm_min()},
      {"1e-361", 0.0},
      {"1e-99999999999", 0.0},
      {"9007199254740993.0", 9007199254740992.0},
  };
  for (const Row& row : rows) {
    rapidjson::Document document;
    EXPECT_FALSE(parseJson(row.text, document).IsError()) << row.text;
    EXPECT_EQ(document.GetDouble(), row.value) << row.text;
  }
  rapidjson::Document document;
  parseJson("-0.0", document);
  EXPECT_TRUE(std::signbit(document.GetDouble()));
  parseJson("0.000" + std::string(400, '0') + "1", document);
  EXPECT_EQ(document.GetDouble(), 0.0);
}

TEST(ParseJson, SaysWhatIsWrongAndWhere) {
  struct Row {
    std::string text;
    rapidjson::ParseErrorCode code;
    std::size_t offset;
  };
  const Row rows[] = {
      {"", rapidjson::kParseErrorDocumentEmpty, 0},
      {"[1, 1e999]", rapidjson::kParseErrorNumberTooBig, 4},
      {"[1, 1.8e308]", rapidjson::kParseErrorNumberTooBig, 4},
      {"[-1.8e308]", rapidjson::kParseErrorNumberTooBig, 1},
      {std::string(400, '9'), rapidjson::kParseErrorNumberTooBig, 0},
      {"{} 1", rapidjson::kParseErrorDocumentRootNotSingular, 3},
      {"[1.]", rapidjson::kParseErrorNumberMissFraction, 3},
      {"[01]", rapidjson::kParseErrorArrayMissCommaOrSquareBracket, 2},
      {std::string(1000000, '['), rapidjson::kParseErrorValueInvalid, 1000000},
  };
  for (const Row& row : rows) {
    rapidjson::Document document;
    const rapidjson::ParseResult result = parseJson(row.text, document);
    EXPECT_EQ(result.Code(), row.code) << row.text.substr(0, 20);
    EXPECT_EQ(result.Offset(), row.offset) << row.text.substr(0, 20);
    EXPECT_TRUE(document.IsNull());
  }
  rapidjson::Document document;
  EXPECT_EQ(parseJson("[\"\xff\"]", document, eEncoding::eChecked).Code(),
            rapidjson::kParseErrorStringInvalidEncoding);
  EXPECT_FALSE(parseJson("[\"\xC3\xBC\"]", document, eEncoding::eChecked).IsError());
}

TEST(IsShallow, CountsObjectsAndArraysWithinEachOther) {
  EXPECT_TRUE(isShallow("1"));
  EXPECT_TRUE(isShallow("[]"));
  EXPECT_TRUE(isShallow(std::string(100, '[') + std::string(100, ']')));
  EXPECT_FALSE(isShallow(std::string(101, '[') + std::string(101, ']')));
  EXPECT_FALSE(isShallow(std::string(1000000, '[') + std::string(1000000, ']')));
  std::string objects;
  for (int n = 0; n < 100; ++n) {
    objects += "{\"a\":";
  }
  objects += "1" + std::string(100, '}');
  EXPECT_TRUE(isShallow(objects));
  EXPECT_FALSE(isShallow("{\"a\":" + objects + "}"));
  EXPECT_FALSE(isShallow("[" + objects + "]"));
  std::string wide = "[";
  for (int n = 0; n < 200; ++n) {
    wide += "[{}], {\"a\": [1]}, ";
  }
  EXPECT_TRUE(isShallow(wide + "1]"));
}

TEST(Hex, IsTwoDigitsForEachOctet) {
  EXPECT_EQ(toHex(""), "");
  EXPECT_EQ(toHex(std::string("\0\x0f\x10 \x7f\x80\xa9\xff", 8)), "000f10207f80a9ff");
  EXPECT_EQ(fromHex("000f10207F80a9Ff"), std::string("\0\x0f\x10 \x7f\x80\xa9\xff", 8));
  EXPECT_EQ(fromHex(""), "");
  EXPECT_EQ(fromHex("411"), "A");
}

TEST(RealValue, IsWhatReadRealReads) {
  for (double real : {0.0, -2.5, 1e300, std::numeric_limits<double>::infinity(),
                      -std::numeric_limits<double>::infinity()}) {
    double read = 0.0;
    EXPECT_TRUE(readReal(realValue(real), read));
    EXPECT_EQ(read, real);
  }
  EXPECT_STREQ(realValue(std::numeric_limits<double>::quiet_NaN()).GetString(), "NaN");
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

}  // namespace simulator
