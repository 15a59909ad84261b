// Each kind of fault does its harm at one place: instead of the call, in its answer, or on the way.
#include "Alterations.h"

#include <ObjectTexts.h>
#include <Status.h>
#include <arpa/inet.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace simulator {

namespace {

/// Calls `change` with each record of `records` that the fault names.
template <class Change>
void changeRecords(const Fault& aFault, std::vector<ParamList>& records, const Change& change) {
  for (std::size_t n = 0; aFault.allRecords && n < records.size(); ++n) {
    change(n);
  }
  for (const std::uint32_t n : aFault.records) {
    if (n < records.size()) {
      change(n);
    }
  }
}

/// Puts a number where a message has it, in network order.
void putNumber(char* place, std::size_t aNumber) {
  const std::uint32_t octets = htonl(static_cast<std::uint32_t>(aNumber));
  std::memcpy(place, &octets, sizeof octets);
}

/// As wire::marshalTexts() does one text, but however long: too long is one of the faults.
std::vector<char> marshalAnyText(const std::string& aText) {
  std::vector<char> contents(sizeof(std::uint32_t));
  putNumber(contents.data(), aText.size() + 1);
  contents.insert(contents.end(), aText.begin(), aText.end());
  contents.push_back('\0');
  return contents;
}

/// Cuts the body to half its length; the header knows.
void shorten(wire::Frame& frame) {
  constexpr std::size_t cLengthOffset = 12;
  const std::size_t length = (frame.size() - wire::cHeaderSize) / 2;
  frame.resize(wire::cHeaderSize + length);
  putNumber(frame.data() + cLengthOffset, length);
}

}  // namespace

bool takesEffect(const Fault& aFault) {
  switch (aFault.kind) {
    case eFault::eDrop:
      return aFault.after;
    case eFault::eHang:
    case eFault::eStatus:
    case eFault::eIgnore:
      return false;
    default:
      return true;
  }
}

std::optional<std::uint32_t> statusInstead(const Fault& aFault) {
  if (aFault.kind == eFault::eStatus) {
    return aFault.status;
  }
  return aFault.kind == eFault::eIgnore ? std::optional<std::uint32_t>(eSuccess) : std::nullopt;
}

void alter(const Fault& aFault, const wire::Batch& aRequest, wire::Batch& answer) {
  std::vector<ParamList>& records = answer.records;
  switch (aFault.kind) {
    case eFault::eUnanswered:
      changeRecords(aFault, records, [&](std::size_t n) {
        records[n] = aRequest.records[n];
        records[n].ServiceStatus = eParameterUnknown;
        answer.status = eBatchIncomplete;
      });
      break;
    case eFault::eSwap:
      if (std::max(aFault.first, aFault.second) < records.size()) {
        std::swap(records[aFault.first], records[aFault.second]);
      }
      break;
    case eFault::eValue:
      changeRecords(aFault, records, [&](std::size_t n) {
        records[n].realvalue = aFault.real.value_or(records[n].realvalue);
        records[n].intvalue = aFault.integer.value_or(records[n].intvalue);
      });
      break;
    default:
      break;
  }
}

void alter(const Fault& aFault, const wire::ObjectRequest& /*aRequest*/,
           wire::ObjectReply& answer) {
  if (aFault.kind == eFault::eText && answer.className == wire::cSiteInfoTag) {
    answer.contents = marshalAnyText(aFault.text);
  }
}

void alter(const Fault& aFault, Reply& reply) {
  switch (aFault.kind) {
    case eFault::eDrop:
      reply.octets.clear();
      reply.close = true;
      break;
    case eFault::eHang:
      reply.octets.clear();
      reply.hang = true;
      break;
    case eFault::eShort:
      shorten(reply.octets);
      break;
    case eFault::eTruncate:
      reply.octets.resize(reply.octets.size() / 2);
      reply.close = true;
      break;
    case eFault::eDelay:
      reply.seconds = aFault.seconds;
      break;
    default:
      break;
  }
}

}  // namespace simulator
