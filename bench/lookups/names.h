#pragma once
// The names that the lookups are asked for, and their numbers.

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace statecut::bench {

inline constexpr std::uint32_t kNoNumber = 0xFFFFFFFF;

struct Names {
  const char* kind;    // "city", "street", "firm"
  std::uint32_t type;  // of the name hash
  std::vector<std::pair<std::string, std::uint32_t>> all;
  std::vector<std::string> hits;    // all names, in random order
  std::vector<std::string> misses;  // as many that no table has
};

// Of the tables of the session that is open in memory. A city's name has the state before it.
std::vector<Names> collectNames();

}  // namespace statecut::bench
