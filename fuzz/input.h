#pragma once
// Reads the bytes of an input as small values; past the end all is 0.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace statecut::fuzz {

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : left_(data, size) {}

  [[nodiscard]] bool empty() const { return left_.empty(); }
  std::uint8_t u8() { return static_cast<std::uint8_t>(number(1)); }
  std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
  std::uint32_t u24() { return number(3); }
  std::uint32_t u32() { return number(4); }
  // Below `bound`, from one byte up to 256, else from four; 0 for the bound 0.
  std::size_t below(std::size_t bound) {
    if (bound == 0) return 0;
    return (bound <= 256 ? std::size_t{u8()} : std::size_t{u32()}) % bound;
  }
  // At most `count` bytes.
  std::span<const std::uint8_t> bytes(std::size_t count) {
    const auto taken = left_.first(count < left_.size() ? count : left_.size());
    left_ = left_.subspan(taken.size());
    return taken;
  }
  std::string_view text(std::size_t count) {
    const auto taken = bytes(count);
    return {reinterpret_cast<const char*>(taken.data()), taken.size()};
  }
  std::span<const std::uint8_t> rest() { return bytes(left_.size()); }

 private:
  std::uint32_t number(std::size_t width) {
    std::uint32_t value = 0;
    const auto taken = bytes(width);
    for (std::size_t i = 0; i < taken.size(); ++i) value |= std::uint32_t{taken[i]} << (8 * i);
    return value;
  }

  std::span<const std::uint8_t> left_;
};

}  // namespace statecut::fuzz
