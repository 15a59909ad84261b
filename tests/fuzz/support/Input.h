// Takes values one by one from a fuzzer's input.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

class Input {
 public:
  Input(const std::uint8_t* aOctets, std::size_t aSize) : mNext(aOctets), mLeft(aSize) {}

  std::size_t left() const { return mLeft; }

  /// An integer or a double of any value; missing octets read as 0.
  template <class Number>
  Number number() {
    Number number{};
    const std::size_t size = std::min(sizeof number, mLeft);
    if (size != 0) {
      std::memcpy(&number, mNext, size);
    }
    skip(size);
    return number;
  }
  std::uint8_t octet() { return number<std::uint8_t>(); }
  bool flag() { return (octet() & 1) != 0; }
  /// Less than `aEnd`, which must be positive; takes one octet if that is enough, otherwise four.
  std::size_t below(std::size_t aEnd) {
    return (aEnd <= 256 ? octet() : number<std::uint32_t>()) % aEnd;
  }
  /// One element of an array.
  template <class Element, std::size_t size>
  const Element& oneOf(const Element (&aElements)[size]) {
    return aElements[below(size)];
  }

  /// At most `aLongest` octets, limited by the remaining input.
  std::string octets(std::size_t aLongest) {
    const std::size_t size = std::min(aLongest, mLeft);
    std::string text(reinterpret_cast<const char*>(mNext), size);
    skip(size);
    return text;
  }
  /// Any octets: usually as many as one octet says, sometimes a few of them repeated many times.
  std::string text() {
    const std::size_t size = octet();
    if (size < 0xF0) {
      return octets(size % 0x40);
    }
    const std::string part = octets(1 + size % 4);
    std::string repeated;
    for (std::size_t i = 0; i < 300 * (size - 0xEF); ++i) {
      repeated += part;
    }
    return repeated;
  }
  std::string rest() { return octets(mLeft); }

 private:
  void skip(std::size_t aSize) {
    mNext += aSize;
    mLeft -= aSize;
  }

  const std::uint8_t* mNext;
  std::size_t mLeft;
};
