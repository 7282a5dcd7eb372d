#pragma once
// An open file that is closed at the end of its scope.

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
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

// Tells of the file what errno says; false.
inline bool failed(const std::string& path, std::string& error) {
  error = path + ": " + std::strerror(errno);
  return false;
}

// Writes all of the text, in as many steps as it takes; false, with errno, when one fails.
inline bool writeAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t wrote = ::write(fd, text.data(), text.size());
    if (wrote < 0 && errno != EINTR) return false;
    if (wrote > 0) text.remove_prefix(static_cast<std::size_t>(wrote));
  }
  return true;
}

}  // namespace statecut::cuts
