#pragma once
// Zeroed memory for many tables: pages of its own, large ones where the system has them.

#include <cstddef>
#include <utility>

namespace statecut {

class LargeBlock {
 public:
  LargeBlock() = default;
  explicit LargeBlock(std::size_t bytes);  // empty without memory
  ~LargeBlock();
  LargeBlock(LargeBlock&& other) noexcept { swap(other); }
  LargeBlock& operator=(LargeBlock&& other) noexcept {
    swap(other);
    return *this;
  }

  [[nodiscard]] unsigned char* data() const { return data_; }
  [[nodiscard]] std::size_t size() const { return bytes_; }

 private:
  void swap(LargeBlock& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(bytes_, other.bytes_);
  }

  unsigned char* data_ = nullptr;
  std::size_t bytes_ = 0;
};

}  // namespace statecut
