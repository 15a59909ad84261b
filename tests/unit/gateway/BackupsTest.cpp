// Tables that downloads replace are backed up, listed and returned.
#include "Backups.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "Bench.h"

namespace gateway {

namespace {

constexpr char cSequence[] =
    R"({"Table_repeat":1,"Continuous":false,"total":1,"rows":[{"Type":"Analysis","Flush_time":0.1}]})";

class KeptTable : public Bench {
 protected:
  Received put(const char* aPath, const std::string& aPresent,
               const std::string& aFile = R"({"Table_repeat": 1, "total": 0})") {
    toolDoes("note " + path("runs") + "\nout " + cAccepted, aPresent);
    return command("PUT", aPath, aFile);
  }
  rapidjson::Document list(const char* aTable = "sequence") {
    Received answer = ask(std::string("/api/backups/") + aTable);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.headers["Link"], "</schemas/backups.schema.json>; rel=\"describedby\"");
    return answer.document();
  }
  std::string table(int aNumber) {
    return ask("/api/backups/sequence/" + std::to_string(aNumber)).body;
  }
};

TEST_F(KeptTable, IsWhatWasThereBefore) {
  ASSERT_EQ(put("/sequence", cSequence).status, 200);
  const rapidjson::Document document = list();
  ASSERT_EQ(document["backups"].Size(), 1U);
  const auto& backup = document["backups"][0];
  EXPECT_EQ(backup["number"], 1);
  EXPECT_STREQ(backup["user"].GetString(), "anna");
  EXPECT_STREQ(backup["address"].GetString(), "192.0.2.7");
  EXPECT_EQ(backup["command"], logged("begun").at(0)["id"]);
  EXPECT_EQ(backup["time"].GetStringLength(), 20U);
  EXPECT_EQ(backup.MemberCount(), 5U);
  Received answer = ask("/api/backups/sequence/1");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.body, cSequence);
  EXPECT_EQ(answer.headers["Link"], "</schemas/sequence-file.schema.json>; rel=\"describedby\"");
  EXPECT_EQ(ask("/api/backups/sequence/1", "HEAD").body, "");
}

TEST_F(KeptTable, OfACalibrationHasItsAmounts) {
  const std::string present =
      R"({"total": 2, "rows": [{"Channel": 1, "ID": 1, "PkName": "N\u00e9on", "Ret_time": 0.1,)"
      R"("Level_amt": 0.300000000000000040, "Linear": 2.5}, {"Level_amt": "-", "ID": 2,)"
      R"("Channel": 4, "x": {"ID": 3, "y": [{}]}, "z": null}]})";
  ASSERT_EQ(put("/calibration", present, R"({"total": 0})").status, 200);
  EXPECT_EQ(ask("/api/backups/calibration/1").body,
            R"({"total":2,"rows":[{"Channel":1,"ID":1,"Level_amt":0.300000000000000040},)"
            R"({"Level_amt":"-","ID":2,"Channel":4}]})");
  EXPECT_EQ(list("calibration")["backups"].Size(), 1U);
  EXPECT_TRUE(list("sequence")["backups"].Empty());
}

TEST_F(KeptTable, OfAllPeaksCanBeSentBack) {
  std::string rows;
  for (int channel = 1; channel <= 4; ++channel) {
    for (int peak = 1; peak <= 100; ++peak) {
      rows += (rows.empty() ? "" : ",") + std::string(R"({"Channel": )") + std::to_string(channel) +
              R"(, "ID": )" + std::to_string(peak) + R"(, "PkName": ")" + std::string(80, 'n') +
              R"(", "Ret_time": 123.456789,)" +
              R"("Level_amt": 0.12345678901234567, "Linear": 1.2345678901234567e-5})";
    }
  }
  ASSERT_EQ(
      put("/calibration", R"({"total": 400, "rows": [)" + rows + "]}", R"({"total": 0})").status,
      200);
  const std::string kept = ask("/api/backups/calibration/1").body;
  EXPECT_LE(kept.size(), 65536U);
  EXPECT_EQ(put("/calibration", "{}", kept).status, 200);
}

TEST_F(KeptTable, IsOneOfTheLastTwenty) {
  for (int i = 1; i <= 23; ++i) {
    ASSERT_EQ(put("/sequence", R"({"total":)" + std::to_string(i) + "}").status, 200);
  }
  const rapidjson::Document document = list();
  ASSERT_EQ(document["backups"].Size(), 20U);
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(document["backups"][static_cast<unsigned>(i)]["number"], 23 - i);
    EXPECT_EQ(table(23 - i), R"({"total":)" + std::to_string(23 - i) + "}");
  }
  EXPECT_EQ(ask("/api/backups/sequence/3").status, 404);
  EXPECT_EQ(filesIn("data/backups/sequence").size(), 20U);
}

/// Repeated attempts must not push out the older backups.
TEST_F(KeptTable, IsKeptOnce) {
  for (const char* present : {R"({"total":1})", R"({"total":2})", R"({"total": 2})",
                              R"({"total":2})", R"({"total":1})"}) {
    ASSERT_EQ(put("/sequence", present).status, 200);
  }
  EXPECT_EQ(list()["backups"].Size(), 3U);
  EXPECT_EQ(table(3) + table(2) + table(1), R"({"total":1}{"total":2}{"total":1})");
}

