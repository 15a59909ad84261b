// A file descriptor that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

namespace gateway {

class Descriptor {
 public:
  explicit Descriptor(int aNumber = -1) : mNumber(aNumber) {}
  ~Descriptor() { close(); }
  Descriptor(Descriptor&& aOther) noexcept : mNumber(std::exchange(aOther.mNumber, -1)) {}
  Descriptor& operator=(Descriptor&& aOther) noexcept {
    std::swap(mNumber, aOther.mNumber);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  /// -1 if there is none.
  int get() const { return mNumber; }
  bool isOpen() const { return mNumber >= 0; }
  void close() {
    if (isOpen()) {
      ::close(std::exchange(mNumber, -1));
    }
  }

 private:
  int mNumber;
};

}  // namespace gateway
