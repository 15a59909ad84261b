// One socket in the reactor: what comes, what goes, what waits, and how it ends.
#include "Stream.h"

#include <fcntl.h>

#include <memory>
#include <vector>

#include "ReactorBench.h"

namespace simulator {

namespace {

constexpr std::size_t cMaxUnsent = 300000;

class TestedStream : public Stream {
 public:
  using Stream::finish;
  using Stream::isFinishing;
  using Stream::send;
  using Stream::startTimer;
  using Stream::stopTimer;
  using Stream::Stream;

  std::vector<std::string> pieces;
  bool goesOn = true;
  bool survivesTime = false;
  int timeouts = 0;

 protected:
  bool received(const char* aOctets, std::size_t aLength) override {
    pieces.emplace_back(aOctets, aLength);
    return goesOn;
  }
  bool timedOut() override {
    ++timeouts;
    return survivesTime;
  }
};

class StreamTest : public ReactorBench {
 protected:
  StreamTest() { EXPECT_TRUE(mStream->open()); }

  bool send(std::size_t aCount) {
    const std::string octets(aCount, 'x');
    return mStream->send(octets.data(), octets.size());
  }

  /// How much a fresh connection takes at once.
  static std::size_t capacity() {
    const SocketPair fresh;
    const std::string octets(4'000'000, 'x');
    const ssize_t taken = ::send(fresh.ends[0], octets.data(), octets.size(), MSG_NOSIGNAL);
    ::close(fresh.ends[0]);
    return static_cast<std::size_t>(taken);
  }

