#pragma once
// The search of the name hash index in memory.

#include <cstddef>
#include <cstdint>
#include <span>

#include "hash/namehash.h"
#include "tables/tableview.h"

namespace statecut {

// The name's number, or kNotFound.
[[nodiscard]] std::uint32_t findHashedName(const TableView& view, const unsigned char* name,
                                           std::int32_t length, std::uint32_t type);
// The number field of the name's entry, or null.
[[nodiscard]] unsigned char* findHashedEntry(const TableView& view, const unsigned char* name,
                                             std::int32_t length, std::uint32_t type);

struct CountedName {
  const unsigned char* name;
  std::int32_t length;  // below 0: no name, which is not found
};
inline constexpr std::size_t kNamesAtOnce = 32;  // searches whose cache misses overlap

// findHashedName for each, several searches at once; a number each.
void findHashedNames(const TableView& view, std::span<const CountedName> names, std::uint32_t type,
                     std::uint32_t* numbers);

}  // namespace statecut
