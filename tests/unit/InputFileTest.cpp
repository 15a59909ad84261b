// Files of downloads: which are rejected, with what verdict, and that nothing is sent then.
#include <gmock/gmock.h>
#include <unistd.h>

#include <ostream>

#include "DownloadBench.h"
#include "SecCalibTbl.h"
#include "SecSequenceTbl.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
constexpr std::size_t cMillion = 1000000;
constexpr std::size_t cReadBuffer = 65536;

/// By doubling, because these texts are built at every start of the test program.
std::string repeated(const std::string& aText, std::size_t n) {
  const std::size_t size = n * aText.size();
  std::string lText = aText;
  while (lText.size() < size) {
    lText.append(lText, 0, size - lText.size());
  }
  return lText;
}

/// A file that both downloads accept, with the given members added; it writes no row.
std::string fileWith(const std::string& aMembers) {
  return "{\"Table_repeat\": 0, \"total\": 0" + aMembers + "}";
}

struct FileRow {
  const char* name;
  std::string content;
};

// GoogleTest would print the whole files.
std::ostream& operator<<(std::ostream& aStream, const FileRow& aRow) {
  return aStream << aRow.name;
}

const FileRow cRefused[] = {
    {"empty", ""},
    {"white space", " \t\r\n"},
    {"null", "null"},
    {"number", "5"},
    {"text", "\"total\""},
    {"array", "[]"},
    {"array of an object", "[" + fileWith("") + "]"},
    {"empty object", "{}"},
    {"no total", R"({"Table_repeat": 0, "rows": []})"},
    {"total in another case", R"({"Table_repeat": 0, "Total": 0})"},
    {"total inside", R"({"Table_repeat": 0, "rows": [{"total": 0}]})"},
    {"truncated", R"({"Table_repeat": 0, "total": 0)"},
    {"truncated text", R"({"Table_repeat": 0, "total)"},
    {"second value", fileWith("") + " {}"},
    {"second bracket", fileWith("") + "}"},
    {"trailing comma", R"({"Table_repeat": 0, "total": 0,})"},
    {"trailing comma in rows", fileWith(", \"rows\": [{},]")},
    {"comment", "/* table */" + fileWith("")},
    {"single quotes", "{'Table_repeat': 0, 'total': 0}"},
    {"not a number", fileWith(", \"a\": NaN")},
    {"infinity", fileWith(", \"a\": -Infinity")},
    {"number above all doubles", fileWith(", \"a\": 1e400")},
    {"negative number beyond all doubles", fileWith(", \"a\": -1e400")},
    {"plus sign", fileWith(", \"a\": +1")},
    {"leading zero", fileWith(", \"a\": 01")},
    {"broken escape", fileWith(R"(, "a": "\x")")},
    {"half a surrogate pair", fileWith(R"(, "a": "\ud800")")},
    {"control character in a text", fileWith(", \"a\": \"\n\"")},
    {"byte-order mark", "\xEF\xBB\xBF" + fileWith("")},
    {"UTF-16", std::string("\xFF\xFE{\0}\0", 6)},
    {"zero byte first", std::string("\0", 1) + fileWith("")},
    {"zero byte inside", "{\"Table_repeat\": 0," + std::string("\0", 1) + "\"total\": 0}"},
    {"zero byte behind", fileWith("") + std::string("\0", 1)},
    {"zero byte and more behind", fileWith("") + std::string("\0garbage", 8)},
    {"zero byte at the end of the read buffer",
     std::string(cReadBuffer - 1 - fileWith("").size(), ' ') + fileWith("") + std::string(1, '\0')},
    {"zero byte behind the read buffer",
     std::string(cReadBuffer - fileWith("").size(), ' ') + fileWith("") + std::string(1, '\0')},
    {"a million open brackets", repeated("[", cMillion)},
    {"a million open objects", repeated("{\"a\":", cMillion)},
    {"a million brackets", repeated("[", cMillion) + repeated("]", cMillion)},
    {"a million open brackets inside",
     "{\"Table_repeat\": 0, \"total\": 0, \"a\": " + repeated("[", cMillion)},
    {"longer than the read buffer, truncated",
     R"({"Table_repeat": 0, "total": 0)" + std::string(2 * cReadBuffer, ' ')},
};

