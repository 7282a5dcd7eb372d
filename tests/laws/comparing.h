#pragma once
// What the laws of contents share.

#include <cstdint>
#include <string>

#include "laws/laws.h"

namespace statecut::test {

template <typename Number>
std::string numbered(const char* what, Number number) {
  return std::string(what) + " " + std::to_string(number);
}

template <typename RowType, std::size_t At>
void comparePartition(const Pair& from, const Pair& made, const RowType& source,
                      const RowType& copy, Num<At, 4> rba, std::uint64_t bytes,
                      const std::string& what, Breaches& breaches) {
  const FileBytes expected = from.rngBytes(source.get(rba), bytes);
  breaches.unless(expected.size() == bytes, what + ": the source ends early");
  breaches.unless(made.rngBytes(copy.get(rba), bytes) == expected, what + ": other bytes");
}

}  // namespace statecut::test
