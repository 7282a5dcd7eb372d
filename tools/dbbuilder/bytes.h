#pragma once
// Appends little-endian numbers and fixed-width texts to a byte vector.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "base/le.h"
#include "dbbuilder/model.h"

namespace statecut::builder {

class ByteWriter {
 public:
  void u8(std::uint32_t value) { put<1>(value); }
  void u16(std::uint32_t value) { put<2>(value); }
  void u32(std::uint32_t value) { put<4>(value); }

  void raw(std::span<const Byte> bytes) { out_.insert(out_.end(), bytes.begin(), bytes.end()); }

  // Exactly `width` bytes: a longer text is cut, a shorter one padded with zero bytes.
  void text(std::string_view text, std::size_t width) {
    const std::size_t used = std::min(text.size(), width);
    for (const char c : text.substr(0, used)) out_.push_back(static_cast<Byte>(c));
    zeros(width - used);
  }
  void zeros(std::size_t count) { out_.resize(out_.size() + count); }

  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(out_.size()); }
  Bytes take() { return std::move(out_); }

 private:
  template <std::size_t Width>
  void put(std::uint32_t value) {
    out_.resize(out_.size() + Width);
    le::put<Width>(out_.data() + out_.size() - Width, value);
  }

  Bytes out_;
};

}  // namespace statecut::builder
