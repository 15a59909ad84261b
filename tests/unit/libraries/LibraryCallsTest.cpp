// Calls that the controller answers: what is sent, and what the caller gets.
#include <limits>
#include <memory>
#include <vector>

#include "LibraryFixture.h"
#include "WireSamples.h"

namespace {

/// Answers a batch with these records.
ScriptedController::Script batchAnswer(std::uint32_t aStatus,
                                       const std::vector<ParamList>& aRecords) {
  return [aStatus, aRecords](const Request& request) {
    return answer(request, wire::Batch{aStatus, aRecords});
  };
}

TEST_F(ConnectedTest, BatchGoesOutAsItIs) {
  mController.on(wire::eType::eRead, batchAnswer(0, {{}}));
  ParamList record{1, 2, 3, 132, 1.5, -2, 7};
  EXPECT_EQ(0UL, ReadParamList(mHandle, &record, 1));
  EXPECT_EQ(octets("00000000 00000001"
                   "00000001 00000002 00000003 00000084 3FF8000000000000 FFFFFFFE 00000007"),
            mController.requests().at(1).body);
}

TEST_F(ConnectedTest, AnsweredRecordsStandInTheirPlaces) {
  const ParamList answered[] = {{1, 0, 0, 5, 2.5, 3, 0}, {2, 0, 9, 6, -0.5, -4, 204}};
  mController.on(wire::eType::eRead, batchAnswer(0, {answered[0], answered[1]}));
  ParamList records[] = {{1, 0, 0, 5, 0, 0, 0}, {2, 0, 9, 6, 0, 0, 0}, {3, 3, 3, 3, 3, 3, 3}};
  const ParamList behind = records[2];
  EXPECT_EQ(0UL, ReadParamList(mHandle, records, 2));
  EXPECT_TRUE(same(answered[0], records[0]));
  EXPECT_TRUE(same(answered[1], records[1]));
  EXPECT_TRUE(same(behind, records[2]));
}

// The caller recognises a misplaced record by its address, so the library must pass it on.
TEST_F(ConnectedTest, RecordOfAnotherParameterStaysVisible) {
  mController.on(wire::eType::eRead, batchAnswer(0, {{4, 0, 0, 99, 1.0, 1, 0}}));
  ParamList record{1, 0, 0, 5, 0, 0, 0};
  EXPECT_EQ(0UL, ReadParamList(mHandle, &record, 1));
  EXPECT_EQ(4U, record.Channel);
  EXPECT_EQ(99U, record.ParmID);
}

TEST_F(ConnectedTest, IncompleteBatchBringsWhatThereIs) {
  mController.on(wire::eType::eRead, batchAnswer(28, {{1, 0, 0, 5, 2.5, 3, 0}}));
  ParamList record{1, 0, 0, 5, 0, 0, 0};
  EXPECT_EQ(28UL, ReadParamList(mHandle, &record, 1));
  EXPECT_EQ(2.5, record.realvalue);
}

TEST_F(ConnectedTest, RefusedBatchLeavesTheRecordsAlone) {
  mController.on(wire::eType::eWrite, batchAnswer(eNotPermitted, {}));
  ParamList record{1, 0, 0, 5, 2.5, 3, 9};
  const ParamList before = record;
  EXPECT_EQ(eNotPermitted, WriteParamList(mHandle, &record, 1));
  EXPECT_TRUE(same(before, record));
}

TEST_F(ConnectedTest, WrittenBatchBringsServiceStatuses) {
  mController.on(wire::eType::eWrite, batchAnswer(eOutOfBounds, {{1, 0, 0, 5, 2.5, 3, 206}}));
  ParamList record{1, 0, 0, 5, 2.5, 3, 0};
  EXPECT_EQ(eOutOfBounds, WriteParamList(mHandle, &record, 1));
  EXPECT_EQ(206U, record.ServiceStatus);
}

TEST_F(ConnectedTest, EmptyBatchIsACallLikeAnyOther) {
  mController.on(wire::eType::eRead, batchAnswer(0, {}));
  mController.on(wire::eType::eWrite, batchAnswer(0, {}));
  ParamList record{};
  EXPECT_EQ(0UL, ReadParamList(mHandle, &record, 0));
  EXPECT_EQ(0UL, WriteParamList(mHandle, &record, 0));
  EXPECT_EQ(3U, mController.requests().size());
}

TEST_F(ConnectedTest, LargestBatchGoesThrough) {
  mController.on(wire::eType::eRead, [](const Request& request) {
    wire::Batch batch;
    wire::decode(request.body.data(), request.body.size(), batch);
    for (ParamList& record : batch.records) {
      record.intvalue = static_cast<std::int32_t>(record.ParmID) * 2;
    }
    return answer(request, batch);
  });
  std::vector<ParamList> records(4096);
  for (std::size_t i = 0; i < records.size(); ++i) {
    records[i].ParmID = static_cast<std::uint32_t>(i);
  }
  ASSERT_EQ(0UL, ReadParamList(mHandle, records.data(), records.size()));
  for (std::size_t i = 0; i < records.size(); ++i) {
    ASSERT_EQ(static_cast<std::int32_t>(2 * i), records[i].intvalue);
  }
}

TEST_F(ConnectedTest, BatchNeedsItsArguments) {
  std::vector<ParamList> records(4097);
  EXPECT_EQ(eArgumentInvalid, ReadParamList(mHandle, nullptr, 1));
  EXPECT_EQ(eArgumentInvalid, WriteParamList(mHandle, nullptr, 0));
  EXPECT_EQ(eArgumentInvalid, ReadParamList(mHandle, records.data(), 4097));
  EXPECT_EQ(eArgumentInvalid,
            WriteParamList(mHandle, records.data(), std::numeric_limits<unsigned long>::max()));
  EXPECT_EQ(1U, mController.requests().size());
}

TEST_F(ConnectedTest, CommandIsAnsweredWithItsStatus) {
  mController.on(wire::eType::eCommand, [](const Request& request) {
    return answer(request, wire::StatusReply{eStateForbids});
  });
  EXPECT_EQ(eStateForbids, ExecuteCommand(mHandle, 4, 17));
  EXPECT_EQ(octets("00000004 00000011"), mController.requests().at(1).body);
}

TEST_F(ConnectedTest, ProgramInfoBringsTwoValues) {
  mController.on(wire::eType::eProgramInfo, [](const Request& request) {
    return answer(request, wire::ProgramInfoReply{0, 12, 7});
  });
  unsigned long first = 0;
  unsigned long second = 0;
  EXPECT_EQ(0UL, ReadProgramInfo(mHandle, 0, 3, 1, &first, &second));
  EXPECT_EQ(12UL, first);
  EXPECT_EQ(7UL, second);
  EXPECT_EQ(octets("00000000 00000003 00000001"), mController.requests().at(1).body);
}

TEST_F(ConnectedTest, RefusedProgramInfoLeavesThePlacesAlone) {
  mController.on(wire::eType::eProgramInfo, [](const Request& request) {
    return answer(request, wire::ProgramInfoReply{eChannelUnknown, 12, 7});
  });
  unsigned long first = 5;
  unsigned long second = 6;
  EXPECT_EQ(eChannelUnknown, ReadProgramInfo(mHandle, 0, 9, 1, &first, &second));
  EXPECT_EQ(5UL, first);
  EXPECT_EQ(6UL, second);
}

TEST_F(ConnectedTest, ProgramInfoOnlyBringsWhatALongHolds) {
  mController.on(wire::eType::eProgramInfo, [](const Request& request) {
    return answer(request, wire::ProgramInfoReply{0, 0x100000000, 0xFFFFFFFFFFFFFFFF});
  });
  unsigned long first = 5;
  unsigned long second = 6;
  if (sizeof(long) == 4) {
    EXPECT_EQ(eAnswerInvalid, ReadProgramInfo(mHandle, 0, 1, 1, &first, &second));
    EXPECT_EQ(5UL, first);
  } else {
    EXPECT_EQ(0UL, ReadProgramInfo(mHandle, 0, 1, 1, &first, &second));
    EXPECT_EQ(std::numeric_limits<unsigned long>::max(), second);
  }
}

TEST_F(ConnectedTest, ProgramInfoNeedsItsPlaces) {
  unsigned long value = 0;
  EXPECT_EQ(eArgumentInvalid, ReadProgramInfo(mHandle, 0, 1, 1, nullptr, &value));
  EXPECT_EQ(eArgumentInvalid, ReadProgramInfo(mHandle, 0, 1, 1, &value, nullptr));
}

TEST_F(ConnectedTest, NumbersBeyondAMessageAreNotSent) {
  if (sizeof(long) == 4) {
    GTEST_SKIP() << "long has 32 bits";
  }
  const auto wide = static_cast<unsigned long>(0x100000001ULL);
  unsigned long value = 0;
  RemoteObject* object = nullptr;
  EXPECT_EQ(eArgumentInvalid, ExecuteCommand(mHandle, wide, 0));
  EXPECT_EQ(eArgumentInvalid, ExecuteCommand(mHandle, 0, wide));
  EXPECT_EQ(eArgumentInvalid, ReadObject(mHandle, wide, object));
  EXPECT_EQ(eArgumentInvalid, ReadProgramInfo(mHandle, wide, 1, 1, &value, &value));
  EXPECT_EQ(eArgumentInvalid, ReadProgramInfo(mHandle, 0, wide, 1, &value, &value));
  EXPECT_EQ(eArgumentInvalid, ReadProgramInfo(mHandle, 0, 1, wide, &value, &value));
  EXPECT_EQ(1U, mController.requests().size());
}

TEST_F(ConnectedTest, EachRequestHasASequenceOfItsOwn) {
  mController.on(wire::eType::eCommand,
                 [](const Request& request) { return answer(request, wire::StatusReply()); });
  ExecuteCommand(mHandle, 0, 1);
  ExecuteCommand(mHandle, 0, 2);
  const std::vector<Request> requests = mController.requests();
  ASSERT_EQ(3U, requests.size());
  EXPECT_NE(requests[0].header.sequence, requests[1].header.sequence);
  EXPECT_NE(requests[1].header.sequence, requests[2].header.sequence);
}

TEST_F(ConnectedTest, AnswerMayComeOctetByOctet) {
  mController.on(wire::eType::eRead, [](const Request& request) {
    Answer slow = answer(request, batch());
    slow.singlyFrom = 0;
    return slow;
  });
  ParamList records[2] = {};
  EXPECT_EQ(28UL, ReadParamList(mHandle, records, 2));
  EXPECT_TRUE(same(batch().records[0], records[0]));
  EXPECT_TRUE(same(batch().records[1], records[1]));
}

}  // namespace
