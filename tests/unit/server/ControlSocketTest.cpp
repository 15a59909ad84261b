// The file of the control socket: who may open it, and whom it replaces.
#include "ControlSocket.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "ControlClient.h"
#include "TemporaryFolder.h"

namespace simulator {

namespace {

bool exists(const std::string& aPath) {
  struct stat status = {};
  return ::lstat(aPath.c_str(), &status) == 0;
}

TEST(ControlSocket, OnlyItsOwnerMayOpenIt) {
  const TemporaryFolder folder;
  const std::string path = folder.path("socket");
  const mode_t mask = ::umask(0);
  std::string error;
  {
    ControlSocket socket;
    const int handle = socket.listen(path, error);
    EXPECT_GE(handle, 0) << error;
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    ::close(handle);
  }
  EXPECT_EQ(::umask(mask), 0U);
  EXPECT_FALSE(exists(path));
}

TEST(ControlSocket, ReplacesAnAbandonedFile) {
  const TemporaryFolder folder;
  const std::string path = folder.path("socket");
  std::string error;
  ControlSocket dead;
  ::close(dead.listen(path, error));
  ASSERT_TRUE(exists(path));
  ControlSocket socket;
  const int handle = socket.listen(path, error);
  EXPECT_GE(handle, 0) << error;
  ::close(handle);
}

TEST(ControlSocket, LeavesTheFileOfASuccessor) {
  const TemporaryFolder folder;
  const std::string path = folder.path("socket");
  std::string error;
  auto first = std::make_unique<ControlSocket>();
  const int firstHandle = first->listen(path, error);
  ASSERT_EQ(::unlink(path.c_str()), 0);
  ControlSocket second;
  const int secondHandle = second.listen(path, error);
  ASSERT_GE(secondHandle, 0) << error;
  first.reset();
  EXPECT_TRUE(exists(path));
  ::close(firstHandle);
  ::close(secondHandle);
}

TEST(ControlSocket, RefusesOneInUse) {
  const TemporaryFolder folder;
  const std::string path = folder.path("socket");
  std::string error;
  ControlSocket live;
  const int handle = live.listen(path, error);
  ASSERT_GE(handle, 0) << error;
  {
    ControlSocket second;
    EXPECT_EQ(second.listen(path, error), -1);
    EXPECT_EQ(error, path + ": Address already in use");
  }
  EXPECT_TRUE(exists(path));
  ::close(handle);
}

TEST(ControlSocket, RefusesToReplaceAFile) {
  const TemporaryFolder folder;
  const std::string path = folder.path("precious");
  std::ofstream(path) << "precious";
  std::string error;
  {
    ControlSocket socket;
    EXPECT_EQ(socket.listen(path, error), -1);
    EXPECT_EQ(error, path + ": Address already in use");
  }
  EXPECT_TRUE(exists(path));
}

TEST(ControlSocket, RefusesPaths) {
  ControlSocket socket;
  std::string error;
  EXPECT_EQ(socket.listen("", error), -1);
  EXPECT_EQ(error, ": a path of 1 to 107 characters expected");
  EXPECT_EQ(socket.listen("/tmp/" + std::string(103, 'x'), error), -1);
  EXPECT_EQ(socket.listen("/nonexistent/socket", error), -1);
  EXPECT_EQ(error, "/nonexistent/socket: No such file or directory");
}

TEST(AskController, NobodyListens) {
  const TemporaryFolder folder;
  const std::string path = folder.path("socket");
  std::string answer;
  std::string error;
  EXPECT_FALSE(askController(path, "{}", answer, error));
  EXPECT_EQ(error, path + ": No such file or directory");
}

}  // namespace

}  // namespace simulator
