#pragma once
// A small reader of reference files that shares nothing with the builder's tables or the core.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/le.h"

namespace statecut::test {

class RefReader {
 public:
  using Bytes = std::vector<unsigned char>;
  explicit RefReader(const Bytes& file) : file_(file) {}

  // The control record word at a byte offset.
  [[nodiscard]] std::uint32_t word(std::size_t at) const { return number(at, 4); }
  // Little-endian number anywhere in the file; throws past its end.
  [[nodiscard]] std::uint32_t number(std::size_t at, std::size_t width) const {
    static_cast<void>(file_.at(at + width - 1));
    return le::getN(file_.data() + at, width);
  }
  [[nodiscard]] std::string text(std::size_t at, std::size_t length) const;

  // Number of a name in the hash index.
  [[nodiscard]] std::optional<std::uint32_t> find(const std::string& name, unsigned type) const;

  struct Named {
    std::string name;      // types 2 and 5: state and name
    std::uint32_t number;  // offset, or record position
  };
  // Every name of a type, read from its table.
  [[nodiscard]] std::vector<Named> names(unsigned type) const;

 private:
  [[nodiscard]] std::string nameAt(std::uint32_t number, unsigned type) const;

  const Bytes& file_;
};

}  // namespace statecut::test
