// A sample of every message, with its body octet by octet.
#pragma once

#include <Message.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

/// Octets from hexadecimal digits; blanks are ignored.
inline wire::Frame octets(const std::string& hex) {
  std::string digits;
  for (const char c : hex) {
    if (c != ' ') {
      digits += c;
    }
  }
  wire::Frame result;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    result.push_back(static_cast<char>(std::strtoul(digits.substr(i, 2).c_str(), nullptr, 16)));
  }
  return result;
}

inline wire::ConnectRequest connectRequest() {
  return {1, "SimUI"};
}
constexpr char cConnectRequestBody[] = "00000001 00000006 53696D5549 00";

inline wire::Batch batch() {
  return {28,
          {{1, 2, 3, 132, 1.5, -2, 0},
           {4294967295U, 0, 20, 7, -std::numeric_limits<double>::infinity(), 2147483647, 204}}};
}
constexpr char cBatchBody[] =
    "0000001C 00000002"
    "00000001 00000002 00000003 00000084 3FF8000000000000 FFFFFFFE 00000000"
    "FFFFFFFF 00000000 00000014 00000007 FFF0000000000000 7FFFFFFF 000000CC";

inline wire::CommandRequest commandRequest() {
  return {4, 17};
}
constexpr char cCommandRequestBody[] = "00000004 00000011";

inline wire::ObjectRequest objectRequest() {
  return {6};
}
constexpr char cObjectRequestBody[] = "00000006";

inline wire::ObjectReply objectReply() {
  return {0, "SiteInfoTag", {'a', '\0', '\xFF'}};
}
constexpr char cObjectReplyBody[] = "00000000 0000000C 53697465496E666F546167 00 00000003 6100FF";

inline wire::ProgramInfoRequest programInfoRequest() {
  return {0, 3, 1};
}
constexpr char cProgramInfoRequestBody[] = "00000000 00000003 00000001";

inline wire::ProgramInfoReply programInfoReply() {
  return {0, 12, 0x0102030405060708};
}
// The first of the two is aligned to a multiple of eight.
constexpr char cProgramInfoReplyBody[] = "00000000 00000000 000000000000000C 0102030405060708";

inline wire::StatusReply statusReply() {
  return {203};
}
constexpr char cStatusReplyBody[] = "000000CB";

// --- whether two messages are equal; doubles by their octets, so that a NaN equals itself ---

inline bool same(double a, double b) {
  std::uint64_t octets[2] = {};
  std::memcpy(&octets[0], &a, sizeof a);
  std::memcpy(&octets[1], &b, sizeof b);
  return octets[0] == octets[1];
}
inline bool same(const ParamList& a, const ParamList& b) {
  return a.Channel == b.Channel && a.Method == b.Method && a.Step == b.Step &&
         a.ParmID == b.ParmID && same(a.realvalue, b.realvalue) && a.intvalue == b.intvalue &&
         a.ServiceStatus == b.ServiceStatus;
}
inline bool same(const wire::ConnectRequest& a, const wire::ConnectRequest& b) {
  return a.mode == b.mode && a.clientName == b.clientName;
}
inline bool same(const wire::Batch& a, const wire::Batch& b) {
  if (a.status != b.status || a.records.size() != b.records.size()) {
    return false;
  }
  for (std::size_t i = 0; i < a.records.size(); ++i) {
    if (!same(a.records[i], b.records[i])) {
      return false;
    }
  }
  return true;
}
inline bool same(const wire::CommandRequest& a, const wire::CommandRequest& b) {
  return a.channel == b.channel && a.command == b.command;
}
inline bool same(const wire::ObjectRequest& a, const wire::ObjectRequest& b) {
  return a.number == b.number;
}
inline bool same(const wire::ObjectReply& a, const wire::ObjectReply& b) {
  return a.status == b.status && a.className == b.className && a.contents == b.contents;
}
inline bool same(const wire::ProgramInfoRequest& a, const wire::ProgramInfoRequest& b) {
  return a.first == b.first && a.channel == b.channel && a.third == b.third;
}
inline bool same(const wire::ProgramInfoReply& a, const wire::ProgramInfoReply& b) {
  return a.status == b.status && a.first == b.first && a.second == b.second;
}
inline bool same(const wire::StatusReply& a, const wire::StatusReply& b) {
  return a.status == b.status;
}

/// Calls `check(name, message, body)` for the sample of every message.
template <class Check>
void forEachSample(Check check) {
  check("ConnectRequest", connectRequest(), octets(cConnectRequestBody));
  check("Batch", batch(), octets(cBatchBody));
  check("CommandRequest", commandRequest(), octets(cCommandRequestBody));
  check("ObjectRequest", objectRequest(), octets(cObjectRequestBody));
  check("ObjectReply", objectReply(), octets(cObjectReplyBody));
  check("ProgramInfoRequest", programInfoRequest(), octets(cProgramInfoRequestBody));
  check("ProgramInfoReply", programInfoReply(), octets(cProgramInfoReplyBody));
  check("StatusReply", statusReply(), octets(cStatusReplyBody));
}
