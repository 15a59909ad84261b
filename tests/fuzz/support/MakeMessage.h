// Builds messages of the connection from an input, all within their bounds, and compares them.
#pragma once

#include <Message.h>

#include <cstring>

#include "Input.h"

inline ACE_CString makeText(Input& input) {
  std::string text = input.text();
  text.resize(std::min<std::size_t>(text.size(), wire::cMaxText));
  return {text.data(), text.size()};
}

inline void make(Input& input, wire::ConnectRequest& message) {
  message.mode = input.flag() ? input.octet() % 3 : input.number<std::uint32_t>();
  message.clientName = makeText(input);
}

/// Records of existing or nonexistent parameters; occasionally the last one is repeated many times.
inline void make(Input& input, wire::Batch& message) {
  constexpr std::uint32_t cIds[] = {12,  15,   22,   23,   24,   26,   39,   58,   60,   62,
                                    73,  75,   100,  102,  132,  144,  202,  300,  502,  525,
                                    601, 1003, 1010, 1176, 1196, 1230, 2021, 2028, 2030, 2202};
  message.status = input.octet() < 0xF0 ? 0 : input.number<std::uint32_t>();
  for (std::size_t left = input.below(16); left > 0; --left) {
    ParamList record{};
    record.Channel = input.octet() % 6;
    record.Method = input.octet() < 0xF0 ? 0 : input.number<std::uint32_t>();
    record.Step = input.octet() < 0xF0 ? input.octet() % 24 : input.number<std::uint32_t>();
    record.ParmID = input.flag() ? input.oneOf(cIds) : input.number<std::uint32_t>();
    record.realvalue = input.flag() ? input.octet() : input.number<double>();
    record.intvalue = input.flag() ? input.octet() : input.number<std::int32_t>();
    record.ServiceStatus = input.octet();
    message.records.push_back(record);
  }
  if (input.octet() >= 0xF8 && !message.records.empty()) {
    message.records.resize(wire::cMaxRecords - input.octet(), message.records.back());
  }
}

inline void make(Input& input, wire::CommandRequest& message) {
  message.channel = input.octet() < 0xF0 ? 0 : input.number<std::uint32_t>();
  message.command = input.octet() < 0xF0 ? input.octet() % 40 : input.number<std::uint32_t>();
}

inline void make(Input& input, wire::ObjectRequest& message) {
  message.number = input.octet() < 0xF0 ? input.octet() % 8 : input.number<std::uint32_t>();
}

inline void make(Input& input, wire::ObjectReply& message) {
  message.status = input.octet() < 0xC0 ? 0 : input.number<std::uint32_t>();
  message.className = makeText(input);
  const std::string contents = input.text();
  message.contents.assign(contents.begin(), contents.end());
}

inline void make(Input& input, wire::ProgramInfoRequest& message) {
  message.first = input.octet();
  message.channel = input.octet() < 0xF0 ? input.octet() % 6 : input.number<std::uint32_t>();
  message.third = input.octet();
}

inline void make(Input& input, wire::ProgramInfoReply& message) {
  message.status = input.octet() < 0xC0 ? 0 : input.number<std::uint32_t>();
  message.first = input.number<std::uint64_t>();
  message.second = input.number<std::uint64_t>();
}

inline void make(Input& input, wire::StatusReply& message) {
  message.status = input.octet() < 0xC0 ? 0 : input.number<std::uint32_t>();
}

inline bool isSame(const wire::ConnectRequest& a, const wire::ConnectRequest& b) {
  return a.mode == b.mode && a.clientName == b.clientName;
}
inline bool isSame(const wire::Batch& a, const wire::Batch& b) {
  const std::size_t size = a.records.size() * sizeof(ParamList);
  return a.status == b.status && a.records.size() == b.records.size() &&
         (size == 0 || std::memcmp(a.records.data(), b.records.data(), size) == 0);
}
inline bool isSame(const wire::CommandRequest& a, const wire::CommandRequest& b) {
  return a.channel == b.channel && a.command == b.command;
}
inline bool isSame(const wire::ObjectRequest& a, const wire::ObjectRequest& b) {
  return a.number == b.number;
}
inline bool isSame(const wire::ObjectReply& a, const wire::ObjectReply& b) {
  return a.status == b.status && a.className == b.className && a.contents == b.contents;
}
inline bool isSame(const wire::ProgramInfoRequest& a, const wire::ProgramInfoRequest& b) {
  return a.first == b.first && a.channel == b.channel && a.third == b.third;
}
inline bool isSame(const wire::ProgramInfoReply& a, const wire::ProgramInfoReply& b) {
  return a.status == b.status && a.first == b.first && a.second == b.second;
}
inline bool isSame(const wire::StatusReply& a, const wire::StatusReply& b) {
  return a.status == b.status;
}
