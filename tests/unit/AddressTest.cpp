// The instrument's address on the command line.
#include <gtest/gtest.h>

#include <ostream>

#include "Arguments.h"

namespace {
struct AddressRow {
  std::vector<std::string> words;
  std::array<unsigned char, 4> octets;
};

std::ostream& operator<<(std::ostream& aStream, const AddressRow& aRow) {
  for (const std::string& word : aRow.words) {
    aStream << " [" << word << "]";
  }
  return aStream;
}

const AddressRow cAccepted[] = {
    {{}, {127, 0, 0, 1}},
    {{"-s", "10.1.2.3"}, {10, 1, 2, 3}},
    {{"-s", "1.0.0.0"}, {1, 0, 0, 0}},
    {{"-s", "254.255.255.255"}, {254, 255, 255, 255}},
    {{"-s", "192.168.200.129"}, {192, 168, 200, 129}},
    {{"-s10.1.2.3"}, {10, 1, 2, 3}},
    // Each number is cut to its low 8 bits.
    {{"-s", "10.0.0.256"}, {10, 0, 0, 0}},
    {{"-s", "10.257.514.771"}, {10, 1, 2, 3}},
    {{"-s", "300.1.1.1"}, {44, 1, 1, 1}},
    {{"-s", "10.4294967295.65536.65537"}, {10, 255, 0, 1}},
    {{"-s", "10.-1.-2.-256"}, {10, 255, 254, 0}},
    // As scanf reads numbers.
    {{"-s", "010.001.02.3"}, {10, 1, 2, 3}},
    {{"-s", " 10. 1. 2. 3"}, {10, 1, 2, 3}},
    {{"-s", "+10.+1.2.3"}, {10, 1, 2, 3}},
    {{"-s", "10.1.2.3.4"}, {10, 1, 2, 3}},
    {{"-s", "10.1.2.3:8080"}, {10, 1, 2, 3}},
    {{"-s", "10.1.2.3 "}, {10, 1, 2, 3}},
    // Missing octets are 0.
    {{"-s", "10"}, {10, 0, 0, 0}},
    {{"-s", "10."}, {10, 0, 0, 0}},
    {{"-s", "10.1"}, {10, 1, 0, 0}},
    {{"-s", "10.1.2"}, {10, 1, 2, 0}},
    {{"-s", "10.1.x.3"}, {10, 1, 0, 0}},
    {{"-s", "10 .1.2.3"}, {10, 0, 0, 0}},
    // The last address wins, wherever it appears.
    {{"-s", "10.1.2.3", "-s", "11.4.5.6"}, {11, 4, 5, 6}},
    {{"-s", "0.0.0.0", "-s", "11.4.5.6"}, {11, 4, 5, 6}},
    {{"-t", "-s", "11.4.5.6", "-g"}, {11, 4, 5, 6}},
};

class AddressTest : public testing::TestWithParam<AddressRow> {};
class InvalidAddressTest : public testing::TestWithParam<const char*> {};
}  // namespace

static_assert(sizeof(InstrumentAddress) == 4);

TEST_P(AddressTest, IsAccepted) {
  const Parsed parsed = parse(GetParam().words);
  EXPECT_TRUE(parsed.accepted);
  EXPECT_EQ(parsed.request.uAddr.bAddr, GetParam().octets);
  EXPECT_EQ(parsed.output.out, "");
  EXPECT_EQ(parsed.output.err, "");
}

INSTANTIATE_TEST_SUITE_P(Addresses, AddressTest, testing::ValuesIn(cAccepted));

TEST_P(InvalidAddressTest, IsRefused) {
  const Parsed parsed = parse({"-s", GetParam()});
  EXPECT_FALSE(parsed.accepted);
  EXPECT_EQ(parsed.result, -1);
  EXPECT_EQ(parsed.output.out, "");
  EXPECT_EQ(parsed.output.err, "Invalid IP address\n");
}

INSTANTIATE_TEST_SUITE_P(Addresses, InvalidAddressTest,
                         testing::Values("0.1.2.3", "255.1.1.1", "0.0.0.0", "255.255.255.255",
                                         "256.1.1.1", "511.1.1.1", "512.1.1.1", "-1.1.1.1",
                                         "00.1.1.1", "", "abc", ".1.2.3", "localhost", "x10.1.1.1",
                                         "::1"));

TEST(AddressOrderTest, LastAddressIsTheOneThatIsChecked) {
  const Parsed parsed = parse({"-s", "10.1.2.3", "-s", "0.1.2.3", "-t"});
  EXPECT_FALSE(parsed.accepted);
  EXPECT_EQ(parsed.output.err, "Invalid IP address\n");
}

TEST(AddressOrderTest, AddressIsCheckedLast) {
  EXPECT_EQ(parse({"-s", "0.1.2.3", "-V", "47"}).output.err,
            "ERROR: number out of range for stream\n");
  EXPECT_EQ(parse({"-s", "0.1.2.3", "-R", "foo"}).output.err, "Operation 'foo' unknown\n");
  EXPECT_EQ(parse({"-s", "0.1.2.3", "extra"}).output.err, "Stdin not supported\n");
}

TEST(AddressOrderTest, FirstOctetIsTheLowestByte) {
  EXPECT_EQ(Request().uAddr.lAddr, 0x0100007FU);
  EXPECT_EQ(parse({"-s", "10.1.2.200"}).request.uAddr.lAddr, 0xC802010AU);
}
