// Invalid answers: the caller gets an error, its data stays unchanged, and the connection is
// closed.
#include <string>
#include <vector>

#include "LibraryFixture.h"
#include "WireSamples.h"

namespace {

/// A read of one record, which this answer must make fail.
class BadAnswerTest : public ConnectedTest {
 protected:
  void expectRead(unsigned long aStatus, const ScriptedController::Script& aScript) {
    mController.on(wire::eType::eRead, aScript);
    ParamList record{1, 2, 3, 4, 5.5, 6, 7};
    const ParamList before = record;
    EXPECT_EQ(aStatus, ReadParamList(mHandle, &record, 1));
    EXPECT_TRUE(same(before, record));
    const std::size_t sent = mController.requests().size();
    EXPECT_EQ(eConnectionLost, ReadParamList(mHandle, &record, 1));
    EXPECT_EQ(eConnectionLost, ExecuteCommand(mHandle, 0, 0));
    EXPECT_EQ(eConnectionLost, BreakConnection(mHandle));
    EXPECT_EQ(sent, mController.requests().size());
    EXPECT_EQ(eHandleUnknown, BreakConnection(mHandle));
    EXPECT_EQ(0UL, connect());
  }
};

const wire::Batch cOneRecord{0, {{1, 2, 3, 4, 9.5, 10, 0}}};

TEST_F(BadAnswerTest, OtherSequence) {
  expectRead(eAnswerInvalid, [](const Request& request) {
    return Answer{wire::encode(wire::eType::eRead, request.header.sequence + 1, cOneRecord)};
  });
}

TEST_F(BadAnswerTest, OtherType) {
  expectRead(eAnswerInvalid, [](const Request& request) {
    return Answer{wire::encode(wire::eType::eWrite, request.header.sequence, cOneRecord)};
  });
}

TEST_F(BadAnswerTest, OtherMagic) {
  expectRead(eAnswerInvalid, [](const Request& request) {
    Answer reply = answer(request, cOneRecord);
    reply.octets[0] = 'g';
    return reply;
  });
}

TEST_F(BadAnswerTest, LengthOverEveryBound) {
  expectRead(eAnswerInvalid, [](const Request& request) {
    Answer reply = answer(request, cOneRecord);
    reply.octets[12] = '\xFF';
    return reply;
  });
}

TEST_F(BadAnswerTest, MessageOfAnotherKind) {
  expectRead(eAnswerInvalid,
             [](const Request& request) { return answer(request, wire::StatusReply()); });
}

TEST_F(BadAnswerTest, BodyCutToHalf) {
  expectRead(eAnswerInvalid, [](const Request& request) {
    Answer reply = answer(request, cOneRecord);
    reply.octets.resize(16 + 20);
    reply.octets[15] = 20;
    return reply;
  });
}

TEST_F(BadAnswerTest, NoBody) {
  expectRead(eAnswerInvalid, [](const Request& request) {
    Answer reply = answer(request, cOneRecord);
    reply.octets.resize(16);
    reply.octets[15] = 0;
    return reply;
  });
}

TEST_F(BadAnswerTest, TooManyRecords) {
  expectRead(eAnswerInvalid, [](const Request& request) { return answer(request, batch()); });
}

TEST_F(BadAnswerTest, SuccessWithoutRecords) {
  expectRead(eAnswerInvalid, [](const Request& request) { return answer(request, wire::Batch()); });
}

// Most callers treat 28 as success: without records they would show zeros that nobody measured.
TEST_F(BadAnswerTest, IncompleteBatchWithoutRecords) {
  expectRead(eAnswerInvalid, [](const Request& request) {
    return answer(request, wire::Batch{28, {}});
  });
}

TEST_F(BadAnswerTest, ConnectionClosedInstead) {
  expectRead(eConnectionLost, [](const Request&) { return Answer{{}, Answer::eThen::eHangUp}; });
}

TEST_F(BadAnswerTest, ConnectionClosedAfterEveryNumberOfOctets) {
  const std::size_t whole = wire::encode(wire::eType::eRead, 1, cOneRecord).size();
  for (std::size_t size = 0; size < whole; ++size) {
    SCOPED_TRACE(size);
    expectRead(eConnectionLost, [size](const Request& request) {
      Answer reply = answer(request, cOneRecord);
      reply.octets.resize(size);
      reply.then = Answer::eThen::eHangUp;
      return reply;
    });
  }
}

TEST_F(BadAnswerTest, OctetsBehindAnAnswerSpoilTheNext) {
  mController.on(wire::eType::eCommand, [](const Request& request) {
    Answer reply = answer(request, wire::StatusReply());
    reply.octets.insert(reply.octets.end(), 16, 'x');
    return reply;
  });
  EXPECT_EQ(0UL, ExecuteCommand(mHandle, 0, 0));
  EXPECT_EQ(eAnswerInvalid, ExecuteCommand(mHandle, 0, 0));
}

}  // namespace
