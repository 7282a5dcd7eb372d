#pragma once
// Table memory: zero-filled blocks with a zero tail, so that a key equal to the count and a length
// byte at the very end of a table stay inside the block.

#include <cstdint>

namespace statecut {

inline constexpr std::uint64_t kTableSlack = 512;            // zero bytes behind every table
inline constexpr std::uint64_t kTableMaxBytes = 2147483647;  // sizes are signed 32-bit

// A zero-filled block of `bytes` plus the slack, or null when memory runs out or `bytes` is above
// kTableMaxBytes. 0 bytes is a real block. Released by freeTable.
[[nodiscard]] void* allocTable(std::uint64_t bytes);
void freeTable(void* block);

// How often it was called, for those who keep something made of a table.
inline std::uint64_t tablesReleased = 0;

}  // namespace statecut
