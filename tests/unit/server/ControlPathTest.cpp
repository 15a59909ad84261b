// Where the control socket is, and who may reach it.
#include "ControlPath.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "TemporaryFolder.h"

namespace simulator {

namespace {

/// Sets an environment variable, or unsets it, as long as it lives.
class Environment {
 public:
  Environment(const char* aName, const char* aValue) : mName(aName) {
    const char* before = std::getenv(aName);
    mHad = before != nullptr;
    mBefore = mHad ? before : "";
    change(aValue);
  }
  ~Environment() { change(mHad ? mBefore.c_str() : nullptr); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  void change(const char* aValue) {
    if (aValue != nullptr) {
      ::setenv(mName, aValue, 1);
    } else {
      ::unsetenv(mName);
    }
  }

  const char* mName;
  bool mHad;
  std::string mBefore;
};

const std::string cOwnPath = "/tmp/gc-sim-" + std::to_string(::getuid()) + "/gc-sim-127.0.0.2.sock";

TEST(DefaultControlPath, InTheRuntimeFolder) {
  const Environment runtime("XDG_RUNTIME_DIR", "/run/user/1000");
  EXPECT_EQ(defaultControlPath("127.0.0.2"), "/run/user/1000/gc-sim-127.0.0.2.sock");
}

TEST(DefaultControlPath, InAFolderOfItsOwn) {
  for (const char* unusable : {static_cast<const char*>(nullptr), "", "relative"}) {
    const Environment runtime("XDG_RUNTIME_DIR", unusable);
    EXPECT_EQ(defaultControlPath("127.0.0.2"), cOwnPath);
  }
}

TEST(PrepareControlFolder, LeavesOtherFoldersAlone) {
  std::string error;
  EXPECT_TRUE(prepareControlFolder("/nonexistent/control.sock", error));
  EXPECT_NE(::access("/nonexistent", F_OK), 0);
  EXPECT_EQ(error, "");
}

TEST(PrepareControlFolder, MakesTheUsersOwn) {
  const std::string folder = cOwnPath.substr(0, cOwnPath.rfind('/'));
  const bool wasThere = ::access(folder.c_str(), F_OK) == 0;
  std::string error;
  EXPECT_TRUE(prepareControlFolder(cOwnPath, error)) << error;
  EXPECT_EQ(::access(folder.c_str(), F_OK), 0);
  if (!wasThere) {
    ::rmdir(folder.c_str());
  }
}

TEST(MakePrivateFolder, MakesItAndFindsIt) {
  const TemporaryFolder folder;
  const std::string path = folder.path("own");
  std::string error;
  const mode_t mask = ::umask(0);
  EXPECT_TRUE(makePrivateFolder(path, error)) << error;
  ::umask(mask);
  struct stat status = {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0700U);
  EXPECT_TRUE(makePrivateFolder(path, error)) << error;
}

TEST(MakePrivateFolder, RefusesWhatOthersMayEnter) {
  const TemporaryFolder folder;
  const std::string path = folder.path("own");
  const std::string refusal = path + ": not a folder that only its user can enter";
  std::string error;
  for (const mode_t mode : {0701U, 0710U, 0750U, 0755U, 0702U}) {
    ASSERT_EQ(::mkdir(path.c_str(), 0700), 0);
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    EXPECT_FALSE(makePrivateFolder(path, error)) << mode;
    EXPECT_EQ(error, refusal);
    ::rmdir(path.c_str());
  }
  std::ofstream(path) << "a file";
  EXPECT_FALSE(makePrivateFolder(path, error));
  EXPECT_EQ(error, refusal);
}

TEST(MakePrivateFolder, RefusesALinkToAFolder) {
  const TemporaryFolder folder;
  std::string error;
  ASSERT_TRUE(makePrivateFolder(folder.path("real"), error));
  ASSERT_EQ(::symlink(folder.path("real").c_str(), folder.path("link").c_str()), 0);
  EXPECT_FALSE(makePrivateFolder(folder.path("link"), error));
}

TEST(MakePrivateFolder, SaysWhyItCannot) {
  std::string error;
  EXPECT_FALSE(makePrivateFolder("/nonexistent/own", error));
  EXPECT_EQ(error, "/nonexistent/own: No such file or directory");
}

}  // namespace

}  // namespace simulator