TEST_F(KeptTable, IsKeptWhenTheDownloadIsRefused) {
  toolDoes("out {\"ErrorCode\": 206, \"Msg\": \"Refused\"}\nerr Execute failed 206.", cSequence);
  EXPECT_EQ(command("PUT", "/sequence", R"({"Table_repeat": 1, "total": 0})").status, 409);
  EXPECT_EQ(table(1), cSequence);
}

TEST_F(KeptTable, ThatCannotBeReadIsNotReplaced) {
  const struct {
    const char* present;
    int status;
  } cAnswers[] = {{"Hello", 502},
                  {" ", 502},
                  {R"({"ErrorCode": 207, "Msg": "x"})", 502},
                  {R"({"ErrorCode": 0, "Msg": "x"})", 502},
                  {R"({"ErrorCode": 10053, "Msg": "Unable to connect to GC!"})", 503}};
  for (const auto& row : cAnswers) {
    EXPECT_EQ(put("/sequence", row.present).status, row.status) << row.present;
  }
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_EQ(contentOf("log"), "");
  EXPECT_TRUE(list()["backups"].Empty());
}

TEST_F(KeptTable, ThatCannotBeKeptIsNotReplaced) {
  write("data/backups", "no folder");
  const Received answer = put("/sequence", cSequence);
  EXPECT_EQ(answer.status, 500);
  EXPECT_NE(answer.detail().find("GC_WEB_DATA"), std::string::npos);
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_EQ(contentOf("log"), "");
}

TEST_F(KeptTable, ThatIsTooLateIsNotReplaced) {
  limits.report = std::chrono::milliseconds(20);
  input.variables["GC_WEB_ADDRESS"] = "await " + fifo("never");
  EXPECT_EQ(command("PUT", "/sequence", R"({"Table_repeat": 1, "total": 0})").status, 504);
  EXPECT_EQ(contentOf("log"), "");
}

TEST_F(KeptTable, IsWholeOrNotThere) {
  ASSERT_EQ(put("/sequence", cSequence).status, 200);
  write("data/backups/sequence/.unfinished", "{\"number\":2");
  write("data/backups/sequence/0000000002", "{\"number\":2");
  write("data/backups/sequence/0000000003", "");
  write("data/backups/sequence/x", "{\"number\":5}\n{}");
  EXPECT_EQ(list()["backups"].Size(), 1U);
  EXPECT_EQ(ask("/api/backups/sequence/2").status, 404);
  ASSERT_EQ(put("/sequence", R"({"total":4})").status, 200);
  EXPECT_EQ(table(4), R"({"total":4})");
}

TEST_F(KeptTable, LeavesNothingThatIsNotWhole) {
  rlimit before = {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small = {100, before.rlim_max};
  const auto action = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_FALSE(keepBackup(path("data"), eOperation::eSequence, {}, std::string(200, ' ')));
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, action);
  const std::string folder = path("data/backups/sequence");
  EXPECT_EQ(::access(folder.c_str(), F_OK), 0);
  EXPECT_NE(::access((folder + "/.unfinished").c_str(), F_OK), 0);
  EXPECT_NE(::access((folder + "/0000000001").c_str(), F_OK), 0);
}

TEST_F(KeptTable, IsNotFollowedElsewhere) {
  ASSERT_EQ(put("/sequence", cSequence).status, 200);
  write("elsewhere", "{\"number\":2}\n{\"total\":4}");
  const std::string other = path("elsewhere");
  const std::string unfinished = path("data/backups/sequence/.unfinished");
  ASSERT_EQ(::symlink(other.c_str(), path("data/backups/sequence/0000000002").c_str()), 0);
  EXPECT_EQ(list()["backups"].Size(), 1U);
  EXPECT_EQ(ask("/api/backups/sequence/2").status, 404);
  ASSERT_EQ(::symlink(other.c_str(), unfinished.c_str()), 0);
  EXPECT_EQ(put("/sequence", R"({"total":5})").status, 500);
  EXPECT_EQ(contentOf("elsewhere"), "{\"number\":2}\n{\"total\":4}");
}

TEST_F(KeptTable, IsForItsOwnerOnly) {
  const mode_t before = ::umask(0);
  ASSERT_EQ(put("/sequence", cSequence).status, 200);
  ::umask(before);
  const struct {
    const char* name;
    unsigned mode;
  } cModes[] = {{"data/backups", 0700},
                {"data/backups/sequence", 0700},
                {"data/backups/sequence/0000000001", 0600}};
  for (const auto& row : cModes) {
    struct stat file = {};
    ASSERT_EQ(::stat(path(row.name).c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 0777U, row.mode) << row.name;
  }
}

TEST_F(KeptTable, IsAskedForByItsNumber) {
  ASSERT_EQ(put("/sequence", cSequence).status, 200);
  for (const char* name : {"/", "/0", "/2", "/-1", "/+1", "/1x", "/ 1", "/0x1", "/1/",
                           "/../sequence/1", "/99999999999999999999999", "x"}) {
    EXPECT_EQ(ask(std::string("/api/backups/sequence") + name).status, 404) << name;
  }
  for (const char* path :
       {"/api/backups", "/api/backups/", "/api/backups/status", "/api/unfinished/"}) {
    EXPECT_EQ(ask(path).status, 404) << path;
  }
  EXPECT_EQ(ask("/api/backups/sequence", "POST").status, 405);
  EXPECT_EQ(ask("/api/unfinished", "DELETE").status, 405);
  input.variables["QUERY_STRING"] = "x";
  EXPECT_EQ(ask("/api/backups/sequence").status, 400);
}

}  // namespace

}  // namespace gateway