  SocketPair mPair;
  int mClosed = 0;
  std::unique_ptr<TestedStream> mStream =
      std::make_unique<TestedStream>(mReactor, mPair.ends[0], cMaxUnsent, [this] {
        ++mClosed;
        mStream.reset();
      });
};

TEST_F(StreamTest, PassesOnWhatComes) {
  EXPECT_EQ(serve(), 0);
  mPair.send("one");
  EXPECT_EQ(serve(), 1);
  mPair.send("two");
  EXPECT_EQ(serve(), 1);
  EXPECT_EQ(mStream->pieces, (std::vector<std::string>{"one", "two"}));
}

TEST_F(StreamTest, TakesSixtyFourKilobytesAtATime) {
  mPair.send(std::string(65536, 'a') + "b");
  serve();
  EXPECT_EQ(mStream->pieces, (std::vector<std::string>{std::string(65536, 'a'), "b"}));
}

TEST_F(StreamTest, MayBeAskedToReadWhenThereIsNothing) {
  EXPECT_EQ(mStream->handle_input(mPair.ends[0]), 0);
  EXPECT_TRUE(mStream->pieces.empty());
}

TEST_F(StreamTest, EndsWhenThePeerHangsUp) {
  mPair.hangUp();
  serve();
  EXPECT_EQ(mClosed, 1);
  EXPECT_EQ(::fcntl(mPair.ends[0], F_GETFD), -1) << "the socket is still open";
}

TEST_F(StreamTest, EndsWhenItIsToldSo) {
  mStream->goesOn = false;
  mPair.send("x");
  serve();
  EXPECT_EQ(mClosed, 1);
  EXPECT_TRUE(mPair.isOver());
}

TEST_F(StreamTest, CanBeDeletedAtAnyTime) {
  mStream->startTimer(1.0);
  EXPECT_TRUE(send(capacity() + 1));
  mStream.reset();
  mPair.received();
  EXPECT_TRUE(mPair.isOver());
  pass(2.0);
  EXPECT_EQ(mClosed, 0);
}

TEST_F(StreamTest, SendsAtOnceWhatItCan) {
  EXPECT_TRUE(send(0));
  EXPECT_TRUE(mStream->send("abc", 3));
  EXPECT_EQ(mPair.received(), "abc");
  EXPECT_EQ(serve(), 0);
}

TEST_F(StreamTest, SendsTheRestInItsOrderWhenItCan) {
  const std::size_t atOnce = capacity();
  EXPECT_TRUE(send(atOnce + 10));
  EXPECT_TRUE(mStream->send("abc", 3));
  EXPECT_TRUE(mStream->send("def", 3));
  EXPECT_EQ(serve(), 0);
  EXPECT_EQ(mPair.received(), std::string(atOnce, 'x'));
  EXPECT_GT(serve(), 0);
  EXPECT_EQ(mPair.received(), std::string(10, 'x') + "abcdef");
  EXPECT_EQ(serve(), 0) << "it goes on waiting for nothing";
  EXPECT_TRUE(mStream->send("g", 1));
  EXPECT_EQ(mPair.received(), "g");
  mPair.send("still there");
  serve();
  EXPECT_EQ(mStream->pieces.size(), 1U);
}

TEST_F(StreamTest, SendsInAsManyPiecesAsItTakes) {
  const std::size_t octets = capacity() + cMaxUnsent;
  EXPECT_TRUE(send(octets));
  std::size_t came = 0;
  for (int round = 0; round < 100; ++round) {
    came += mPair.received().size();
    serve();
  }
  EXPECT_EQ(came, octets);
  EXPECT_EQ(mClosed, 0);
}

TEST_F(StreamTest, KeepsSoMuchForThePeer) {
  EXPECT_TRUE(send(capacity() + cMaxUnsent));
  EXPECT_FALSE(send(1));
}

TEST_F(StreamTest, KeepsNoMoreForThePeer) {
  EXPECT_FALSE(send(capacity() + cMaxUnsent + 1));
}

TEST_F(StreamTest, KeepsNoMoreInSeveralPieces) {
  EXPECT_TRUE(send(capacity() + 1));
  EXPECT_TRUE(send(cMaxUnsent - 2));
  EXPECT_TRUE(send(1));
  EXPECT_FALSE(send(1));
}

TEST_F(StreamTest, CannotSendToNobody) {
  mPair.hangUp();
  EXPECT_FALSE(mStream->send("x", 1));
}

TEST_F(StreamTest, EndsWhenTheRestCannotBeSent) {
  EXPECT_TRUE(send(capacity() + 1));
  mPair.hangUp();
  EXPECT_EQ(mStream->handle_output(mPair.ends[0]), -1);
}

TEST_F(StreamTest, IsFinishedAtOnceWhenAllIsSent) {
  EXPECT_FALSE(mStream->isFinishing());
  EXPECT_TRUE(mStream->send("x", 1));
  EXPECT_FALSE(mStream->finish());
  EXPECT_TRUE(mStream->isFinishing());
}

TEST_F(StreamTest, FinishesWhenTheRestIsSent) {
  EXPECT_TRUE(send(capacity() + 10));
  EXPECT_TRUE(mStream->finish());
  mPair.send("not heard any more");
  mStream->goesOn = false;
  serve();
  ASSERT_EQ(mClosed, 0);
  EXPECT_TRUE(mStream->pieces.empty());
  mPair.received();
  serve();
  EXPECT_EQ(mClosed, 1);
  EXPECT_EQ(mPair.received(), std::string(10, 'x'));
}

TEST_F(StreamTest, FinishesWithinFiveSeconds) {
  mStream->survivesTime = true;
  mStream->startTimer(1.0);
  EXPECT_TRUE(send(capacity() + 10));
  EXPECT_TRUE(mStream->finish());
  pass(4.75);
  EXPECT_EQ(mClosed, 0);
  pass(0.25);
  EXPECT_EQ(mClosed, 1);
}

TEST_F(StreamTest, HasOneTimer) {
  mStream->survivesTime = true;
  mStream->startTimer(1.0);
  mStream->startTimer(2.5);
  pass(2.25);
  EXPECT_EQ(mStream->timeouts, 0);
  pass(0.25);
  EXPECT_EQ(mStream->timeouts, 1);
  pass(10.0);
  EXPECT_EQ(mStream->timeouts, 1);
  mStream->startTimer(1.0);
  mStream->stopTimer();
  pass(10.0);
  EXPECT_EQ(mStream->timeouts, 1);
  EXPECT_EQ(mClosed, 0);
}

TEST_F(StreamTest, EndsWhenItsTimeIsOver) {
  mStream->startTimer(1.0);
  pass(1.0);
  EXPECT_EQ(mClosed, 1);
  EXPECT_TRUE(mPair.isOver());
}

}  // namespace

}  // namespace simulator
