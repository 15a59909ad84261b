// Writing JSON: texts and reals of the instrument, documents and result objects byte for byte.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <string>

#include "Capture.h"
#include "Common.h"

// The replacement character as it appears in the document; a macro, so that it joins other
// literals.
#define FFFD "\xEF\xBF\xBD"

namespace {
/// A text of the instrument, and its form between the document's quotes.
struct TextRow {
  const char* text;
  const char* shown;
};

std::ostream& operator<<(std::ostream& aStream, const TextRow& aRow) {
  return aStream << '"' << aRow.shown << '"';
}

// The bounds follow the Unicode standard's table of well-formed byte sequences.
constexpr TextRow cTexts[] = {
    {"", ""},
    {"Natural gas", "Natural gas"},
    {"\x7F", "\x7F"},
    // Well-formed, at the ends of each range.
    {"\xC2\x80", "\xC2\x80"},
    {"\xDF\xBF", "\xDF\xBF"},
    {"\xE0\xA0\x80", "\xE0\xA0\x80"},
    {"\xE0\xBF\xBF", "\xE0\xBF\xBF"},
    {"\xE1\x80\x80", "\xE1\x80\x80"},
    {"\xEC\xBF\xBF", "\xEC\xBF\xBF"},
    {"\xED\x80\x80", "\xED\x80\x80"},
    {"\xED\x9F\xBF", "\xED\x9F\xBF"},
    {"\xEE\x80\x80", "\xEE\x80\x80"},
    {"\xEF\xBF\xBF", "\xEF\xBF\xBF"},
    {"\xF0\x90\x80\x80", "\xF0\x90\x80\x80"},
    {"\xF0\xBF\xBF\xBF", "\xF0\xBF\xBF\xBF"},
    {"\xF1\x80\x80\x80", "\xF1\x80\x80\x80"},
    {"\xF3\xBF\xBF\xBF", "\xF3\xBF\xBF\xBF"},
    {"\xF4\x80\x80\x80", "\xF4\x80\x80\x80"},
    {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
    {"20 \xC2\xB0"
     "C \xE2\x82\xAC",
     "20 \xC2\xB0"
     "C \xE2\x82\xAC"},
    // One byte outside each range.
    {"\x80", FFFD},
    {"\xBF", FFFD},
    {"\xC0\x80", FFFD FFFD},
    {"\xC1\xBF", FFFD FFFD},
    {"\xC2\x7F", FFFD "\x7F"},
    {"\xC2\xC0", FFFD FFFD},
    {"\xDF\xC0", FFFD FFFD},
    {"\xE0\x9F\xBF", FFFD FFFD FFFD},
    {"\xE0\xA0\x7F", FFFD FFFD "\x7F"},
    {"\xE0\xC0\x80", FFFD FFFD FFFD},
    {"\xE1\x80\xC0", FFFD FFFD FFFD},
    {"\xEC\x7F\x80", FFFD "\x7F" FFFD},
    {"\xED\xA0\x80", FFFD FFFD FFFD},
    {"\xED\xBF\xBF", FFFD FFFD FFFD},
    {"\xEF\xBF\xC0", FFFD FFFD FFFD},
    {"\xF0\x8F\xBF\xBF", FFFD FFFD FFFD FFFD},
    {"\xF0\x90\xC0\x80", FFFD FFFD FFFD FFFD},
    {"\xF0\x90\x80\xC0", FFFD FFFD FFFD FFFD},
    {"\xF1\x7F\x80\x80", FFFD "\x7F" FFFD FFFD},
    {"\xF3\xBF\xBF\x7F", FFFD FFFD FFFD "\x7F"},
    {"\xF4\x90\x80\x80", FFFD FFFD FFFD FFFD},
    {"\xF4\x8F\xBF\xC0", FFFD FFFD FFFD FFFD},
    {"\xF5\x80\x80\x80", FFFD FFFD FFFD FFFD},
    {"\xF8\x88\x80\x80\x80", FFFD FFFD FFFD FFFD FFFD},
    {"\xFE", FFFD},
    {"\xFF", FFFD},
    // Truncated by the end of the text, or by another character.
    {"\xC2", FFFD},
    {"\xE2\x82", FFFD FFFD},
    {"\xF0\x9F\x98", FFFD FFFD FFFD},
    {"\xF0", FFFD},
    {"20 \xF0", "20 " FFFD},
    {"\xE2(\xA1", FFFD "(" FFFD},
    {"\xE2\x82\xE2\x82\xAC", FFFD FFFD "\xE2\x82\xAC"},
    {"Erdgas 20\xB0"
     "C",
     "Erdgas 20" FFFD "C"},
    {"\xC3\xA9\xE9\xC3\xA9", "\xC3\xA9" FFFD "\xC3\xA9"},
    // What JSON itself escapes.
    {"\"\\/", "\\\"\\\\/"},
    {"\b\f\n\r\t", "\\b\\f\\n\\r\\t"},
    {"\x01\x1F", "\\u0001\\u001F"},
};

struct RealRow {
  double value;
  const char* shown;
};

std::ostream& operator<<(std::ostream& aStream, const RealRow& aRow) {
  return aStream << aRow.shown;
}

constexpr RealRow cReals[] = {
    {0.0, "0.0"},
    {-0.0, "-0.0"},
    {60.0, "60.0"},
    {0.1, "0.1"},
    {-273.15, "-273.15"},
    {1.0 / 3.0, "0.3333333333333333"},
    {1234567.875, "1234567.875"},
    {1e21, "1e21"},
    {1e-7, "1e-7"},
    {5e-324, "5e-324"},
    {1.7976931348623157e308, "1.7976931348623157e308"},
    {std::numeric_limits<double>::quiet_NaN(), "\"-\""},
    {-std::numeric_limits<double>::quiet_NaN(), "\"-\""},
    {std::numeric_limits<double>::infinity(), "\"-\""},
    {-std::numeric_limits<double>::infinity(), "\"-\""},
};

std::string printed(const Document& aDocument) {
  const Output lOutput = capture([&] { printDocument(aDocument); });
  EXPECT_EQ(lOutput.err, "");
  return lOutput.out;
}

std::string printedResult(unsigned int aCode, const char* aText) {
  const Output lOutput = capture([&] { printErroMsg(aCode, aText); });
  EXPECT_EQ(lOutput.err, "");
  return lOutput.out;
}

class AddTextTest : public testing::TestWithParam<TextRow> {};
class AddRealTest : public testing::TestWithParam<RealRow> {};

class JsonOutputTest : public testing::Test {
 protected:
  JsonOutputTest() { mDocument.SetObject(); }
  Document mDocument;
};
}  // namespace

TEST_P(AddTextTest, IsShown) {
  Document document;
  document.SetObject();
  addText(document, "t", GetParam().text, document.GetAllocator());
  EXPECT_EQ(printed(document), std::string("{\n    \"t\": \"") + GetParam().shown + "\"\n}\n");
}

INSTANTIATE_TEST_SUITE_P(Texts, AddTextTest, testing::ValuesIn(cTexts));

TEST_P(AddRealTest, IsShown) {
  Document document;
  document.SetObject();
  addReal(document, "r", GetParam().value, document.GetAllocator());
  EXPECT_EQ(printed(document), std::string("{\n    \"r\": ") + GetParam().shown + "\n}\n");
}

INSTANTIATE_TEST_SUITE_P(Reals, AddRealTest, testing::ValuesIn(cReals));

TEST_F(JsonOutputTest, TextIsCopied) {
  char text[] = "before";
  addText(mDocument, "t", text, mDocument.GetAllocator());
  text[0] = 'B';
  EXPECT_EQ(printed(mDocument), "{\n    \"t\": \"before\"\n}\n");
}

TEST_F(JsonOutputTest, LongTextIsWhole) {
  const std::string text(100000, 'x');
  addText(mDocument, "t", text.c_str(), mDocument.GetAllocator());
  EXPECT_EQ(printed(mDocument), "{\n    \"t\": \"" + text + "\"\n}\n");
}

TEST_F(JsonOutputTest, LongBrokenTextIsWhole) {
  const std::string text(10000, '\xFF');
  std::string shown;
  for (int i = 0; i < 10000; ++i) {
    shown += FFFD;
  }
  addText(mDocument, "t", text.c_str(), mDocument.GetAllocator());
  EXPECT_EQ(printed(mDocument), "{\n    \"t\": \"" + shown + "\"\n}\n");
}

TEST_F(JsonOutputTest, OneIntegerMemberIsThreeLines) {
  mDocument.AddMember("total", 5, mDocument.GetAllocator());
  EXPECT_EQ(printed(mDocument), "{\n    \"total\": 5\n}\n");
}

TEST_F(JsonOutputTest, EmptyObjectIsOneLine) {
  EXPECT_EQ(printed(mDocument), "{}\n");
}

TEST_F(JsonOutputTest, NestedMembersAreIndentedByFour) {
  AllocatorType& al = mDocument.GetAllocator();
  mDocument.Parse(R"({"b":true,"a":[1,-2,{"x":1.5,"y":null}],"e":[],"u":4294967295})");
  ASSERT_FALSE(mDocument.HasParseError());
  mDocument.AddMember("last", "%s %d", al);
  EXPECT_EQ(printed(mDocument), R"({
    "b": true,
    "a": [
        1,
        -2,
        {
            "x": 1.5,
            "y": null
        }
    ],
    "e": [],
    "u": 4294967295,
    "last": "%s %d"
}
)");
}

