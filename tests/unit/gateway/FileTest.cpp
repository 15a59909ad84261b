// The files of downloads: what their schemas reject, and how the tool gets them.
#include <dirent.h>

#include <fstream>
#include <iterator>

#include "Bench.h"

namespace gateway {

namespace {

class DownloadedFile : public Bench {
 protected:
  DownloadedFile() { toolDoes("keep " + path("file") + "\nout " + cAccepted); }
};

std::string example(const std::string& aName) {
  std::ifstream file(std::string(GC_SCHEMAS) + "/examples/" + aName + ".json");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST_F(DownloadedFile, ReachesTheToolAsItIs) {
  for (const char* name : {"sequence-file", "sequence"}) {
    ASSERT_EQ(command("PUT", "/sequence", example(name)).status, 200) << name;
    EXPECT_EQ(contentOf("file"), example(name));
  }
  for (const char* name : {"calibration-file", "calibration"}) {
    ASSERT_EQ(command("PUT", "/calibration", example(name)).status, 200) << name;
    EXPECT_EQ(contentOf("file"), example(name));
  }
}

TEST_F(DownloadedFile, OfTheLargestSizeIsTaken) {
  std::string body = R"({"total": 0})";
  body.resize(65536, ' ');
  EXPECT_EQ(command("PUT", "/calibration", body).status, 200);
  EXPECT_EQ(contentOf("file"), body);
}

TEST_F(DownloadedFile, LeavesNoFile) {
  command("PUT", "/calibration", R"({"total": 0})");
  DIR* folder = ::opendir(path("").c_str());
  std::vector<std::string> names;
  while (const dirent* entry = ::readdir(folder)) {  // NOLINT(concurrency-mt-unsafe)
    names.emplace_back(entry->d_name);
  }
  ::closedir(folder);
  EXPECT_EQ(names.size(), 6U);  // ., .., lock, log, data, the fake tool's copy
}

struct Fault {
  const char* body;
  const char* place;
};

constexpr Fault cSequenceFaults[] = {
    {"[]", "The document does not match its schema: type"},
    {"{}", "The document does not match its schema: required Table_repeat"},
    {R"({"Table_repeat": 1})", "The document does not match its schema: required total"},
    {R"({"total": 1})", "The document does not match its schema: required Table_repeat"},
    {R"({"Table_repeat": "1", "total": 0})", "/Table_repeat does not match its schema: type"},
    {R"({"Table_repeat": 1.5, "total": 0})", "/Table_repeat does not match its schema: type"},
    {R"({"Table_repeat": 2147483648, "total": 0})",
     "/Table_repeat does not match its schema: maximum"},
    {R"({"Table_repeat": -2147483649, "total": 0})",
     "/Table_repeat does not match its schema: minimum"},
    {R"({"Table_repeat": 1, "total": null})", "/total does not match its schema: type"},
    {R"({"Table_repeat": 1, "total": 0, "Continuous": 1})",
     "/Continuous does not match its schema: t"},
    {R"({"Table_repeat": 1, "total": 0, "rows": {}})", "/rows does not match its schema: type"},
    {R"({"Table_repeat": 1, "total": 1, "rows": [5]})", "/rows/0 does not match its schema: type"},
    {R"({"Table_repeat": 1, "total": 1, "rows": [{}, {"Type": "analysis"}]})",
     "/rows/1/Type does not match its schema: enum"},
    {R"({"Table_repeat": 1, "total": 1, "rows": [{"Type": 1}]})",
     "/rows/0/Type does not match its schema: type"},
    {R"({"Table_repeat": 1, "total": 1, "rows": [{"Repeat": "1"}]})",
     "/rows/0/Repeat does not match its schema: type"},
    {R"({"Table_repeat": 1, "total": 1, "rows": [{"Repeat": 1.0}]})",
     "/rows/0/Repeat does not match its schema: type"},
    {R"({"Table_repeat": 1, "total": 1, "rows": [{"Stream": 2147483648}]})",
     "/rows/0/Stream does not match its schema: maximum"},
    {R"({"Table_repeat": 1, "total": 1, "rows": [{"Slot": true}]})",
     "/rows/0/Slot does not match its schema: type"},
    {R"({"Table_repeat": 1, "total": 1, "rows": [{"Flush_time": "x"}]})",
     "/rows/0/Flush_time does not match its schema: anyOf"},
    {R"({"Table_repeat": 1, "total": 1, "rows": [{"Flush_time": null}]})",
     "/rows/0/Flush_time does not match its schema: anyOf"},
};

constexpr Fault cCalibrationFaults[] = {
    {"null", "The document does not match its schema: type"},
    {"{}", "The document does not match its schema: required total"},
    {R"({"total": "1"})", "/total does not match its schema: type"},
    {R"({"total": 2147483648})", "/total does not match its schema: maximum"},
    {R"({"total": 1, "rows": null})", "/rows does not match its schema: type"},
    {R"({"total": 1, "rows": [[]]})", "/rows/0 does not match its schema: type"},
    {R"({"total": 1, "rows": [{"ID": 1, "Level_amt": 1}]})",
     "/rows/0 does not match its schema: requi"},
    {R"({"total": 1, "rows": [{"Channel": 1, "Level_amt": 1}]})",
     "/rows/0 does not match its schema: required ID"},
    {R"({"total": 1, "rows": [{"Channel": 1, "ID": 1}]})",
     "/rows/0 does not match its schema: required Level_amt"},
    {R"({"total": 1, "rows": [{"Channel": "1", "ID": 1, "Level_amt": 1}]})",
     "/rows/0/Channel does not match its schema: type"},
    {R"({"total": 1, "rows": [{"Channel": 1, "ID": 1.5, "Level_amt": 1}]})",
     "/rows/0/ID does not match its schema: type"},
    {R"({"total": 1, "rows": [{"Channel": 1, "ID": 1, "Level_amt": "1"}]})",
     "/rows/0/Level_amt does not match its schema: anyOf"},
};

TEST_F(DownloadedFile, OfAnotherFormIsRefused) {
  const auto refuses = [this](const char* aPath, const Fault& aFault) {
    const Received answer = command("PUT", aPath, aFault.body);
    EXPECT_EQ(answer.status, 422) << aFault.body;
    EXPECT_EQ(answer.detail().rfind(aFault.place, 0), 0U) << aFault.body << answer.body;
  };
  for (const Fault& fault : cSequenceFaults) {
    refuses("/sequence", fault);
  }
  for (const Fault& fault : cCalibrationFaults) {
    refuses("/calibration", fault);
  }
  EXPECT_EQ(command("PUT", "/sequence", "{\"total\": 1").status, 400);
  EXPECT_EQ(contentOf("file"), "");
}

TEST_F(DownloadedFile, MayHoldWhatIsIgnoredAndTheSignOfNoValue) {
  for (
      const char* body :
      {R"({"Table_repeat": 0, "total": 0, "x": [{}], "rows": []})",
       R"({"Table_repeat": -2147483648, "total": 2147483647})",
       R"({"Table_repeat": 1, "total": 1, "rows": [{"x": 1, "Type": "None", "Flush_time": "-"}]})"}) {
    EXPECT_EQ(command("PUT", "/sequence", body).status, 200) << body;
  }
  EXPECT_EQ(command("PUT", "/calibration",
                    R"({"total": 1, "rows": [{"Channel": 1, "ID": 1, "Level_amt": "-"}]})")
                .status,
            200);
}

TEST_F(DownloadedFile, NeedsItsSchema) {
  input.variables["GC_WEB_SCHEMAS"] = path("");
  const Received missing = command("PUT", "/sequence", R"({"Table_repeat": 0, "total": 0})");
  EXPECT_EQ(missing.status, 500);
  EXPECT_NE(missing.detail().find("GC_WEB_SCHEMAS"), std::string::npos);
  write("sequence-file.schema.json", "{");
  EXPECT_EQ(command("PUT", "/sequence", R"({"Table_repeat": 0, "total": 0})").status, 500);
  EXPECT_EQ(contentOf("file"), "");
}

}  // namespace

}  // namespace gateway
