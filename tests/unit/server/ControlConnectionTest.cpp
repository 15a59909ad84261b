// Lines of remote controls: whole ones are answered, endless ones are not kept.
#include "ControlConnection.h"

#include <sys/un.h>

#include <algorithm>
#include <memory>
#include <thread>

#include "ControlClient.h"
#include "ControlSocket.h"
#include "ReactorBench.h"
#include "TemporaryFolder.h"

namespace simulator {

namespace {

constexpr char cNoVerb[] = R"({"ok":false,"error":"a verb expected"})"
                           "\n";
constexpr char cTooLong[] = R"({"ok":false,"error":"the line is too long"})"
                            "\n";

class ControlConnectionTest : public ReactorBench {
 protected:
  ControlConnectionTest() { EXPECT_TRUE(mConnection->open()); }

  /// Sends in pieces that a connection takes, and serves each.
  void send(const std::string& aOctets) {
    for (std::size_t start = 0; start < aOctets.size(); start += 60000) {
      mPair.send(aOctets.substr(start, 60000));
      serve();
    }
  }

  Simulation mSimulation;
  SocketPair mPair;
  std::unique_ptr<ControlConnection> mConnection = std::make_unique<ControlConnection>(
      mReactor, mPair.ends[0], [this] { mConnection.reset(); }, mSimulation);
};

TEST_F(ControlConnectionTest, AnswersLineByLine) {
  send("{}\n");
  EXPECT_EQ(mPair.received(), cNoVerb);
  send("{}\n[]\n{");
  EXPECT_EQ(mPair.received(), std::string(cNoVerb) + cNoVerb);
  send("}");
  EXPECT_EQ(mPair.received(), "");
  send("\n");
  EXPECT_EQ(mPair.received(), cNoVerb);
}

TEST_F(ControlConnectionTest, TakesLinesOfSixtyFourKilobytes) {
  send("{}" + std::string(65534, ' ') + "\n");
  EXPECT_EQ(mPair.received(), cNoVerb);
  send("{}" + std::string(65534, ' '));
  EXPECT_EQ(mPair.received(), "");
  send("\n{}\n");
  EXPECT_EQ(mPair.received(), std::string(cNoVerb) + cNoVerb);
}

TEST_F(ControlConnectionTest, TakesNoLongerLine) {
  send("{}" + std::string(65535, ' ') + "\n");
  EXPECT_EQ(mPair.received(), cTooLong);
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ControlConnectionTest, TakesNoLongerLineWithoutEnd) {
  send("{}\n" + std::string(65537, ' '));
  EXPECT_EQ(mPair.received(), std::string(cNoVerb) + cTooLong);
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(ControlConnectionTest, KeepsTwoJournalsForWhoDoesNotRead) {
  std::string line = "\"" + std::string(999'998, 'x') + "\"";
  for (int n = 0; n < 8; ++n) {
    mSimulation.journal.write(line);
  }
  const std::string ask = R"({"verb": "journal"})"
                          "\n";
  send(ask);
  send(ask);
  EXPECT_TRUE(mConnection);
  send(ask);
  EXPECT_FALSE(mConnection);
}

/// Somebody who answers one request.
class Answerer {
 public:
  Answerer(const std::string& aPath, std::string aAnswer) {
    std::string error;
    mListener = mSocket.listen(aPath, error);
    EXPECT_GE(mListener, 0) << error;
    mThread = std::thread([this, answer = std::move(aAnswer)] {
      int peer = -1;
      while ((peer = ::accept(mListener, nullptr, nullptr)) < 0) {
      }
      char octet = 0;
      while (::recv(peer, &octet, 1, 0) == 1 && octet != '\n') {
        mRequest += octet;
      }
      for (std::size_t start = 0; start < answer.size(); start += cPiece) {
        ::send(peer, answer.data() + start, std::min(cPiece, answer.size() - start), MSG_NOSIGNAL);
      }
      ::close(peer);
    });
  }
  ~Answerer() {
    join();
    ::close(mListener);
  }
  Answerer(const Answerer&) = delete;
  Answerer& operator=(const Answerer&) = delete;

  /// What was asked.
  const std::string& request() {
    join();
    return mRequest;
  }

 private:
  static constexpr std::size_t cPiece = 1000;

  void join() {
    if (mThread.joinable()) {
      mThread.join();
    }
  }

  ControlSocket mSocket;
  int mListener = -1;
  std::string mRequest;
  std::thread mThread;
};

TEST(AskController, TakesTheLineThatAnswers) {
  const TemporaryFolder folder;
  const std::string path = folder.path("socket");
  Answerer answerer(path, "{\"ok\":true}\n");
  std::string answer;
  std::string error;
  EXPECT_TRUE(askController(path, "{\"verb\":\"x\"}", answer, error)) << error;
  EXPECT_EQ(answer, "{\"ok\":true}");
  EXPECT_EQ(answerer.request(), "{\"verb\":\"x\"}");
}

TEST(AskController, TakesALongLine) {
  const TemporaryFolder folder;
  const std::string path = folder.path("socket");
  Answerer answerer(path, std::string(200'000, 'x') + "\n");
  std::string answer;
  std::string error;
  EXPECT_TRUE(askController(path, "{}", answer, error)) << error;
  EXPECT_EQ(answer, std::string(200'000, 'x'));
}

TEST(AskController, TakesNoHalfLine) {
  const TemporaryFolder folder;
  const std::string path = folder.path("socket");
  for (const char* half : {"{\"ok\":", ""}) {
    Answerer answerer(path, half);
    std::string answer;
    std::string error;
    EXPECT_FALSE(askController(path, "{}", answer, error));
    EXPECT_EQ(error, path + ": Connection reset by peer");
  }
}

}  // namespace

}  // namespace simulator
