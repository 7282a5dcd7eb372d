#pragma once
// An open file that is closed at the end of its scope.

#include <unistd.h>

#include <utility>

namespace statecut::cuts {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int value) : value_(value) {}
  Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { reset(); }

  [[nodiscard]] int get() const { return value_; }
  explicit operator bool() const { return value_ >= 0; }
  void reset() {
    if (value_ >= 0) ::close(value_);
    value_ = -1;
  }

 private:
  int value_ = -1;
};

}  // namespace statecut::cuts
