// Numbers in a CDR stream in network order, whatever order the stream was opened with: ACE swaps
// what it reads but, as it is commonly built, not what it writes.
#pragma once

#include <ace/CDR_Stream.h>
#include <endian.h>

#include <algorithm>
#include <cstring>

namespace wire {

/// Copies a number of four or eight octets to or from network order.
template <class Number>
void copyNumber(const void* from, void* to) {
  static_assert(sizeof(Number) == 4 || sizeof(Number) == 8);
  std::memcpy(to, from, sizeof(Number));
  if (BYTE_ORDER == LITTLE_ENDIAN) {
    std::reverse(static_cast<char*>(to), static_cast<char*>(to) + sizeof(Number));
  }
}

/// Writes a number at its alignment.
template <class Number>
bool writeNumber(ACE_OutputCDR& stream, Number number) {
  char* place = nullptr;
  if (stream.adjust(sizeof number, place) != 0) {
    return false;
  }
  copyNumber<Number>(&number, place);
  return true;
}

/// Reads a number at its alignment. False when the stream ends before it.
template <class Number>
bool readNumber(ACE_InputCDR& stream, Number& number) {
  char* place = nullptr;
  if (stream.adjust(sizeof number, place) != 0) {
    return false;
  }
  copyNumber<Number>(place, &number);
  return true;
}

}  // namespace wire