TEST(ResultObjectTest, ConnectionFailure) {
  EXPECT_EQ(printedResult(10053, "Unable to connect to GC!"), R"({
    "ErrorCode": 10053,
    "Msg": "Unable to connect to GC!"
}
)");
}

TEST(ResultObjectTest, Verdicts) {
  EXPECT_EQ(printedResult(0, "Accepted"),
            "{\n    \"ErrorCode\": 0,\n    \"Msg\": \"Accepted\"\n}\n");
  EXPECT_EQ(printedResult(28, "Refused"),
            "{\n    \"ErrorCode\": 28,\n    \"Msg\": \"Refused\"\n}\n");
}

TEST(ResultObjectTest, CodeIsUnsigned) {
  EXPECT_EQ(printedResult(static_cast<unsigned int>(-1), "Refused"),
            "{\n    \"ErrorCode\": 4294967295,\n    \"Msg\": \"Refused\"\n}\n");
  EXPECT_EQ(printedResult(2147483648U, "Refused"),
            "{\n    \"ErrorCode\": 2147483648,\n    \"Msg\": \"Refused\"\n}\n");
}

TEST(ResultObjectTest, VerdictOfACommandIsItsStatus) {
  struct Row {
    unsigned long status;
    const char* shown;
    int result;
  };
  for (const Row& row :
       {Row{0, "0,\n    \"Msg\": \"Accepted\"", 0}, Row{5, "5,\n    \"Msg\": \"Refused\"", 5},
        Row{28, "28,\n    \"Msg\": \"Refused\"", 28},
        Row{0x80000000UL, "2147483648,\n    \"Msg\": \"Refused\"", -2147483647 - 1},
        Row{0xFFFFFFFFUL, "4294967295,\n    \"Msg\": \"Refused\"", -1}}) {
    int result = 99;
    const Output output = capture([&] { result = printVerdict(row.status); });
    EXPECT_EQ(result, row.result);
    EXPECT_EQ(output.out, std::string("{\n    \"ErrorCode\": ") + row.shown + "\n}\n");
    EXPECT_EQ(output.err, "");
  }
}