const FileRow cTaken[] = {
    {"least", fileWith("")},
    {"white space around", " \t\r\n" + fileWith("") + " \t\r\n"},
    {"other members", fileWith(R"(, "": null, "a": [1, -2.5e-3, true, {"b": "\u00e4"}])")},
    {"twice the read buffer before", std::string(2 * cReadBuffer, ' ') + fileWith("")},
    {"twice the read buffer behind", fileWith("") + std::string(2 * cReadBuffer, '\n')},
    {"text across the read buffer",
     fileWith(", \"a\": \"" + std::string(3 * cReadBuffer, 'x') + "\"")},
    {"ends with the read buffer",
     std::string(cReadBuffer - fileWith("").size(), ' ') + fileWith("")},
    {"one byte more than the read buffer",
     std::string(cReadBuffer + 1 - fileWith("").size(), ' ') + fileWith("")},
    {"number below all doubles", fileWith(", \"a\": 1e-400")},
    // Numbers for which an exact parser's tables do not suffice.
    {"number below all doubles in full", fileWith(", \"a\": 0." + repeated("0", 400) + "1")},
    {"number far below all doubles in full", fileWith(", \"a\": 0." + repeated("0", 5000) + "1")},
    {"number just above all doubles", fileWith(", \"a\": 1.8e308")},
    {"number just below all doubles", fileWith(", \"a\": -9.9e308")},
    {"number of many digits", fileWith(", \"a\": 1." + repeated("9", 5000))},
    {"a million brackets in another member",
     fileWith(", \"a\": " + repeated("[", cMillion) + repeated("]", cMillion))},
};

/// A download that rejects its file with its verdict.
class SequenceFile : public DownloadBench<SecSequenceTbl> {
 public:
  void expectRefused() {
    EXPECT_EQ(mOutput.out, resultObject(0, "Format Invalid"));
    EXPECT_THAT(mInstrument.calls(), IsEmpty());
  }
  void expectTaken() {
    EXPECT_EQ(mOutput.out, resultObject(0, "Success!"));
    EXPECT_THAT(mInstrument.calls(),
                ElementsAre("WriteParamList(handle, 2)", "ExecuteCommand(handle, 0, 22)"));
  }
  int parseUnopened(const char* aName) { return mSection.parseFile(std::string(aName).data()); }
};

class CalibFile : public DownloadBench<SecCalibTbl> {
 public:
  void expectRefused() {
    EXPECT_EQ(mOutput.out, resultObject(2, "Format invalid"));
    EXPECT_THAT(mInstrument.calls(), IsEmpty());
  }
  void expectTaken() {
    EXPECT_EQ(mOutput.out, resultObject(0, "Success"));
    EXPECT_THAT(mInstrument.calls(), ElementsAre("ExecuteCommand(handle, 0, 26)"));
  }
  int parseUnopened(const char* aName) { return mSection.parseFile(std::string(aName).data()); }
};

/// The descriptor that the next opened file would get.
int freeDescriptor() {
  const int lDescriptor = dup(STDOUT_FILENO);
  close(lDescriptor);
  return lDescriptor;
}

class RefusedFileTest : public testing::TestWithParam<FileRow> {};
class TakenFileTest : public testing::TestWithParam<FileRow> {};

/// Tests of both downloads.
template <class Download>
class DownloadFileTest : public testing::Test {
 protected:
  Download mDownload;
};

using Downloads = testing::Types<SequenceFile, CalibFile>;
}  // namespace

TEST_P(RefusedFileTest, BySequenceDownloadWithCodeZero) {
  SequenceFile file;
  EXPECT_EQ(file.download(GetParam().content), -1);
  file.expectRefused();
}

TEST_P(RefusedFileTest, ByCalibrationDownloadWithCodeTwo) {
  CalibFile file;
  EXPECT_EQ(file.download(GetParam().content), -1);
  file.expectRefused();
}

INSTANTIATE_TEST_SUITE_P(Files, RefusedFileTest, testing::ValuesIn(cRefused));

TEST_P(TakenFileTest, BySequenceDownload) {
  SequenceFile file;
  EXPECT_EQ(file.download(GetParam().content), 0);
  file.expectTaken();
}

