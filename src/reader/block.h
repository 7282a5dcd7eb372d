#pragma once
// The bytes of an open file: read into memory, mapped, or the caller's.

#include <cstddef>
#include <cstdint>
#include <utility>

#include "../base/largeblock.h"

namespace statecut {

class Block {
 public:
  Block() = default;
  ~Block() { reset(); }
  Block(Block&& other) noexcept { swap(other); }
  Block& operator=(Block&& other) noexcept {
    swap(other);
    return *this;
  }

  // Zeros, in large pages where the system has them; empty without memory.
  [[nodiscard]] static Block allocated(std::size_t bytes);
  [[nodiscard]] static Block mapped(int fd, std::size_t bytes);  // empty when it fails, errno

  [[nodiscard]] unsigned char* data() const { return data_; }
  [[nodiscard]] std::size_t size() const { return bytes_; }

 private:
  void swap(Block& other) noexcept {
    std::swap(large_, other.large_);
    std::swap(data_, other.data_);
    std::swap(bytes_, other.bytes_);
    std::swap(kind_, other.kind_);
  }
  void reset();

  enum class Kind : std::uint8_t { kLarge, kHeap, kFile };

  LargeBlock large_;
  unsigned char* data_ = nullptr;
  std::size_t bytes_ = 0;
  Kind kind_ = Kind::kLarge;
};

}  // namespace statecut