/// With a 64-bit long, the text shows the whole status, the code its lower half.
TEST(ResultObjectTest, VerdictIsOfTheWholeStatus) {
  constexpr unsigned long cHigh = ~0xFFFFFFFFUL;
  int result = 99;
  const Output output = capture([&] { result = printVerdict(cHigh); });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(output.out, std::string("{\n    \"ErrorCode\": 0,\n    \"Msg\": \"") +
                            (cHigh != 0 ? "Refused" : "Accepted") + "\"\n}\n");
}

TEST(ResultObjectTest, TextMayBeEmptyOrLong) {
  EXPECT_EQ(printedResult(1, ""), "{\n    \"ErrorCode\": 1,\n    \"Msg\": \"\"\n}\n");
  const std::string text(5000, 'm');
  EXPECT_EQ(printedResult(1, text.c_str()),
            "{\n    \"ErrorCode\": 1,\n    \"Msg\": \"" + text + "\"\n}\n");
}

TEST(ResultObjectTest, EachPrintIsAWholeObject) {
  const Output output = capture([] {
    printErroMsg(1, "a");
    printErroMsg(2, "b");
  });
  EXPECT_EQ(output.out,
            "{\n    \"ErrorCode\": 1,\n    \"Msg\": \"a\"\n}\n"
            "{\n    \"ErrorCode\": 2,\n    \"Msg\": \"b\"\n}\n");
}
