#pragma once
// Lists and names that lookups point to, as answers show them.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "query/answer.h"
#include "tables/refpointers.h"
#include "tables/rows.h"

namespace statecut::query {

// Where a loaded table ends; none: the table is not in memory.
struct LoadedTable {
  SlotNumber slot;
  std::uint64_t bytes;
};

// The bytes of a list; what would lie past the loaded table is 0. A list outside the table is in a
// buffer that holds it all.
[[nodiscard]] std::vector<unsigned char> listBytes(const unsigned char* from, std::size_t count,
                                                   const LoadedTable& table);

// Writes a list of 16-bit keys, null for none.
void writeKeys(Answer& answer, const KeyRow* keys, std::size_t count, const LoadedTable& table);

inline constexpr std::int32_t kNoLength = INT32_MIN;  // no name has it

// Writes "name" and "length": at most 99 bytes, none for a negative length. kNoLength stands for
// a length that was not set.
void writeName(Answer& answer, const char* name, std::int32_t length);

}  // namespace statecut::query