TEST_P(TakenFileTest, ByCalibrationDownload) {
  CalibFile file;
  EXPECT_EQ(file.download(GetParam().content), 0);
  file.expectTaken();
}

INSTANTIATE_TEST_SUITE_P(Files, TakenFileTest, testing::ValuesIn(cTaken));

TYPED_TEST_SUITE(DownloadFileTest, Downloads, );

TYPED_TEST(DownloadFileTest, MissingFileIsToldByParseAndRefusedByWrite) {
  const std::string missing = testing::TempDir() + "no/such/file.json";
  int result = 99;
  const Output output = capture([&] { result = this->mDownload.parseUnopened(missing.c_str()); });
  EXPECT_EQ(result, -1);
  EXPECT_EQ(output.out + output.err, "");
  EXPECT_EQ(this->mDownload.write(), -1);
  this->mDownload.expectRefused();
}

TYPED_TEST(DownloadFileTest, DirectoryCanBeOpenedAndHoldsNothing) {
  EXPECT_EQ(this->mDownload.parseUnopened("/"), 0);
  EXPECT_EQ(this->mDownload.write(), -1);
  this->mDownload.expectRefused();
}

TYPED_TEST(DownloadFileTest, NullDeviceHoldsNothing) {
  EXPECT_EQ(this->mDownload.parseUnopened("/dev/null"), 0);
  EXPECT_EQ(this->mDownload.write(), -1);
  this->mDownload.expectRefused();
}

TYPED_TEST(DownloadFileTest, WithoutAnyFileIsRefused) {
  EXPECT_EQ(this->mDownload.write(), -1);
  this->mDownload.expectRefused();
}

TYPED_TEST(DownloadFileTest, EveryTruncationIsRefused) {
  const std::string whole = R"({"Table_repeat": -1, "total": 2, "rows": [{"Repeat": 1e2}]})";
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(this->mDownload.download(whole.substr(0, length)), -1) << length;
    this->mDownload.expectRefused();
  }
}

TYPED_TEST(DownloadFileTest, GoodFileTakesThePlaceOfABrokenOne) {
  TemporaryFile broken("{");
  this->mDownload.parse(broken.name());
  EXPECT_EQ(this->mDownload.download(fileWith("")), 0);
  this->mDownload.expectTaken();
}

// Members of the file only need to be present; the calibration needs only the total.

TEST(SequenceFileMembersTest, TableRepeatIsRequired) {
  SequenceFile file;
  EXPECT_EQ(file.download(R"({"total": 0})"), -1);
  file.expectRefused();
}

TEST(CalibFileMembersTest, TableRepeatIsNotRequired) {
  CalibFile file;
  EXPECT_EQ(file.download(R"({"total": 0})"), 0);
  file.expectTaken();
}

// Reading the file.

TEST(ParseJsonFileTest, MissingFileIsMinusOne) {
  Document document;
  EXPECT_EQ(parseJsonFile((testing::TempDir() + "no/such/file.json").c_str(), document), -1);
  EXPECT_TRUE(document.IsNull());
}

TEST(ParseJsonFileTest, ValidFileIsItsValue) {
  TemporaryFile file(R"( {"a": [1, 2.5, "t\u00e4"]} )");
  Document document;
  EXPECT_EQ(parseJsonFile(file.name(), document), 0);
  ASSERT_TRUE(document.IsObject());
  EXPECT_EQ(document["a"][0].GetInt(), 1);
  EXPECT_EQ(document["a"][1].GetDouble(), 2.5);
  EXPECT_STREQ(document["a"][2].GetString(), "t\xC3\xA4");
}

TEST(ParseJsonFileTest, FileThatIsNotOneValueLeavesNull) {
  for (const char* const content : {"", "{", "1 2", "[1,]", "nul", "1e400"}) {
    TemporaryFile file(content);
    Document document;
    EXPECT_EQ(parseJsonFile(file.name(), document), 0) << content;
    EXPECT_TRUE(document.IsNull()) << content;
  }
}

TEST(ParseJsonFileTest, FileIsClosed) {
  const int before = freeDescriptor();
  for (const char* const content : {"{}", "{"}) {
    TemporaryFile file(content);
    Document document;
    parseJsonFile(file.name(), document);
    EXPECT_EQ(freeDescriptor(), before) << content;
  }
}
