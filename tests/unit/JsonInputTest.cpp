// Reading members of JSON objects: which types are accepted, and the default for all others.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "Common.h"

namespace {
constexpr int cInt = -77;
constexpr double cReal = -77.5;
constexpr const char* cText = "default";

/// A member's value, and the result of each function. A function that does not accept the type
/// returns the default.
struct Row {
  const char* json;
  int integer;
  double real;
  const char* text;
  bool isBool;
};

std::ostream& operator<<(std::ostream& aStream, const Row& aRow) {
  return aStream << aRow.json;
}

constexpr Row cRows[] = {
    {"null", cInt, cReal, cText, false},
    {"true", cInt, cReal, cText, true},
    {"false", cInt, cReal, cText, true},
    {"0", 0, 0.0, cText, false},
    {"5", 5, 5.0, cText, false},
    {"-5", -5, -5.0, cText, false},
    {"2147483647", 2147483647, 2147483647.0, cText, false},
    {"2147483648", cInt, 2147483648.0, cText, false},
    {"4294967295", cInt, 4294967295.0, cText, false},
    {"4294967296", cInt, 4294967296.0, cText, false},
    {"-2147483648", -2147483647 - 1, -2147483648.0, cText, false},
    {"-2147483649", cInt, -2147483649.0, cText, false},
    {"9223372036854775807", cInt, 9223372036854775807.0, cText, false},
    {"18446744073709551615", cInt, 18446744073709551615.0, cText, false},
    {"18446744073709551616", cInt, 18446744073709551616.0, cText, false},
    {"3.0", cInt, 3.0, cText, false},
    {"-0.0", cInt, -0.0, cText, false},
    {"3.75", cInt, 3.75, cText, false},
    {"1e2", cInt, 100.0, cText, false},
    {"1e300", cInt, 1e300, cText, false},
    {"\"\"", cInt, cReal, "", false},
    {"\"5\"", cInt, cReal, "5", false},
    {"\"true\"", cInt, cReal, "true", false},
    {"\"\\u00e9 \\\"\"", cInt, cReal, "\xC3\xA9 \"", false},
    {"[]", cInt, cReal, cText, false},
    {"[5]", cInt, cReal, cText, false},
    {"{}", cInt, cReal, cText, false},
    {"{\"a\": 5}", cInt, cReal, cText, false},
};

Document parsed(const std::string& aJson) {
  Document lDocument;
  lDocument.Parse(aJson.c_str());
  EXPECT_FALSE(lDocument.HasParseError()) << aJson;
  return lDocument;
}

void expectDefaults(const Value& aParent, const char* aName) {
  EXPECT_EQ(getIntJsonMember(aParent, aName, cInt), cInt);
  EXPECT_EQ(getRealJsonMember(aParent, aName, cReal), cReal);
  EXPECT_TRUE(getBooleanJsonMember(aParent, aName, true));
  EXPECT_FALSE(getBooleanJsonMember(aParent, aName, false));
  EXPECT_STREQ(getStringJsonMember(aParent, aName, cText).c_str(), cText);
  EXPECT_EQ(findJsonMember(aParent, aName), nullptr);
}

class JsonTypeTest : public testing::TestWithParam<Row> {
 protected:
  Document mDocument = parsed(std::string("{\"a\": ") + GetParam().json + "}");
};

class JsonParentTest : public testing::TestWithParam<const char*> {};
}  // namespace

TEST_P(JsonTypeTest, Integer) {
  EXPECT_EQ(getIntJsonMember(mDocument, "a", cInt), GetParam().integer);
}

TEST_P(JsonTypeTest, Real) {
  EXPECT_EQ(getRealJsonMember(mDocument, "a", cReal), GetParam().real);
}

TEST_P(JsonTypeTest, Boolean) {
  if (GetParam().isBool) {
    const bool value = std::string(GetParam().json) == "true";
    EXPECT_EQ(getBooleanJsonMember(mDocument, "a", !value), value);
  } else {
    EXPECT_TRUE(getBooleanJsonMember(mDocument, "a", true));
    EXPECT_FALSE(getBooleanJsonMember(mDocument, "a", false));
  }
}

TEST_P(JsonTypeTest, String) {
  EXPECT_STREQ(getStringJsonMember(mDocument, "a", cText).c_str(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Types, JsonTypeTest, testing::ValuesIn(cRows));

TEST_P(JsonParentTest, ParentThatIsNoObjectHasNoMembers) {
  expectDefaults(parsed(GetParam()), "a");
}

INSTANTIATE_TEST_SUITE_P(Parents, JsonParentTest,
                         testing::Values("null", "true", "false", "5", "5.5", "\"a\"", "[]",
                                         "[{\"a\": 5}]", "{}"));

TEST(JsonInputTest, MissingMemberYieldsTheDefault) {
  const Document document = parsed("{\"a\": 5, \"bb\": true, \"B\": \"text\"}");
  expectDefaults(document, "b");
  expectDefaults(document, "");
  expectDefaults(document, "aa");
}

TEST(JsonInputTest, MembersAreFoundByTheirNames) {
  const Document document = parsed("{\"a\": 1, \"b\": 2.5, \"c\": true, \"d\": \"text\"}");
  EXPECT_EQ(getIntJsonMember(document, "a", cInt), 1);
  EXPECT_EQ(getRealJsonMember(document, "b", cReal), 2.5);
  EXPECT_TRUE(getBooleanJsonMember(document, "c", false));
  EXPECT_STREQ(getStringJsonMember(document, "d", cText).c_str(), "text");
}

TEST(JsonInputTest, MemberIsFoundWhateverItsType) {
  const Document document = parsed("{\"a\": null, \"b\": [5], \"\": true}");
  ASSERT_NE(findJsonMember(document, "a"), nullptr);
  EXPECT_TRUE(findJsonMember(document, "a")->IsNull());
  EXPECT_EQ(findJsonMember(document, "b"), &document["b"]);
  EXPECT_EQ(findJsonMember(document, ""), &document[""]);
}

TEST(JsonInputTest, FirstOfTwoMembersOfOneNameCounts) {
  const Document document = parsed("{\"a\": 1, \"a\": 2}");
  EXPECT_EQ(getIntJsonMember(document, "a", cInt), 1);
}

TEST(JsonInputTest, TextOutlivesTheDocument) {
  ACE_CString text;
  {
    const Document document = parsed("{\"a\": \"a text too long for any short string buffer\"}");
    text = getStringJsonMember(document, "a", cText);
  }
  EXPECT_STREQ(text.c_str(), "a text too long for any short string buffer");
}

TEST(JsonInputTest, DefaultTextIsCopied) {
  char fallback[] = "before";
  const ACE_CString text = getStringJsonMember(parsed("{}"), "a", fallback);
  fallback[0] = 'B';
  EXPECT_STREQ(text.c_str(), "before");
}
