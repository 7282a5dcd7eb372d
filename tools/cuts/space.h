#pragma once
// Whether a folder's disk has room for products.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace statecut::cuts {

struct Room {
  std::uint64_t bytes = 0;     // that a product takes
  std::uint64_t replaced = 0;  // that it sets free once it is made
};

// What a run needs at its worst moment, with so many products at once in the making.
std::uint64_t spaceNeeded(const std::vector<Room>& rooms, std::size_t atOnce);

// What a user may still write to the folder's disk; `error` when that can't be told.
std::uint64_t spaceFree(const std::string& folder, std::string& error);

}  // namespace statecut::cuts
