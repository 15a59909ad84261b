// The whole server on a loopback address of its own: who is let in, and how it ends.
#include "Server.h"

#include <Status.h>
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <random>
#include <vector>

#include "ControlClient.h"
#include "TemporaryFolder.h"

namespace simulator {

namespace {

/// A socket that is closed when it goes, and that waits for answers for a minute at most.
class Client {
 public:
  explicit Client(const std::string& aAddress) {
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(wire::cPort);
    EXPECT_EQ(::inet_pton(AF_INET, aAddress.c_str(), &name.sin_addr), 1);
    const timeval patience = {60, 0};
    ::setsockopt(mSocket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    EXPECT_EQ(::connect(mSocket, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0)
        << std::strerror(errno);
  }
  ~Client() { ::close(mSocket); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  /// The status that a Connect is answered with.
  std::uint32_t connect() const {
    wire::ConnectRequest request;
    request.mode = 1;
    const wire::Frame frame = wire::encode(wire::eType::eConnect, 1, request);
    EXPECT_EQ(::send(mSocket, frame.data(), frame.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(frame.size()));
    char octets[wire::cHeaderSize + 4] = {};
    EXPECT_EQ(::recv(mSocket, octets, sizeof octets, MSG_WAITALL),
              static_cast<ssize_t>(sizeof octets));
    wire::StatusReply answer;
    EXPECT_TRUE(wire::decode(octets + wire::cHeaderSize, 4, answer));
    return answer.status;
  }

  bool isOver() const {
    char octet = 0;
    return ::recv(mSocket, &octet, 1, 0) == 0;
  }

  std::string ownName() const {
    sockaddr_in name{};
    socklen_t length = sizeof name;
    EXPECT_EQ(::getsockname(mSocket, reinterpret_cast<sockaddr*>(&name), &length), 0);
    char text[INET_ADDRSTRLEN] = "";
    ::inet_ntop(AF_INET, &name.sin_addr, text, sizeof text);
    return std::string(text) + ':' + std::to_string(ntohs(name.sin_port));
  }

 private:
  int mSocket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

std::string randomAddress() {
  static std::random_device random;
  const auto octet = [] { return std::to_string(1 + random() % 254); };
  return "127." + octet() + '.' + octet() + '.' + octet();
}

/// A server that another process runs until it is told to stop.
class ServerTest : public ::testing::Test {
 public:
  ~ServerTest() override {
    if (mProcess > 0) {
      ::kill(mProcess, SIGKILL);
      ::waitpid(mProcess, nullptr, 0);
    }
  }

 protected:
  ServerTest() {
    int ready[2] = {-1, -1};
    EXPECT_EQ(::pipe(ready), 0);
    mProcess = ::fork();
    if (mProcess == 0) {
      ::_exit(serve(ready[1]));
    }
    ::close(ready[1]);
    char text[INET_ADDRSTRLEN] = "";
    EXPECT_EQ(::read(ready[0], text, sizeof text), static_cast<ssize_t>(sizeof text));
    ::close(ready[0]);
    mAddress = text;
  }

  /// How the process ended that was sent this signal.
  int endedBy(int aSignal) {
    int status = -1;
    ::kill(mProcess, aSignal);
    EXPECT_EQ(::waitpid(mProcess, &status, 0), mProcess);
    mProcess = -1;
    return status;
  }

  std::string ask(const std::string& aRequest) const {
    std::string answer;
    std::string error;
    EXPECT_TRUE(askController(mControl, aRequest, answer, error)) << error;
    return answer;
  }

  TemporaryFolder mFolder;
  std::string mControl = mFolder.path("control.sock");
  std::string mAddress;
  pid_t mProcess = -1;

 private:
  int serve(int aReady) const {
    Simulation simulation;
    simulation.clock.pause();
    std::string error;
    if (!simulation.load("everyday", error)) {
      return 2;
    }
    for (int attempt = 0; attempt < 100; ++attempt) {
      const std::string address = randomAddress();
      Server server(simulation);
      if (server.open(address, mControl, error)) {
        char text[INET_ADDRSTRLEN] = "";
        address.copy(text, sizeof text - 1);
        return ::write(aReady, text, sizeof text) == sizeof text && server.run() ? 0 : 3;
      }
    }
    return 4;
  }
};

TEST_F(ServerTest, ServesClientsUntilItIsTold) {
  const Client client(mAddress);
  EXPECT_EQ(client.connect(), eSuccess);
  EXPECT_EQ(endedBy(SIGTERM), 0);
  EXPECT_TRUE(client.isOver());
  EXPECT_NE(::access(mControl.c_str(), F_OK), 0) << "the socket's file is left";
}

TEST_F(ServerTest, IsInterrupted) {
  EXPECT_EQ(endedBy(SIGINT), 0);
}

TEST_F(ServerTest, TellsWhoAsks) {
  const Client first(mAddress);
  const Client second(mAddress);
  EXPECT_EQ(first.connect(), eSuccess);
  EXPECT_EQ(second.connect(), eSuccess);
  const std::string journal = ask(R"({"verb": "journal"})");
  EXPECT_NE(journal.find("\"peer\":\"" + first.ownName() + "\",\"connection\":1,"),
            std::string::npos)
      << journal;
  EXPECT_NE(journal.find("\"peer\":\"" + second.ownName() + "\",\"connection\":2,"),
            std::string::npos)
      << journal;
}

TEST_F(ServerTest, ForgetsWhoHasLeft) {
  {
    const Client client(mAddress);
    EXPECT_EQ(client.connect(), eSuccess);
    EXPECT_NE(ask(R"({"verb": "status"})").find(R"("connections":1)"), std::string::npos);
  }
  // Two processes: the server may hear of the question before it hears of the end.
  while (ask(R"({"verb": "status"})").find(R"("connections":0)") == std::string::npos) {
  }
}

TEST_F(ServerTest, LetsInAFaultToldBefore) {
  ask(R"({"verb": "fault", "fault": {"kind": "refuse"}})");
  const Client refused(mAddress);
  EXPECT_TRUE(refused.isOver());
  const Client client(mAddress);
  EXPECT_EQ(client.connect(), eSuccess);
}

TEST_F(ServerTest, DropsTheOldestOfTooManyThatSayNothing) {
  std::vector<std::unique_ptr<Client>> silent(256);
  const Client connected(mAddress);
  EXPECT_EQ(connected.connect(), eSuccess);
  for (auto& client : silent) {
    client = std::make_unique<Client>(mAddress);
  }
  // Has been accepted after all of them, and drops the first.
  const Client last(mAddress);
  EXPECT_TRUE(silent[0]->isOver());
  EXPECT_EQ(silent[1]->connect(), eSuccess);
  EXPECT_EQ(silent[255]->connect(), eSuccess);
  EXPECT_EQ(last.connect(), eSuccess);
}

TEST_F(ServerTest, HasRoomForSoManyRemoteControls) {
  std::vector<int> controls;
  const auto open = [&] {
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    mControl.copy(name.sun_path, sizeof name.sun_path - 1);
    const int control = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    EXPECT_EQ(::connect(control, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0)
        << std::strerror(errno);
    controls.push_back(control);
    return control;
  };
  const auto isAnswered = [](int aControl) {
    const std::string line = "{}\n";
    char octet = 0;
    return ::send(aControl, line.data(), line.size(), MSG_NOSIGNAL) > 0 &&
           ::recv(aControl, &octet, 1, 0) == 1;
  };
  for (int n = 0; n < 64; ++n) {
    EXPECT_TRUE(isAnswered(open())) << n;
  }
  EXPECT_FALSE(isAnswered(open()));
  ::close(controls.front());
  controls.erase(controls.begin());
  while (!isAnswered(open())) {  // until the server has heard of the end
  }
  for (const int control : controls) {
    ::close(control);
  }
}

TEST_F(ServerTest, SharesNoAddress) {
  Simulation simulation;
  std::string error;
  {
    Server second(simulation);
    EXPECT_FALSE(second.open(mAddress, mFolder.path("other.sock"), error));
    EXPECT_EQ(error, mAddress + ":20047: Address already in use");
  }
  std::string address;
  for (int attempt = 0; attempt < 100; ++attempt) {
    Server second(simulation);
    address = randomAddress();
    EXPECT_FALSE(second.open(address, mControl, error));
    if (error == mControl + ": Address already in use") {
      return;
    }
  }
  FAIL() << error;
}

TEST(Server, NeedsAnAddressOfThisMachine) {
  Simulation simulation;
  Server server(simulation);
  const TemporaryFolder folder;
  std::string error;
  EXPECT_FALSE(server.open("192.0.2.1", folder.path("control.sock"), error));
  EXPECT_EQ(error, "192.0.2.1:20047: Cannot assign requested address");
}

TEST(Server, NeedsRoomForItsHandles) {
  const pid_t process = ::fork();
  if (process == 0) {
    ::close(STDERR_FILENO);  // the reactor complains, too
    const rlimit small = {100, 100};
    ::setrlimit(RLIMIT_NOFILE, &small);
    Simulation simulation;
    Server server(simulation);
    std::string error;
    const bool opened = server.open(randomAddress(), "/nonexistent", error);
    ::_exit(!opened && error == "1024 open files expected to be allowed" ? 0 : 1);
  }
  int status = -1;
  EXPECT_EQ(::waitpid(process, &status, 0), process);
  EXPECT_EQ(status, 0);
}

TEST(Watch, NeedsAHandle) {
  ACE_Reactor reactor;
  Watch watch(reactor, [](ACE_HANDLE) {});
  EXPECT_FALSE(watch.open(ACE_INVALID_HANDLE));
}

TEST(Watch, CallsWheneverThereIsSomethingToRead) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe(ends), 0);
  ACE_Reactor reactor;
  std::vector<ACE_HANDLE> called;
  {
    Watch watch(reactor, [&](ACE_HANDLE aHandle) { called.push_back(aHandle); });
    ASSERT_TRUE(watch.open(ends[0]));
    EXPECT_EQ(watch.get_handle(), ends[0]);
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    for (int n = 0; n < 2; ++n) {
      ACE_Time_Value none;
      EXPECT_EQ(reactor.handle_events(none), 1);
    }
  }
  EXPECT_EQ(called, (std::vector<ACE_HANDLE>{ends[0], ends[0]}));
  ACE_Time_Value none;
  EXPECT_EQ(reactor.handle_events(none), 0);
  EXPECT_EQ(::close(ends[0]), -1) << "the handle is left open";
  ::close(ends[1]);
}

}  // namespace

}  // namespace simulator
